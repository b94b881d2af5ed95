#include <algorithm>

#include "base/date.h"
#include "data/check_permissions.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using ports::Answer;

class DependantsTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    desktop.answer = Answer::kYes;
  }

  std::shared_ptr<product::frmMain> OpenWithDependants(const char* codigo) {
    const auto form = OpenForm(IdOfCode(codigo));
    form->Fill_Dependentes();
    database.Forget();
    return form;
  }
  std::string IdOf(const char* codigo) { return std::to_string(IdOfCode(codigo)); }
  // How many of the product and its rows there are, and whether it is deleted.
  std::string StateOf(const std::string& id) {
    return SqlText("SELECT is_deleted FROM tbProdutos WHERE produto_id = " + id) + " " +
           SqlText("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id = " + id) + " " +
           SqlText("SELECT COUNT(*) FROM tbProdutos_Stocks WHERE produto_id = " + id) + " " +
           SqlText("SELECT COUNT(*) FROM tbProdutos_Stocks_Minimos WHERE produto_id = " + id);
  }
  void Select(product::frmMain& form, const std::string& key) {
    for (int i = 0; i < form.ListView3.Count(); ++i) {
      if (form.ListView3.At(i).key == key) form.ListView3.Clicked(i);
    }
  }
  std::shared_ptr<controls::Form> Generator() {
    for (const auto& [form, alive] : form_host.shown) {
      if (form->name() == "frmGerar") return alive;
    }
    return nullptr;
  }
};

TEST_F(DependantsTest, EachRowShowsCodeNameColourAndSize) {
  const auto form = OpenForm(IdOfCode("10300"));
  Sql("UPDATE tbProdutos SET cor = null WHERE codigo = '10300-CS-42'");
  database.Forget();
  form->Fill_Dependentes();
  EXPECT_EQ(database.statements,
            std::vector<std::string>{"SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " +
                                     std::to_string(form->ProdutoId())});
  const controls::ListItem& item = form->ListView3.Item("#" + IdOf("10300-CS-42"));
  EXPECT_EQ(item.text, "10300-CS-42");
  EXPECT_EQ(item.sub_items, (std::vector<std::string>{form->FXNome.text(), " ", "42"}));
  EXPECT_EQ(OpenWithDependants("10000")->ListView3.Count(), 0);
}

TEST_F(DependantsTest, BeforeTheProductIsThereEveryButtonSaysSo) {
  Sql("DELETE FROM tbProdutos_Tipos");
  Sql("DROP TABLE tbContadores");
  const auto form = OpenForm(0);  // cannot be created
  ASSERT_EQ(form->ProdutoId(), 0);
  for (const char* key : {"gerar", "adicionar", "remover"}) {
    desktop.messages.clear();
    form->Toolbar2_ButtonClick(key);
    ASSERT_EQ(desktop.messages.size(), 1U) << key;
    EXPECT_EQ(desktop.messages[0].text, "Tem de gravar a ficha de produto antes de gerar dependentes.");
    EXPECT_EQ(desktop.messages[0].icon, ports::Icon::kInformation);
  }
}

// It may still be given up: "Não" at closing deletes it, and what was generated would stay without it.
TEST_F(DependantsTest, AProductThatWasNeverSavedHasNoneGenerated) {
  const auto copy = OpenForm(IdOfCode("10001"));
  copy->Duplicar();
  const auto created = OpenForm(0);
  for (product::frmMain* form : {copy.get(), created.get()}) {
    ASSERT_NE(form->ProdutoId(), 0);
    desktop.messages.clear();
    database.Forget();
    form->Toolbar2.Clicked("gerar");
    ASSERT_EQ(desktop.messages.size(), 1U);
    EXPECT_EQ(desktop.messages[0].text, "Tem de gravar a ficha de produto antes de gerar dependentes.");
    EXPECT_TRUE(database.statements.empty());
    EXPECT_EQ(Generator(), nullptr);
  }
  ASSERT_TRUE(copy->Gravar());
  copy->Toolbar2.Clicked("gerar");
  EXPECT_NE(Generator(), nullptr) << "once it is saved";
}

