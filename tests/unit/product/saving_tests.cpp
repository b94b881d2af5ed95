#include <algorithm>

#include "controls/field_value.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class SavingTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }

  void AddPriceLine(product::frmMain& form, int tipo, const char* preco, const char* iva_id, const char* iva,
                    const char* total, const char* reason, bool predef) {
    controls::ListItem& line = form.ListView2.Add("#" + std::to_string(tipo), "Preço");
    line.sub_items = {preco, total, preco, iva_id, iva, total, "0", "Tipo " + std::to_string(tipo), reason};
    line.small_icon = predef ? 3 : 2;
  }
};

TEST_F(SavingTest, WritesTheRecordAsOneStatementAndShowsItIsSaved) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string id = std::to_string(form->ProdutoId());
  form->FXNome.Typed("Azeite d'Além-Tejo \xF0\x9F\x8D\xB7");
  form->FXObs.Typed("linha 1\r\nlinha 2");
  EXPECT_TRUE(form->Toolbar1.Item("gravar").enabled);
  database.Forget();
  ASSERT_TRUE(form->Gravar()) << (reporting.reports.empty() ? "refused" : reporting.reports[0].description);
  std::string update;
  for (const std::string& statement : database.statements) {
    if (statement.rfind("UPDATE tbProdutos SET codigo", 0) == 0) update = statement;
  }
  EXPECT_EQ(update.substr(0, update.find(", marca")),
            "UPDATE tbProdutos SET codigo = '10000', nome = 'Azeite d' + CHAR(39) + 'Além-Tejo \xF0\x9F\x8D\xB7'");
  EXPECT_EQ(update.substr(update.find(", altura")),
            ", altura = null, largura = null, profundidade = null, descontinuado = 0, data_modified = GETDATE()  WHERE "
            "produto_id=" +
                id);
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = " + id), "linha 1\r\nlinha 2");
  EXPECT_FALSE(form->Altered());
  EXPECT_FALSE(form->Toolbar1.Item("gravar").enabled);
}

TEST_F(SavingTest, RefusesInTheSuitesOrderAndPointsToTheField) {
  const auto form = OpenForm(IdOfCode("10000"));
  const auto expect_refusal = [&](const char* text, const char* field) {
    EXPECT_FALSE(form->Gravar());
    EXPECT_EQ(desktop.messages.back().text, text);
    EXPECT_EQ(desktop.messages.back().title, "Registo de Documentos");
    EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kInformation);
    EXPECT_TRUE(desktop.messages.back().system_modal);
    EXPECT_EQ(form_host.focused, field);
  };
  const int iva = form->FXIva_ID.ListIndex();
  const int familia = form->FXFamilia_ID.ListIndex();
  form->FXNome.Typed(" ");
  form->FXCodigo.Typed("");
  form->FXIva_ID.SetListIndex(-1);
  form->FXFamilia_ID.SetListIndex(-1);
  expect_refusal("Tem de indicar uma familia de produtos para o produto que pretende gravar.", "FXFamilia_ID");
  form->FXFamilia_ID.SetListIndex(familia);
  expect_refusal("Tem de indicar a taxa de IVA para poder gravar o registo.", "FXIva_ID");
  form->FXIva_ID.SetListIndex(iva);
  expect_refusal("Tem de indicar um código para o produto que pretende gravar.", "FXCodigo");
  form->FXCodigo.Typed("10001");
  expect_refusal("Tem de indicar um nome para o produto que pretende gravar.", "FXNome");
  form->FXNome.Typed("Nome");
  expect_refusal("O código atribuido já existe, tem de indicar um código de produto diferente.", "FXCodigo");
  form->FXCodigo.Typed("d'água");
  EXPECT_TRUE(form->Gravar()) << "a quote in the code is safe";
}

TEST_F(SavingTest, ACodeOfADeletedProductIsFreeAndWithoutThePolicyNothingIsSaved) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXCodigo.Typed("10703");
  EXPECT_TRUE(form->Gravar());
  session.state().session_user = "carla";
  form->FXCodigo.Typed("10000");
  EXPECT_FALSE(form->Gravar());
  EXPECT_EQ(desktop.messages.back().title, "Politicas de Segurança");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kCritical);
  EXPECT_EQ(SqlText("SELECT codigo FROM tbProdutos WHERE produto_id = " + std::to_string(form->ProdutoId())), "10703");
}

TEST_F(SavingTest, RelativesShareTheDescriptionInBothDirections) {
  const std::int32_t main_id = IdOfCode("10300");
  const std::string dependants = " WHERE main_id = " + std::to_string(main_id);
  const auto form = OpenForm(IdOfCode("10300-CS-42"));
  form->FXMarca.Typed("Marca Partilhada");
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(SqlText("SELECT marca FROM tbProdutos WHERE produto_id = " + std::to_string(main_id)), "Marca Partilhada");
  EXPECT_EQ(SqlText("SELECT COUNT(DISTINCT marca) FROM tbProdutos" + dependants), "1");
  EXPECT_GT(std::stoi(SqlText("SELECT COUNT(*) FROM tbProdutos" + dependants)), 1);
  EXPECT_NE(SqlText("SELECT COUNT(DISTINCT codigo) FROM tbProdutos" + dependants), "1");
}

