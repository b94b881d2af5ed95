#include "base/date.h"
#include "base/error.h"
#include "base/format.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "document_fixture.h"
#include "product/rich_text.h"

namespace quenta::tests {
namespace {

class ReportTest : public DocumentTest {
 protected:
  // The report of this template, without the line end behind it; "(none)" when there is none.
  std::string Report(product::frmMain& form, const std::string& bytes) {
    SetTemplate("t.doc", bytes);
    std::string path;
    const std::string written = form.DoReport(path, "t.doc");
    if (written.empty()) return "(none)";
    EXPECT_EQ(written, R"(C:\Temp\t.doc)");
    EXPECT_EQ(path, written);
    const std::string report = Written("t.doc");
    EXPECT_TRUE(report.ends_with("\r\n"));
    return report.substr(0, report.size() - 2);
  }
  void AddMovement(product::frmMain& form, const std::vector<std::string>& cells) {
    form.ListView13.Add("1#" + std::to_string(form.ListView13.Count()), cells[0]).sub_items = {cells.begin() + 1,
                                                                                               cells.end()};
  }
};

TEST_F(ReportTest, EachPlaceholderGetsItsValueAndAsManyBlanksWhenThereIsNone) {
  const auto form = OpenForm(IdOfCode("10300-CS-42"));
  const auto choose = [](controls::ComboBox& box, const char* text) {
    box.AddItem(text);
    box.SetListIndex(box.NewIndex());
  };
  choose(form->FXTipo_ID, "Calçado");
  choose(form->FXFornecedor_ID, "Irmãos {Sá}, Lda.");
  choose(form->FXFamilia_ID, "Vestuário");
  choose(form->FXSub_Familia_ID, "Sapatos");
  choose(form->FXIva_ID, "23 %");
  form->FXCodigo.set_text("A\\1");
  form->FXNome.set_text("Nome");
  form->FXTipo.set_text("Revenda");
  form->FXMarca.set_text("Marca");
  form->FXCor.set_text("Castanho");
  form->FXTamanho.set_text("42");
  form->FXObs.set_text("um\r\ndois");
  const auto set = [&](controls::TextField& field, double value, int code) {
    controls::SetFieldValue(field, value, code, settings.locale);
  };
  using namespace controls::format_code;
  set(form->FXAltura, 1.5, kNumber);
  set(form->FXLargura, 2, kNumber);
  set(form->FXProfundidade, 3, kNumber);
  set(form->FXValor, 1234.5678, kAmount);
  set(form->FXIVA, -0.5, kAmount);
  set(form->FXTOTAL, 8.13008, kAmount4);
  set(form->FXDesconto, 0.1, kPercent);
  set(form->FXPrecoMin, 1, kAmount);
  set(form->FXPrecoMax, 2, kAmount);
  set(form->FXQuantidade, -3, kNumber);
  set(form->FXValorTotal, 4, kAmount);
  form->FXData_Inicio.set_value(*base::MakeDate({2025, 1, 2, 0, 0, 0}));
  form->FXData_Fim.set_value(*base::MakeDate({2025, 12, 31, 0, 0, 0}));
  form->TabStrip1.SelectKey("compras");
  const base::Locale& locale = settings.locale;
  const std::string today = base::Format(base::Value(Sql("SELECT GETDATE()").front().At(0)), "dd mmmm", locale);
  const struct {
    const char* placeholder;
    const char* value;
    const char* when_empty;
  } cases[] = {
      {"<data_inicio>", "02-01-2025", nullptr},
      {"<data_fim>", "31-12-2025", nullptr},
      {"<tipo>", R"({\uc1 Cal\u231?ado})", " "},
      {"<codigo>", R"(A\\1)", " "},
      {"<fornecedor>", R"({\uc1 Irm\u227?os \{S\u225?\}, Lda.})", "  "},
      {"<familia>", R"({\uc1 Vestu\u225?rio})", "  "},
      {"<sub_familia>", "Sapatos", "  "},
      {"<marca>", "Marca", "  "},
      {"<descrit>", "Nome", "  "},
      {"<listagem>", "Compras", nullptr},
      {"<tamanho>", "42", "  "},
      {"<cor>", "Castanho", "  "},
      {"<altura>", "1,50", "  "},
      {"<largura>", "2,00", "  "},
      {"<profundidade>", "3,00", "  "},
      {"<obs>", R"(um\line dois)", "  "},
      {"<tipo_preco>", "Revenda", "  "},
      {"<valor>", R"({\uc1 1\u160?234,57})", ""},
      {"<iva>", " - 0,50", ""},
      {"<total>", "8,13", ""},
      {"<desconto>", "10,00 %", ""},
      {"<taxa_iva>", "23 %", ""},
      {"<preco_min>", "1,00", ""},
      {"<preco_max>", "2,00", ""},
      {"<quantidade_total>", " - 3,00", ""},
      {"<valor_total>", "4,00", ""},
  };
  for (const auto& [placeholder, value, when_empty] : cases) {
    const std::string twice = std::string("{") + placeholder + "}{" + placeholder + "}";
    EXPECT_EQ(Report(*form, twice), std::string("{") + value + "}{" + value + "}") << placeholder;
  }
  EXPECT_EQ(Report(*form, "<ToDay>").substr(0, 2), today.substr(0, 2)) << "in any letter case";
  const std::string user = product::StringRTF(SqlText(
      "SELECT nome_union FROM tbContactos JOIN tbUsers ON tbUsers.contacto_id = tbContactos.contacto_id WHERE descrit "
      "= 'ana'"));
  EXPECT_EQ(Report(*form, "<USER>|<user>|<CODIGO>|<nada>"), user + "|" + user + "|<CODIGO>|<nada>");

  for (controls::Control* control : form->controls()) {
    if (control != &form->FXData_Inicio && control != &form->FXData_Fim) {
      controls::SetFieldValue(*control, base::Value::Null(), 0, locale);
    }
  }
  for (const auto& [placeholder, value, when_empty] : cases) {
    if (when_empty == nullptr) continue;
    EXPECT_EQ(Report(*form, placeholder), when_empty) << placeholder;
  }
}

TEST_F(ReportTest, EachMovementIsARowAndNoValueIsExpandedAgain) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.set_text("<preco_total>");
  AddMovement(*form, {"01-02-2025", "Café {do} Cais", "Factura", "7", "2,00", "€ 3,00", "€ 6,00", "3", "6"});
  AddMovement(*form, {"03-02-2025", "<data>", "<tipo>", "<user>", "-1,00", " ", "\\row", "0", "0"});
  const std::string row =
      R"(\trowd\cellx9 <data>\cell <entidade>\cell <tipo>\cell <documento_no>\cell <quantidade>\cell <preco_unitario>\cell <preco_total>\cell <data>\row)";
  const std::string before = R"({\rtf1 <descrit> <preco_unitario>\par\trowd Data\cell\row)";
  EXPECT_EQ(
      Report(*form, before + "\n" + row + "\n<tipo>}"),
      R"({\rtf1 <preco_total> <preco_unitario>\par\trowd Data\cell\row)"
      "\n"
      R"(\trowd\cellx9 01-02-2025\cell {\uc1 Caf\u233? \{do\} Cais}\cell Factura\cell 7\cell 2,00\cell {\uc1 \u8364? 3,00}\cell {\uc1 \u8364? 6,00}\cell 01-02-2025\row)"
      R"(\trowd\cellx9 03-02-2025\cell <data>\cell <tipo>\cell <user>\cell -1,00\cell  \cell \\row\cell 03-02-2025\row)"
      "\nArtigo}");
  form->ListView13.Clear();
  EXPECT_EQ(Report(*form, R"({\trowd <data>|<entidade>|<tipo>|<codigo>|<quantidade>\cell\row})"),
            R"({\trowd  | | |10000| \cell\row})")
      << "without movements the row stays with blanks";
  std::string path = R"(D:\aqui.doc)";
  EXPECT_EQ(form->DoReport(path, "t.doc"), R"(D:\aqui.doc)") << "a given path is kept";
  EXPECT_FALSE(settings.files[path].empty());
}

TEST_F(ReportTest, OddTemplatesKeepTheirBytes) {
  const auto form = OpenForm(IdOfCode("10000"));
  AddMovement(*form, {"01-02-2025", "Cais", "Factura", "7", "2,00", "3,00", "6,00"});
  std::string all_bytes;
  for (int byte = 0; byte < 256; ++byte) all_bytes += static_cast<char>(byte);
  for (const std::string& same : {std::string(), all_bytes, std::string(R"({\rtf1 <data> sem linha})"),
                                  std::string(R"({\trowd <data>\cell <entidade>\cell)"), std::string("<"),
                                  std::string("<<<<"), std::string(R"({\trowd Data\cell\row <cod)")}) {
    EXPECT_EQ(Report(*form, same), same);
  }
  EXPECT_EQ(Report(*form, "\x80\xE9<codigo>\xFF"),
            "\x80\xE9"
            "10000\xFF");
}

TEST_F(ReportTest, TheUsersNameIsAskedForSafely) {
  const auto form = OpenForm(IdOfCode("10000"));
  for (const char* user : {"rui", "ninguém", "d'orey", "x' OR '1' = '1"}) {
    session.state().session_user = user;
    const std::string report = Report(*form, "[<user>]");
    if (std::string(user) != "d'orey") {
      EXPECT_EQ(report, "[  ]") << user;
    } else {
      EXPECT_GT(report.size(), 4U) << user;
    }
  }
  EXPECT_TRUE(reporting.reports.empty());
  EXPECT_EQ(database.statements[database.statements.size() - 2],
            "SELECT tbContactos.nome_union FROM tbUsers LEFT JOIN tbContactos ON tbUsers.contacto_id = "
            "tbContactos.contacto_id WHERE tbUsers.descrit = 'x' + CHAR(39) + ' OR ' + CHAR(39) + '1' + CHAR(39) + ' = "
            "' + CHAR(39) + '1'");
}

TEST_F(ReportTest, WithoutATemplatesFolderTheUserIsTold) {
  const auto form = OpenForm(IdOfCode("10000"));
  for (const char* folder : {static_cast<const char*>(nullptr), "", "  "}) {
    settings.registry.erase(kTemplatesSetting);
    if (folder != nullptr) settings.registry[kTemplatesSetting] = folder;
    form->set_mouse_pointer(controls::MousePointer::kHourglass);
    desktop.messages.clear();
    form->Toolbar3_ButtonClick("relatorio");
    EXPECT_EQ(LastMessage().text, "Erro nas definições do Registry, não está definida a string de Templates.");
    EXPECT_EQ(LastMessage().icon, ports::Icon::kInformation);
    EXPECT_EQ(LastMessage().buttons, ports::Buttons::kOk);
    EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
  }
  EXPECT_TRUE(desktop.opened.empty());
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(ReportTest, TheButtonOpensTheReportAndNothingWhenThereIsNone) {
  SetTemplate("produto_stats.doc", "{<codigo>}");
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string path = R"(C:\Temp\produto_stats.doc)";
  form->Toolbar3_ButtonClick("relatorio");
  form->FXCodigo.set_text("outro");
  form->Toolbar3_ButtonClick("relatorio");
  EXPECT_EQ(desktop.opened, (std::vector<std::string>{path, path}));
  EXPECT_EQ(Written("produto_stats.doc"), "{outro}\r\n") << "the second report takes the first one's place";
  EXPECT_TRUE(desktop.messages.empty());

  settings.write_errors[path] = base::error_number::kPermissionDenied;
  form->Toolbar3_ButtonClick("relatorio");
  EXPECT_EQ(LastMessage().text, "Tem uma impressão aberta. Feche esse ficheiro antes de iniciar uma nova impressão.");
  EXPECT_EQ(LastMessage().title, "Impressões");
  EXPECT_EQ(LastMessage().icon, ports::Icon::kInformation);
  EXPECT_TRUE(LastMessage().system_modal);
  EXPECT_TRUE(reporting.reports.empty());

  settings.write_errors[path] = base::error_number::kPathNotFound;
  form->Toolbar3_ButtonClick("relatorio");
  settings.write_errors.clear();
  settings.files.erase(R"(C:\Modelos\produto_stats.doc)");
  form->Toolbar3_ButtonClick("relatorio");
  SetTemplate("produto_stats.doc", "{<user>}");
  database.Forget();
  database.fail_at = 0;
  form->Toolbar3_ButtonClick("relatorio");
  const char* descriptions[] = {"Cannot write.", R"(File not found: C:\Modelos\produto_stats.doc)", "Injected failure"};
  ASSERT_EQ(reporting.reports.size(), std::size(descriptions));
  for (std::size_t i = 0; i < std::size(descriptions); ++i) {
    EXPECT_EQ(reporting.reports[i], (ports::ErrorReport{"Quentis Gestão Comercial", "Clientes_Kinto", "frmMain",
                                                        "DoReport", descriptions[i]}));
  }
  EXPECT_EQ(desktop.opened.size(), 2U);
  EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
}

TEST_F(ReportTest, TheShippedTemplateShowsEverythingOfAnyProduct) {
  UseShipped("produto_stats.doc");
  for (const char* code : {"10011", "10006", "10466", "10702", "10401", "10145", "A13"}) {
    const auto form = OpenForm(IdOfCode(code));
    form->FXData_Inicio.set_value(*base::MakeDate({2024, 1, 1, 0, 0, 0}));
    form->TabStrip1.SelectKey("vendas");
    form->Fill_Track(1);
    std::string path;
    ASSERT_FALSE(form->DoReport(path, "produto_stats.doc").empty()) << code;
    const RichTextContents report = ReadRichText(Written("produto_stats.doc"));
    EXPECT_TRUE(report.balanced) << code;
    EXPECT_EQ(report.text.find('<'), std::string::npos) << "a placeholder is left: " << code;
    EXPECT_NE(report.text.find(form->FXNome.text()), std::string::npos) << code;
    const std::string total = base::ReplaceAll(form->FXValorTotal.text(), "€ ", "");
    for (const std::string& text : {"Preço: " + form->FXTipo.text(), "\nTotal do período (€)|" + total + "|\n"}) {
      EXPECT_NE(report.text.find(text), std::string::npos) << code << ": " << text;
    }
    for (int line = 0; line < form->ListView13.Count(); ++line) {
      std::string row;
      for (int column = 0; column < 7; ++column) row += form->ListView13.Cell(line, column) + "|";
      EXPECT_NE(report.text.find("\n" + row), std::string::npos) << code << ": " << row;
    }
    form->Unload();
  }
}

}  // namespace
}  // namespace quenta::tests
