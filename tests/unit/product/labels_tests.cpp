#include "product/labels.h"

#include "document_fixture.h"
#include "product/frm_etiquetas.h"

namespace quenta::tests {
namespace {

using product::FillLabels;
using product::frmEtiquetas;
using product::LabelsOnSheet;
using product::ProductLabel;

constexpr const char* kSheet = R"({\rtf1{\f0}\pard 1<<codigo>> 2<<codigo>> 3<<codigo>>\par})";

// Labels with the codes A, B, C …
std::vector<ProductLabel> Labels(int count) {
  std::vector<ProductLabel> labels;
  for (int i = 0; i < count; ++i) labels.push_back({"Nome", std::string(1, static_cast<char>('A' + i)), "€ 1,00"});
  return labels;
}

TEST(Labels, StandFromTheFirstFreePositionOnAsManySheetsAsTheyNeed) {
  const struct {
    int labels;
    std::size_t copies;
    std::size_t first_position;
    const char* sheets;
  } cases[] = {
      {1, 1, 1, R"(\pard 1A 2 3\par)"},
      {1, 1, 3, R"(\pard 1 2 3A\par)"},
      {2, 1, 2, R"(\pard 1 2A 3B\par)"},
      {3, 1, 1, R"(\pard 1A 2B 3C\par)"},
      {2, 2, 1, "\\pard 1A 2A 3B\\par\\sect\n\\pard 1B 2 3\\par"},
      {1, 6, 3, "\\pard 1 2 3A\\par\\sect\n\\pard 1A 2A 3A\\par\\sect\n\\pard 1A 2A 3\\par"},
  };
  for (const auto& [labels, copies, first_position, sheets] : cases) {
    EXPECT_EQ(FillLabels(kSheet, {Labels(labels), copies, first_position}),
              std::string(R"({\rtf1{\f0})") + sheets + "}")
        << labels << " x " << copies << " from " << first_position;
  }
}

TEST(Labels, EachPlaceholderCountsForItself) {
  EXPECT_EQ(FillLabels("<<nome>> <<nome>>\n<<preco>> <<preco>>", {{{"{x}", "1", ""}, {"<<preco>>", "2", "€ 5"}}}),
            "\\{x\\} <<preco>>\n \\u8364? 5");
  EXPECT_EQ(LabelsOnSheet("<<nome>><<codigo>><<nome>> <<outro>>"), 2U);
  EXPECT_EQ(LabelsOnSheet("<nome> <<nome"), 0U);
  EXPECT_THROW(FillLabels("sem etiquetas", {Labels(1)}), base::Error);
}

TEST(Labels, CodesThatCannotBeBarsLeaveTheirPlaceEmpty) {
  const product::LabelRun run{{{"", "10000", ""}, {"", "Ç1", ""}, {"", "", ""}}};
  const std::string bars = "<<barras>>.<<barras>>.<<barras>>.";
  const std::string filled = FillLabels(bars, run);
  EXPECT_TRUE(filled.starts_with("{\\pict\\wmetafile8"));
  EXPECT_TRUE(filled.ends_with("}..."));
  EXPECT_EQ(CodesWithoutBars(bars, run), std::vector<std::string>{"Ç1"});
  EXPECT_TRUE(CodesWithoutBars("<<codigo>>", run).empty());
}

class LabelFormTest : public DocumentTest {
 protected:
  void SetUp() override {
    DocumentTest::SetUp();
    SetTemplate("Etiqueta.doc", "<<nome>>;<<codigo>>;<<preco>>");
    std::string sheet;
    for (int i = 0; i < 24; ++i) sheet += "<<codigo>>;<<preco>>\n";
    SetTemplate("Etiquetas.doc", sheet);
  }
  // The form that the button opens; null when it opens none.
  std::shared_ptr<frmEtiquetas> OpenLabels(product::frmMain& form) {
    form.ConstructDoc("");
    for (const auto& [shown, owner] : form_host.shown) {
      if (shown->name() == "frmEtiquetas") return std::static_pointer_cast<frmEtiquetas>(owner);
    }
    return nullptr;
  }
  static void ChooseSheet(frmEtiquetas& labels) {
    labels.Option1.set_value(false);
    labels.Option2.Clicked(true);
  }
};

TEST_F(LabelFormTest, OneLabelIsOfTheProductAsItIsShown) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.set_text("Azeite {novo}");
  const auto labels = OpenLabels(*form);
  ASSERT_TRUE(labels);
  EXPECT_FALSE(form->enabled()) << "until the labels are printed";
  EXPECT_FALSE(labels->FXQuantidade.enabled());
  labels->Command1.Clicked();
  EXPECT_EQ(Written("Etiqueta.doc"), "Azeite \\{novo\\};10000;\\u8364? 9,95");
  EXPECT_EQ(desktop.opened, std::vector<std::string>{R"(C:\Temp\Etiqueta.doc)"});
  EXPECT_FALSE(labels->loaded());
  EXPECT_TRUE(form->enabled());
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(LabelFormTest, ASheetTakesAsManyAsTheUserWants) {
  const auto form = OpenForm(IdOfCode("10000"));
  const auto labels = OpenLabels(*form);
  ChooseSheet(*labels);
  EXPECT_TRUE(labels->FXQuantidade.enabled());
  labels->FXQuantidade.Typed(" 3 ");
  labels->FXPosicao.Typed("2");
  labels->Command1.Clicked();
  const std::string label = "10000;\\u8364? 9,95\n";
  std::string expected = ";\n" + label + label + label;
  for (int i = 4; i < 24; ++i) expected += ";\n";
  EXPECT_EQ(Written("Etiquetas.doc"), expected);
}

TEST_F(LabelFormTest, DependantsGetALabelEachWithTheirOwnPrice) {
  const auto form = OpenForm(IdOfCode("10300"));
  const std::string id = std::to_string(form->ProdutoId());
  Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE codigo = '10300-PT-40'");
  const std::string dependant = std::to_string(IdOfCode("10300-CS-42"));
  Sql("UPDATE tbProdutos_Precos SET preco_total = 77.5 WHERE predef <> 0 AND produto_id = " + dependant);
  Sql("DELETE FROM tbProdutos_Precos WHERE produto_id = " + std::to_string(IdOfCode("10300-CS-43")));
  Sql("UPDATE tbProdutos_Precos SET predef = 1 WHERE produto_id = " + std::to_string(IdOfCode("10300-PT-41")));
  const auto labels = OpenLabels(*form);
  EXPECT_TRUE(labels->Option2.value());
  EXPECT_NE(labels->Label1.caption().find("7 dependentes"), std::string::npos) << labels->Label1.caption();
  labels->Command1.Clicked();
  const std::string sheet = Written("Etiquetas.doc");
  EXPECT_TRUE(
      sheet.starts_with("10300-CS-40;\\u8364? 89,00\n10300-CS-41;\\u8364? 89,00\n10300-CS-42;\\u8364? "
                        "77,50\n10300-CS-43;\n10300-PT-41;\\u8364? "))
      << sheet.substr(0, 200);
  EXPECT_EQ(sheet.find("10300-PT-40"), std::string::npos) << "deleted";
  EXPECT_EQ(sheet.find("10300-PT-41"), sheet.rfind("10300-PT-41")) << "two default lines are one label";
}

TEST_F(LabelFormTest, RefusesNumbersThatAreNone) {
  const auto form = OpenForm(IdOfCode("10000"));
  const auto labels = OpenLabels(*form);
  ChooseSheet(*labels);
  const struct {
    const char* quantity;
    const char* position;
    const char* text;
    const char* field;
  } cases[] = {
      {"", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"0", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"-1", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"1,5", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"2401", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"99999999999999999999999", "1", "Indique quantas etiquetas quer: um número de 1 a 2400.", "FXQuantidade"},
      {"1", "25", "Indique a primeira posição livre da folha: um número de 1 a 24.", "FXPosicao"},
      {"1", "a", "Indique a primeira posição livre da folha: um número de 1 a 24.", "FXPosicao"},
  };
  for (const auto& [quantity, position, text, field] : cases) {
    labels->FXQuantidade.Typed(quantity);
    labels->FXPosicao.Typed(position);
    form_host.focused.clear();
    labels->Command1.Clicked();
    EXPECT_EQ(LastMessage().text, text) << quantity << ", " << position;
    EXPECT_EQ(form_host.focused, field);
    EXPECT_TRUE(labels->loaded());
  }
  EXPECT_EQ(Written("Etiquetas.doc"), "(none)");
}

TEST_F(LabelFormTest, WhatGoesWrongIsToldOrReportedAndNothingIsOpened) {
  const auto form = OpenForm(IdOfCode("10000"));
  settings.registry.erase(kTemplatesSetting);
  EXPECT_FALSE(OpenLabels(*form));
  EXPECT_EQ(LastMessage().text, "Erro nas definições do Registry, não está definida a string de Templates.");
  settings.registry[kTemplatesSetting] = R"(C:\Nada)";
  EXPECT_FALSE(OpenLabels(*form));
  settings.registry[kTemplatesSetting] = R"(C:\Modelos)";
  SetTemplate("Etiquetas.doc", "sem etiquetas");
  EXPECT_FALSE(OpenLabels(*form));
  ASSERT_EQ(reporting.reports.size(), 2U);
  EXPECT_EQ(reporting.reports[0], (ports::ErrorReport{"Quentis Gestão Comercial", "Clientes_Kinto", "frmMain",
                                                      "ConstructDoc", R"(File not found: C:\Nada\Etiqueta.doc)"}));
  EXPECT_TRUE(form->enabled());

  SetTemplate("Etiquetas.doc", "<<codigo>>");
  settings.write_errors[R"(C:\Temp\Etiqueta.doc)"] = base::error_number::kPermissionDenied;
  const auto labels = OpenLabels(*form);
  ASSERT_TRUE(labels);
  labels->Command1.Clicked();
  EXPECT_EQ(LastMessage().text, "Tem uma impressão aberta. Feche esse ficheiro antes de iniciar uma nova impressão.");
  EXPECT_TRUE(labels->loaded()) << "the user closes the document and tries again";
  EXPECT_TRUE(desktop.opened.empty());
  labels->Command2.Clicked();
  EXPECT_TRUE(form->enabled());
}

TEST_F(LabelFormTest, ProductsWithoutAPriceOrACodeThatBarsCanCarry) {
  SetTemplate("Etiqueta.doc", "<<codigo>>;<<preco>>;<<barras>>");
  const struct {
    const char* code;
    const char* typed;
    const char* label;
    bool told;
  } cases[] = {{"10402", "10402", "10402;;{", false},  // no default line
               {"10703", "10703", "10703;;{", false},  // deleted: no prices at all
               {"10000", "Ção", R"(\u199?\u227?o;\u8364? 9,95;)", true},
               {"10000", "", ";\\u8364? 9,95;", false}};
  for (const auto& [code, typed, label, told] : cases) {
    const auto form = OpenForm(IdOfCode(code));
    form->FXCodigo.set_text(typed);
    desktop.messages.clear();
    OpenLabels(*form)->Command1.Clicked();
    EXPECT_TRUE(Written("Etiqueta.doc").starts_with(label)) << code << ": " << Written("Etiqueta.doc").substr(0, 60);
    EXPECT_EQ(desktop.messages.size(), told ? 1U : 0U) << code;
    form->SetAltered(false);
    form->Unload();
  }
}

TEST_F(LabelFormTest, TheShippedTemplatesHaveTheirPlaces) {
  UseShipped("Etiqueta.doc");
  UseShipped("Etiquetas.doc");
  const auto form = OpenForm(IdOfCode("10466"));
  const auto labels = OpenLabels(*form);
  EXPECT_EQ(labels->FXPosicao_Label.caption(), "&Primeira posição livre (1 a 24)");
  ChooseSheet(*labels);
  labels->FXQuantidade.Typed("60");
  labels->Command1.Clicked();
  const std::string document = Written("Etiquetas.doc");
  const RichTextContents sheets = ReadRichText(document);
  EXPECT_TRUE(sheets.balanced);
  EXPECT_EQ(sheets.text.find('<'), std::string::npos);
  std::size_t names = 0;
  for (std::size_t at = 0; (at = sheets.text.find(form->FXNome.text(), at)) != std::string::npos; ++at) ++names;
  EXPECT_EQ(names, 60U);
  std::size_t sections = 0;
  for (std::size_t at = 0; (at = document.find("\\sect", at)) != std::string::npos; ++at) ++sections;
  EXPECT_EQ(sections, 2U);
}

}  // namespace
}  // namespace quenta::tests
