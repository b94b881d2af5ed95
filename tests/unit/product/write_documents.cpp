// Writes reports and labels of the sample catalogue into a folder, with what a reader must find in each: scripts/
// check_documents.py has them shown by a word processor and reads them back.
//   write_documents FOLDER
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "base/date.h"
#include "base/text.h"
#include "document_fixture.h"
#include "product/frm_etiquetas.h"
#include "product/labels.h"

namespace quenta::tests {
namespace {

class Writer final : public DocumentTest {
 public:
  explicit Writer(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // A fixture without a test: only its sample component is used.
  void TestBody() override {}

  void Run() {
    SetUp();
    for (const char* name : {"produto_stats.doc", "Etiqueta.doc", "Etiquetas.doc"}) UseShipped(name);
    WriteReport("relatorio", "10011", 0);
    WriteReport("relatorio_longo", "10466", 120);
    WriteReport("relatorio_vazio", "10145", 0);
    WriteLabel("etiqueta", "10006");
    WriteSheet("folha_dependentes", "10300", 4, 5);
    WriteEveryCharacter("folha_caracteres");
    if (!reporting.reports.empty()) throw std::runtime_error(reporting.reports[0].description);
  }

 private:
  // What stands behind "text: " is found in this order.
  void Save(const std::string& name, const std::string& document, const std::string& expected) {
    std::ofstream(folder_ / (name + ".doc"), std::ios::binary) << document;
    std::ofstream(folder_ / (name + ".expected"), std::ios::binary) << expected;
  }
  static std::string Text(const std::string& text) {
    return "text: " + base::ReplaceAll(base::ReplaceAll(text, "\r", " "), "\n", " ") + "\n";
  }

  // The report's amounts have no currency sign of their own.
  static std::string Amount(const controls::TextField& field) { return Text(base::ReplaceAll(field.text(), "€ ", "")); }

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
    for (const std::string& text : {form->FXTipo_ID.text(), form->FXMarca.text(), form->FXFamilia_ID.text(),
                                    form->FXSub_Familia_ID.text(), form->FXFornecedor_ID.text(), form->FXObs.text()}) {
      expected += Text(text);
    }
    expected += Amount(form->FXValor) + Text(form->FXIva_ID.text());
    for (const controls::TextField* field : {&form->FXIVA, &form->FXTOTAL, &form->FXDesconto, &form->FXPrecoMin,
                                             &form->FXPrecoMax, &form->FXQuantidade, &form->FXValorTotal}) {
      expected += Amount(*field);
    }
    for (int line = 0; line < form->ListView13.Count(); ++line) {
      for (int column = 0; column < 7; ++column) expected += Text(form->ListView13.Cell(line, column));
    }
    expected += "every page: Ana Mourão\n";
    if (more_movements > 0) expected += "every page: Data Entidade Documento N.º Quantidade Preço unit. Total\n";
    Save(name, Written("produto_stats.doc"), expected);
    form->Unload();
  }

  std::shared_ptr<product::frmEtiquetas> OpenLabels(product::frmMain& form) {
    form.ConstructDoc("");
    for (const auto& [shown, owner] : form_host.shown) {
      if (shown->name() == "frmEtiquetas") return std::static_pointer_cast<product::frmEtiquetas>(owner);
    }
    throw std::runtime_error("no label form");
  }

  void WriteLabel(const std::string& name, const std::string& code) {
    const auto form = OpenForm(IdOfCode(code));
    OpenLabels(*form)->Command1_Click();
    Save(name, Written("Etiqueta.doc"),
         Text(form->FXNome.text()) + Text(code) + Text(form->FXTOTAL.text()) + "grid: 1x1\ncode: " + code + "\n");
    form->Unload();
  }

  void WriteSheet(const std::string& name, const std::string& code, int copies, int first_position) {
    const auto form = OpenForm(IdOfCode(code));
    const auto labels = OpenLabels(*form);
    labels->FXQuantidade.Typed(std::to_string(copies));
    labels->FXPosicao.Typed(std::to_string(first_position));
    labels->Command1_Click();
    std::string expected = "grid: 3x8\n";
    for (int i = 1; i < first_position; ++i) expected += "code: \n";
    const ports::RowSet rows =
        Sql("SELECT codigo FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + std::to_string(form->ProdutoId()) +
            " ORDER BY codigo");
    for (const ports::Row row : rows) {
      for (int i = 0; i < copies; ++i) expected += "code: " + row["codigo"].text() + "\n";
    }
    Save(name, Written("Etiquetas.doc"), expected);
    form->Unload();
  }

  // One sheet of codes that together hold every character of a bar code, singly and in pairs of digits.
  void WriteEveryCharacter(const std::string& name) {
    product::LabelRun run;
    const auto add = [&](const std::string& code) {
      run.labels.push_back({.nome = "Um nome comprido: " + std::string(15, 'W') + " " + std::string(100, 'm'),
                            .codigo = code,
                            .cor = "Castanho-escuro",
                            .tamanho = "XXXL",
                            .preco = "€ 1 234,50"});
    };
    for (char first = ' '; first <= '~' - 9; first = static_cast<char>(first + 10)) {
      std::string code = "a";
      for (char c = first; c < first + 10 && c <= '~'; ++c) code += c;
      add(code + "b");
    }
    add("uvwxyz{|}~");
    for (int tens = 0; tens < 10; tens += 2) {
      std::string code;
      for (int pair = tens * 10; pair < tens * 10 + 20; ++pair) {
        code += static_cast<char>('0' + pair / 10);
        code += static_cast<char>('0' + pair % 10);
      }
      add(code);
    }
    for (const char* code : {"1", "12", "A123456B", "2099000105266", "WWWWWWWWWWWWWWWWWWWWWWWWWWWW"}) add(code);
    std::string expected = "grid: 3x8\n";
    for (const product::ProductLabel& label : run.labels) expected += "code: " + label.codigo + "\n";
    Save(name, product::FillLabels(settings.files[R"(C:\Modelos\Etiquetas.doc)"], run), expected);
  }

  std::filesystem::path folder_;
};

}  // namespace
}  // namespace quenta::tests

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("write_documents FOLDER\n", stderr);
    return 2;
  }
  try {
    quenta::tests::Writer(argv[1]).Run();
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "write_documents: %s\n", exception.what());
    return 1;
  }
}
