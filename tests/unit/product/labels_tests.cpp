#include "product/labels.h"

#include "base/text.h"
#include "document_fixture.h"
#include "product/frm_etiquetas.h"
#include "product/label_fit.h"

namespace quenta::tests {
namespace {

using product::FillLabel;
using product::FillLabels;
using product::frmEtiquetas;
using product::LabelsOnSheet;
using product::ProductLabel;

constexpr const char* kSheet = R"({\rtf1{\f0}\pard 1<<codigo>> 2<<codigo>> 3<<codigo>>\par})";

// Labels with the codes A, B, C …
std::vector<ProductLabel> Labels(int count) {
  std::vector<ProductLabel> labels;
  for (int i = 0; i < count; ++i) {
    labels.push_back({.nome = "Nome", .codigo = std::string(1, static_cast<char>('A' + i)), .preco = "€ 1,00"});
  }
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
  const ProductLabel first{"{x}", "1", "Azul", "42", ""};
  const ProductLabel second{"<<preco>>", "2", "", "", "€ 5"};
  EXPECT_EQ(FillLabels("<<nome>> <<nome>>\n<<cor>><<tamanho>><<preco>> <<preco>>", {{first, second}}),
            "\\{x\\} <<preco>>\nAzul42 {\\uc1 \\u8364? 5}");
  EXPECT_EQ(FillLabel("<<nome>> <<nome>>\n<<cor>> <<codigo>>", first), "\\{x\\} \\{x\\}\nAzul 1")
      << "one label shows the same everywhere";
  EXPECT_THROW(FillLabel("sem etiquetas", first), base::Error);
  EXPECT_EQ(LabelsOnSheet("<<nome>><<codigo>><<nome>> <<outro>>"), 2U);
  EXPECT_EQ(LabelsOnSheet("<nome> <<nome"), 0U);
  EXPECT_THROW(FillLabels("sem etiquetas", {Labels(1)}), base::Error);
}

TEST(Labels, CodesThatCannotBeBarsLeaveTheirPlaceEmpty) {
  const product::LabelRun run{{{.codigo = "10000"}, {.codigo = "Ç1"}, {}}};
  const std::string bars = "<<barras>>.<<barras>>.<<barras>>.";
  const std::string filled = FillLabels(bars, run);
  EXPECT_TRUE(filled.starts_with("{\\pict\\wmetafile8"));
  EXPECT_TRUE(filled.ends_with("}..."));
  EXPECT_EQ(CodesWithoutBars(bars, run), std::vector<std::string>{"Ç1"});
  EXPECT_TRUE(CodesWithoutBars("<<codigo>>", run).empty());
}

// Which names are cut is the template's to say: by the cell's width and exact height, and by the font.
TEST(Labels, ANameThatDoesNotFitEndsInAnEllipsis) {
  const std::string w(40, 'W');
  const std::string n = std::string(35, 'n') + " " + std::string(35, 'n');
  const struct {
    const char* place;
    std::string name;
    std::string shown;  // "…" for the name cut somewhere
  } cases[] = {
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", "Azeite virgem extra", "Azeite virgem extra"},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w, w},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w + w, "…"},
      {R"(\trrh-400\cellx3515\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\trgaph100\cellx3515\pard\intbl\sl-205\li200\ri200{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205\sb100{\b\fs17 #}\cell\row)", w, "…"},
      {R"(\trrh-410\cellx9000\cellx12515\pard\intbl\sl-205{\b\fs17 x\cell #}\cell\row)", w + w, "…"},
      {R"(\trrh-410\cellx9000\pard\intbl\sl-205{\b\fs17 #}\cell\row)", w + w, w + w},
      {R"(\trrh-410\cellx3515\pard\intbl\sl-205{\b\fs8 }{\fs17 #}\cell\row)", n, n},
      {R"(\trrh410\cellx3515\pard\intbl{\b\fs17 #}\cell\row)", w + w, w + w},
      {R"(\trrh-410\cellx3515\pard\intbl a\cell\row\pard\par #)", w + w, w + w},
  };
  for (const auto& [place, name, shown] : cases) {
    const std::string label_template = R"({\rtf1\trowd)" + base::ReplaceAll(place, "#", "<<nome>>") + "}";
    const std::string text = ReadRichText(FillLabel(label_template, {.nome = name})).text;
    const bool cut = text.find("…") != std::string::npos;
    EXPECT_EQ(cut, shown == "…") << place << ": " << text;
    if (!cut) {
      EXPECT_NE(text.find(shown), std::string::npos) << place << ": " << text;
    }
  }
  const product::LabelRoom room{.width = 3515, .lines = 2, .half_points = 17, .bold = true};
  const std::string name = "Máquina de café automática com moinho integrado e depósito duplo de água, aço inoxidável";
  EXPECT_EQ(product::FitToRoom(name, room),
            "Máquina de café automática com moinho integrado e depósito duplo de água, aç…");
  EXPECT_EQ(product::FitToRoom("", room), "");
  EXPECT_EQ(product::FitToRoom("a\r\nb\r\nc", room), "a\nb…");
  EXPECT_EQ(product::FitToRoom("🍷🍷", {.width = 300, .lines = 1, .half_points = 17}), "…") << "no half of a character";
}

class LabelFormTest : public DocumentTest {
 protected:
  void SetUp() override {
    DocumentTest::SetUp();
    SetTemplate("Etiqueta.doc", "<<nome>>;<<codigo>>;<<preco>>");
    std::string sheet;
    for (int i = 0; i < 24; ++i) sheet += "<<codigo>>;<<cor>>;<<tamanho>>;<<preco>>\n";
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
  EXPECT_EQ(Written("Etiqueta.doc"), "Azeite \\{novo\\};10000;{\\uc1 \\u8364? 9,95}");
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
  const std::string label = "10000;;;{\\uc1 \\u8364? 9,95}\n";
  std::string expected = ";;;\n" + label + label + label;
  for (int i = 4; i < 24; ++i) expected += ";;;\n";
  EXPECT_EQ(Written("Etiquetas.doc"), expected);
}

TEST_F(LabelFormTest, DependantsGetALabelEachWithTheirColourSizeAndPrice) {
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
      sheet.starts_with("10300-CS-40;Castanho;40;{\\uc1 \\u8364? 89,00}\n10300-CS-41;Castanho;41;{\\uc1 \\u8364? "
                        "89,00}\n10300-CS-42;Castanho;42;{\\uc1 \\u8364? 77,50}\n10300-CS-43;Castanho;43;\n"
                        "10300-PT-41;Preto;41;{\\uc1 \\u8364? "))
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
  SetTemplate("Etiqueta.doc", "sem etiquetas");
  SetTemplate("Etiquetas.doc", "sem etiquetas");
  EXPECT_FALSE(OpenLabels(*form));
  ASSERT_EQ(reporting.reports.size(), 2U);
  EXPECT_EQ(reporting.reports[0], (ports::ErrorReport{"Quentis Gestão Comercial", "Clientes_Kinto", "frmMain",
                                                      "ConstructDoc", R"(File not found: C:\Nada\Etiqueta.doc)"}));
  EXPECT_TRUE(form->enabled());