// What the user does not see is not acted on, neither from the menu nor by its key.
TEST_F(DependantsTest, EntriesOfAPageRunOnlyWhileItIsShown) {
  const auto form = OpenForm(IdOfCode("10300"));
  form->FXData_Inicio.set_value(*base::MakeDate({2020, 1, 1, 0, 0, 0}));
  const std::pair<const char*, const char*> pages[] = {{"mnProdutosPredef", "precos"},
                                                       {"mnStocksPropriedades", "stocks"},
                                                       {"mnHistoricoCopiar", "vendas"},
                                                       {"mnHistoricoSelecionarTudo", "compras"},
                                                       {"mnHistoricoGuardar", "encomendas_clientes"},
                                                       {"mnHistoricoRelatorio", "encomendas_fornecedores"},
                                                       {"mnDependentesGerar", "dependentes"},
                                                       {"mnDependentesRemover", "dependentes"}};
  const auto frame_of = [&](const std::string& tab) { return form->layout().pages.at(tab); };
  for (const auto& [entry, own_page] : pages) {
    const controls::MenuItem& item = *controls::FindMenuItem(form->menus(), entry);
    for (const controls::TabStrip::Tab& tab : form->TabStrip1.tabs()) {
      form->TabStrip1.SelectKey(tab.key);
      form->TabStrip1.on_click();
      for (controls::ListView* list : {&form->ListView1, &form->ListView2, &form->ListView3}) list->Select(0);
      EXPECT_EQ(item.can_run(), frame_of(tab.key) == frame_of(own_page)) << entry << " on " << tab.key;
      if (item.can_run()) continue;
      database.Forget();
      item.on_click();
      EXPECT_TRUE(database.statements.empty() && desktop.messages.empty() && !form->Altered()) << entry;
    }
  }
  form->TabStrip1.SelectKey("precos");
  for (const controls::Shortcut& key : form->shortcuts()) {
    if (key.key == 'G' || key.key == 'R') key.run();
  }
  EXPECT_EQ(Generator(), nullptr);
  EXPECT_TRUE(desktop.opened.empty() && reporting.reports.empty());
}

TEST_F(DependantsTest, OnlyAMainProductOpensTheGenerator) {
  const auto dependant = OpenForm(IdOfCode("10300-CS-42"));
  dependant->Toolbar2.Clicked("gerar");
  EXPECT_EQ(desktop.messages.back().text,
            "Não pode gerar produtos dependentes porque este produto já é dependente de outro.");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kInformation);
  EXPECT_EQ(Generator(), nullptr);

  const auto form = OpenForm(IdOfCode("10300"));
  form->Toolbar2.Clicked("gerar");
  EXPECT_NE(Generator(), nullptr);
  Generator()->Unload();

  const auto gone = OpenForm(900);
  Sql("DELETE FROM tbProdutos WHERE produto_id = 900");
  gone->Toolbar2.Clicked("gerar");
  EXPECT_EQ(Generator(), nullptr);

  EXPECT_FALSE(form->Toolbar2.Item("adicionar").enabled);
  EXPECT_FALSE(form->Toolbar2.Item("adicionar").tooltip.empty());
  const std::size_t messages = desktop.messages.size();
  form->Toolbar2_ButtonClick("adicionar");
  EXPECT_EQ(desktop.messages.size(), messages);
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(DependantsTest, RemovingDeletesTheSelectedOneSoftly) {
  const auto form = OpenWithDependants("10300");
  const std::string id = IdOf("10300-CS-42");
  data::CheckSecurityPolicy(session, "ana", "#2280", nullptr);
  const int count = form->ListView3.Count();
  Select(*form, "#" + id);
  class View final : public controls::ControlView {
   public:
    void ControlChanged(controls::Control&, controls::Aspect aspect) noexcept override {
      scrolled = scrolled || aspect == controls::Aspect::kSelection;
    }
    bool scrolled = false;
  } view;
  form->ListView3.Attach(&view);
  desktop.while_asking = [&] {
    EXPECT_TRUE(view.scrolled) << "the question names no product: its row must be in view";
    EXPECT_EQ(form->ListView3.At(form->ListView3.selected()).key, "#" + id);
  };
  database.Forget();
  form->Toolbar2.Clicked("remover");
  form->ListView3.Attach(nullptr);
  EXPECT_EQ(database.statements,
            (std::vector<std::string>{
                "SELECT @@TRANCOUNT as valor",  // for the permission: whether the connection lives
                "SELECT @@TRANCOUNT as valor", "BEGIN", "DELETE FROM tbProdutos_Precos WHERE produto_id = " + id,
                "DELETE FROM tbProdutos_Stocks WHERE produto_id = " + id,
                "DELETE FROM tbProdutos_Stocks_Minimos WHERE produto_id = " + id,
                "UPDATE tbProdutos SET is_deleted = 1, data_modified = GETDATE(), Obs = null WHERE produto_id = " + id,
                "SELECT @@TRANCOUNT as valor", "COMMIT"}));
  EXPECT_EQ(StateOf(id), "True 0 0 0");
  EXPECT_EQ(form->ListView3.Count(), count - 1);
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text, "Deseja mesmo apagar o produto selecionado?");
  EXPECT_EQ(desktop.messages[0].title, "Remover Produto");
  EXPECT_EQ(desktop.messages[0].icon, ports::Icon::kQuestion);
  EXPECT_EQ(desktop.messages[0].buttons, ports::Buttons::kYesNo);
  EXPECT_TRUE(desktop.messages[0].system_modal);
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
}

