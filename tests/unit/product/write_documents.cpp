// Writes reports and labels of the sample catalogue into a folder, with what a reader must find in each: scripts/
// check_documents.py has them shown by a word processor and reads them back.
//   write_documents FOLDER
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "base/date.h"
#include "base/text.h"
#include "product/frm_etiquetas.h"
#include "product/labels.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

// A line of what is expected: what stands behind "text: " is found in this order.
std::string Text(const std::string& text) {
  return "text: " + base::ReplaceAll(base::ReplaceAll(text, "\r", " "), "\n", " ") + "\n";
}

class Writer final : public SampleComponentTest {
 public:
  explicit Writer(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // A fixture without a test: only its sample component is used.
  void TestBody() override {}

  void Run() {
    settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Templates)"] = "C:";
    for (const char* name : {"produto_stats.doc", "Etiqueta.doc", "Etiquetas.doc"}) {
      std::ifstream file(std::string(QUENTA_TEMPLATES "/") + name, std::ios::binary);
      settings.files[std::string("C:\\") + name] = {std::istreambuf_iterator<char>(file), {}};
    }
    LogIn("ana");
    WriteReport("relatorio", "10011", 0);
    WriteReport("relatorio_longo", "10466", 120);
    WriteReport("relatorio_vazio", "10145", 0);
    WriteLabels("etiqueta", "10006", "", "");
    WriteLabels("folha_dependentes", "10300", "4", "5");
    WriteEveryCharacter("folha_caracteres");
    if (!reporting.reports.empty()) throw std::runtime_error(reporting.reports[0].description);
  }

 private:
  void Save(const std::string& name, const std::string& document, const std::string& expected) {
    std::ofstream(folder_ / (name + ".doc"), std::ios::binary) << document;
    std::ofstream(folder_ / (name + ".expected"), std::ios::binary) << expected;
  }

  void WriteReport(const std::string& name, const std::string& code, int more_movements) {
    const auto form = OpenForm(IdOfCode(code));
    form->FXData_Inicio.set_value(*base::MakeDate({2024, 1, 1, 0, 0, 0}));
    form->TabStrip1.SelectKey("vendas");
    form->Fill_Track(1);
    for (int i = 0; i < more_movements; ++i) {
      const std::string number = std::to_string(1000 + i);
      form->ListView13.Add("9#" + number, "15-10-2026").sub_items = {
          "Sociedade de Construções d'Além-Douro, Lda. " + number,
          "Guia de remessa",
          number,
          "12,00",
          "€ 1 234,50",
          "€ 14 814,00"};
    }
    std::string path;
    if (form->DoReport(path, "produto_stats.doc").empty()) throw std::runtime_error("no report of " + code);
    std::string expected = Text(form->FXNome.text()) + Text(code);
    for (const char* field :
         {"FXTipo_ID", "FXMarca", "FXFamilia_ID", "FXSub_Familia_ID", "FXFornecedor_ID", "FXObs", "FXValor", "FXIva_ID",
          "FXIVA", "FXTOTAL", "FXDesconto", "FXPrecoMin", "FXPrecoMax", "FXQuantidade", "FXValorTotal"}) {
      // The report's amounts have no currency sign of their own.
      expected += Text(base::ReplaceAll(form->Find(field)->Describe(), "€ ", ""));
    }
    for (int line = 0; line < form->ListView13.Count(); ++line) {
      for (int column = 0; column < 7; ++column) expected += Text(form->ListView13.Cell(line, column));
    }
    expected += "every page: Ana Mourão\n";
    if (more_movements > 0) expected += "every page: Data Entidade Documento N.º Quantidade Preço unit. Total\n";
    Save(name, settings.files.at(path), expected);
    form->Unload();
  }

  // Of the product itself, or of its dependants where it has any.
  void WriteLabels(const std::string& name, const std::string& code, const std::string& copies,
                   const std::string& first_position) {
    const auto form = OpenForm(IdOfCode(code));
    form->ConstructDoc("");
    std::shared_ptr<product::frmEtiquetas> labels;
    for (const auto& [shown, owner] : form_host.shown) {
      if (shown->name() == "frmEtiquetas") labels = std::static_pointer_cast<product::frmEtiquetas>(owner);
    }
    const bool sheet = labels->Option2.value();
    labels->FXQuantidade.Typed(copies);
    labels->FXPosicao.Typed(first_position);
    labels->Command1_Click();
    std::string expected = "grid: " + std::string(sheet ? "3x8" : "1x1") + "\n";
    if (!sheet)
      expected += Text(form->FXNome.text()) + Text(code) + Text(form->FXTOTAL.text()) + "code: " + code + "\n";
    for (int i = 1; sheet && i < std::stoi(first_position); ++i) expected += "code: \n";
    for (const ports::Row row : Sql("SELECT codigo FROM tbProdutos WHERE is_deleted = 0 AND main_id = " +
                                    std::to_string(form->ProdutoId()) + " ORDER BY codigo")) {
      for (int i = 0; i < std::stoi(copies); ++i) expected += "code: " + row["codigo"].text() + "\n";
    }
    Save(name, settings.files.at(sheet ? R"(C:\Temp\Etiquetas.doc)" : R"(C:\Temp\Etiqueta.doc)"), expected);
    form->Unload();
  }

  // One sheet of codes that together hold every character of a bar code, singly and in pairs of digits.
  void WriteEveryCharacter(const std::string& name) {
    std::vector<std::string> codes = {
        "uvwxyz{|}~", "1", "12", "A123456B", "2099000105266", "WWWWWWWWWWWWWWWWWWWWWWWWWWWW"};
    for (char first = ' '; first <= '~' - 9; first = static_cast<char>(first + 10)) {
      codes.emplace_back("a");
      for (char c = first; c < first + 10 && c <= '~'; ++c) codes.back() += c;
      codes.back() += "b";
    }
    for (int tens = 0; tens < 10; tens += 2) {
      codes.emplace_back();
      for (int pair = tens * 10; pair < tens * 10 + 20; ++pair) codes.back() += std::to_string(pair + 100).substr(1);
    }
    product::LabelRun run;
    std::string expected = "grid: 3x8\n";
    for (const std::string& code : codes) {
      run.labels.push_back({.nome = "Um nome comprido: " + std::string(15, 'W') + " " + std::string(100, 'm'),
                            .codigo = code,
                            .cor = "Castanho-escuro",
                            .tamanho = "XXXL",
                            .preco = "€ 1 234,50"});
      expected += "code: " + code + "\n";
    }
    Save(name, product::FillLabels(settings.files[R"(C:\Etiquetas.doc)"], run), expected);
  }

  std::filesystem::path folder_;
};

}  // namespace
}  // namespace quenta::tests

int main(int argc, char** argv) {
  if (argc != 2) return std::fputs("write_documents FOLDER\n", stderr), 2;
  try {
    quenta::tests::Writer(argv[1]).Run();
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "write_documents: %s\n", exception.what());
    return 1;
  }
}