  SetTemplate("Etiqueta.doc", "<<codigo>>");
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

TEST_F(LabelFormTest, EachChoiceNeedsOnlyItsOwnTemplate) {
  for (const char* missing : {"Etiqueta.doc", "Etiquetas.doc"}) {
    SetTemplate("Etiqueta.doc", "<<codigo>>");
    SetTemplate("Etiquetas.doc", "<<codigo>>");
    settings.files.erase(std::string("C:\\Modelos\\") + missing);
    const bool one = std::string(missing) == "Etiquetas.doc";
    for (const char* code : {"10000", "10300"}) {  // without and with dependants
      const auto form = OpenForm(IdOfCode(code));
      const auto labels = OpenLabels(*form);
      ASSERT_TRUE(labels) << missing;
      const controls::OptionButton& other = one ? labels->Option2 : labels->Option1;
      EXPECT_EQ(labels->Option1.value(), one);
      EXPECT_FALSE(other.enabled());
      EXPECT_NE(other.caption().find(std::string("(falta um modelo ") + missing), std::string::npos);
      labels->Command1.Clicked();
      EXPECT_NE(Written(one ? "Etiqueta.doc" : "Etiquetas.doc").find(code), std::string::npos);
      EXPECT_EQ(Written(missing), "(none)");
    }
    settings.files.erase("C:\\Temp\\" + std::string(one ? "Etiqueta.doc" : "Etiquetas.doc"));
  }
  EXPECT_TRUE(reporting.reports.empty());
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
               {"10000", "Ção", R"({\uc1 \u199?\u227?o};{\uc1 \u8364? 9,95};)", true},
               {"10000", "", ";{\\uc1 \\u8364? 9,95};", false}};
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
  const auto count = [](std::string_view text, std::string_view what) {
    int found = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) ++found;
    return found;
  };
  EXPECT_EQ(count(sheets.text, form->FXNome.text()), 60);
  EXPECT_EQ(count(document, "\\sect"), 2);

  const auto of_dependants = OpenLabels(*OpenForm(IdOfCode("10300")));
  of_dependants->Command1.Clicked();
  EXPECT_EQ(count(ReadRichText(Written("Etiquetas.doc")).text, "42   Castanho"), 1);
  const auto of_one = OpenLabels(*OpenForm(IdOfCode("10300-CS-42")));
  of_one->Command1.Clicked();
  EXPECT_EQ(count(ReadRichText(Written("Etiqueta.doc")).text, "42   Castanho"), 1);
}

}  // namespace
}  // namespace quenta::tests