TEST_F(DependantsTest, RemovingStopsWithoutPermissionRowsASelectionOrAYes) {
  const auto empty = OpenWithDependants("10000");
  const auto form = OpenWithDependants("10300");
  const std::string id = IdOf("10300-CS-42");
  const std::string before = StateOf(id);
  empty->Toolbar2.Clicked("remover");
  EXPECT_TRUE(desktop.messages.empty()) << "there is nothing to remove";

  form->Toolbar2.Clicked("remover");
  EXPECT_EQ(desktop.messages.back().text, "Tem de selecionar o produto que pretende remover.");

  Select(*form, "#" + id);
  desktop.answer = Answer::kNo;
  form->Toolbar2.Clicked("remover");
  EXPECT_EQ(desktop.messages.back().text, "Deseja mesmo apagar o produto selecionado?");

  session.state().session_user = "bruno";
  desktop.answer = Answer::kYes;
  for (product::frmMain* refused : {form.get(), empty.get()}) {
    desktop.messages.clear();
    refused->Toolbar2.Clicked("remover");
    ASSERT_EQ(desktop.messages.size(), 1U);
    EXPECT_EQ(desktop.messages[0].text,
              "Não tem permissões para apagar produtos. Contacte o administrador de segurança para que lhe sejam "
              "atribuídas as permissões necessárias.");
    EXPECT_EQ(desktop.messages[0].title, "Politicas de Segurança");
    EXPECT_EQ(desktop.messages[0].icon, ports::Icon::kCritical);
  }
  EXPECT_EQ(StateOf(id), before);
  EXPECT_EQ(form->ListView3.Item("#" + id).text, "10300-CS-42");
}

TEST_F(DependantsTest, AHostsTransactionIsCommittedButNeverRolledBack) {
  const auto form = OpenWithDependants("10300");
  data::CheckSecurityPolicy(session, "ana", "#2280", nullptr);
  Select(*form, "#" + IdOf("10300-CS-42"));
  session.SharedConnection().BeginTransaction();
  session.Execute("UPDATE tbProdutos SET obs = 'do anfitrião' WHERE produto_id = 900");
  database.Forget();
  database.fail_at = 3;
  form->Toolbar2_ButtonClick("remover");
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].project, "Quenta_Encomendas");
  EXPECT_EQ(reporting.reports[0].procedure, "Toolbar2_ButtonClick");
  EXPECT_TRUE(session::InTransaction(session));
  database.Forget();
  form->Toolbar2_ButtonClick("remover");
  EXPECT_FALSE(session::InTransaction(session));
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "do anfitrião");
}

}  // namespace
}  // namespace quenta::tests