TEST_F(SavingTest, PricesAreRewrittenAndOfferedToTheDependants) {
  const auto form = OpenForm(IdOfCode("10300"));
  const std::string id = std::to_string(form->ProdutoId());
  form->ListView2.Clear();
  AddPriceLine(*form, 1, "8,13008", "1", "1,86992", "10", "", true);
  AddPriceLine(*form, 2, "7,5", "4", "0", "7,5", "Isento d'outra lei", false);
  form->PrecosAltered = true;
  desktop.answer = ports::Answer::kYes;
  ASSERT_TRUE(form->Gravar()) << (reporting.reports.empty() ? "refused" : reporting.reports[0].description);
  EXPECT_EQ(desktop.messages.back().text,
            "Os preços deste produto foram alterados.\nDeseja replicar essas alterações para os produtos dependentes?");
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
  const std::string dependant = std::to_string(IdOfCode("10300-CS-42"));
  for (const std::string& product : {id, dependant}) {
    EXPECT_EQ(SqlText("SELECT preco FROM tbProdutos_Precos WHERE tipo_id = 1 AND produto_id = " + product), "8.13008");
    EXPECT_EQ(SqlText("SELECT iva_descrit FROM tbProdutos_Precos WHERE tipo_id = 2 AND produto_id = " + product),
              "Isento d'outra lei");
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id = " + product), "2");
  }
  EXPECT_FALSE(form->PrecosAltered);
}

TEST_F(SavingTest, AnExemptLineNeedsAReasonWhichIsThenChosenInThatLine) {
  const auto form = OpenForm(IdOfCode("10000"));
  const auto reason = [&](const char* key) { return form->ListView2.Item(key).sub_items.at(8); };
  for (const char* exempt : {"4", "99"}) {  // a rate of 0, and one that is not in the table any more
    form->ListView2.Clear();
    AddPriceLine(*form, 1, "7,5", "1", "1,73", "9,23", "", true);
    AddPriceLine(*form, 2, "7,5", "0", "0", "7,5", "", false);  // no rate
    AddPriceLine(*form, 3, "7,5", exempt, "0", "7,5", "  ", false);
    form->ListView2.Clicked(0);
    form->TabStrip1.SelectKey("vendas");
    ASSERT_FALSE(form->Gravar());
    EXPECT_EQ(desktop.messages.back().text,
              "O preço 'Tipo 3' tem isenção de IVA.\nÉ obrigatório indicar um motivo para a Isenção de IVA.");
    EXPECT_EQ(form->FXTipo.text() + form->TabStrip1.selected_key() + form_host.focused, "Tipo 3precosFXIVA_Descrit");
    EXPECT_EQ(form->ListView2.selected(), 2);
    ASSERT_TRUE(form->FXIVA_Descrit.enabled());
    form->FXIVA_Descrit.Chosen(0);
    form->FXIVA_Descrit.LostFocus();
    EXPECT_EQ(reason("#1") + reason("#3"), form->FXIVA_Descrit.List(0));
    controls::SetFieldValue(form->FXIva_ID, 4, 0, {});
    EXPECT_TRUE(form->Gravar());
  }
}

TEST_F(SavingTest, SavingANewProductUsesUpOneMoreCode) {
  const auto form = OpenForm(0);
  const int after_creation = std::stoi(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"));
  form->FXNome.Typed("Novo");
  form->FXFamilia_ID.Chosen(0);
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"),
            std::to_string(after_creation + 1));
  form->FXNome.Typed("Novo 2");
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"),
            std::to_string(after_creation + 1));
}

TEST_F(SavingTest, WhatTheServerRefusesIsReportedAndNothingIsSaved) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.Typed(std::string(300, 'x'));
  EXPECT_FALSE(form->Gravar());
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].procedure, "Gravar");
  EXPECT_EQ(reporting.reports[0].description,
            "String or binary data would be truncated in table 'Amostra.dbo.tbProdutos', column 'nome'. Truncated "
            "value: '" +
                std::string(100, 'x') + "'.");
  EXPECT_TRUE(form->Altered());
  EXPECT_FALSE(session::InTransaction(session));
}

// A question that is open inside a save lets the user reach the other forms: they are out of reach meanwhile.
TEST_F(SavingTest, WhileASaveAsksNoOtherFormCanJoinItsTransaction) {
  const auto other = OpenForm(IdOfCode("10001"));
  const auto form = OpenForm(IdOfCode("10300"));
  form->ListView2.Clear();
  AddPriceLine(*form, 1, "1", "1", "0,23", "1,23", "", true);
  form->PrecosAltered = true;
  other->FXNome.Typed("Outro");
  component::General general(component);
  bool asked = false;
  desktop.while_asking = [&] {
    asked = true;
    EXPECT_FALSE(other->enabled());
    EXPECT_FALSE(other->Gravar());
    general.ObjectOpen(IdOfCode("10002"), {});
  };
  desktop.answer = ports::Answer::kNo;
  EXPECT_TRUE(form->Gravar());
  EXPECT_TRUE(asked);
  EXPECT_TRUE(other->enabled());
  const std::size_t forms_before = form_host.shown.size();
  form_host.PassTime();
  EXPECT_EQ(form_host.shown.size(), forms_before + 1) << "what the host asked for meanwhile is done now";
  desktop.while_asking = nullptr;
  EXPECT_TRUE(other->Gravar());
}

TEST_F(SavingTest, ATransactionOfTheHostIsJoinedAndCommitted) {
  const auto form = OpenForm(IdOfCode("10000"));
  session.SharedConnection().BeginTransaction();
  session.Execute("UPDATE tbProdutos SET obs = 'do anfitrião' WHERE produto_id = 900");
  form->FXNome.Typed("Junto");
  database.Forget();
  EXPECT_TRUE(form->Gravar());
  EXPECT_EQ(std::count(database.statements.begin(), database.statements.end(), "BEGIN"), 0);
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "do anfitrião");
}

}  // namespace
}  // namespace quenta::tests
