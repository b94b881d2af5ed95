#include <set>

#include "generator_test.h"

namespace quenta::tests {
namespace {

class FrmGerarTest : public GeneratorTest {
 protected:
  // What the last message says, on one line.
  std::string LastMessage() { return base::ReplaceAll(desktop.messages.back().text, "\n", " | "); }
};

TEST_F(FrmGerarTest, TheListsShowWhatCanBeChosenAndTheOpenerWaits) {
  Sql("INSERT INTO tbProdutos_Cores (cor_id, descrit, code) VALUES (99, null, 'NN')");
  Sql("INSERT INTO tbProdutos_Cores (cor_id, descrit, code) VALUES (98, ' ', 'BB')");
  const auto form = OpenGenerator("10001");
  EXPECT_EQ(std::count(database.statements.begin(), database.statements.end(),
                       "SELECT * FROM tbProdutos_Cores ORDER BY descrit"),
            1);
  EXPECT_EQ(std::count(database.statements.begin(), database.statements.end(),
                       "SELECT * FROM tbProdutos_Tamanhos ORDER BY descrit"),
            1);
  EXPECT_EQ(form->ListView1.Count(), 16) << "without those that have no text";
  EXPECT_EQ(form->ListView2.Count(), 43);
  EXPECT_EQ(form->ListView1.Cell(0, 0), "Amarelo");
  EXPECT_EQ(form->ListView1.Item("#16").sub_items, std::vector<std::string>{""});
  EXPECT_EQ(form->ListView2.Item("#15").text + "/" + form->ListView2.Item("#15").sub_items[0], "42/42");
  EXPECT_TRUE(form->ListView1.check_boxes() && form->ListView2.check_boxes());
  for (controls::ListView* list : {&form->ListView1, &form->ListView2}) {
    for (int i = 0; i < list->Count(); ++i) EXPECT_FALSE(list->At(i).checked);
  }
  EXPECT_EQ(form->Label3.caption(), opener->FXCodigo.text() + "  " + opener->FXNome.text());
  EXPECT_FALSE(opener->enabled());
  form->Command2.Clicked();
  EXPECT_FALSE(form->loaded());
  EXPECT_TRUE(opener->enabled());
  EXPECT_EQ(Dependants(), "");
}

TEST_F(FrmGerarTest, HoweverItClosesTheOpenerCanBeUsedAgain) {
  OpenGenerator("10001")->Unload();
  EXPECT_TRUE(opener->enabled());
  const auto lost = OpenGenerator("10001");
  lost->WindowLost();
  EXPECT_TRUE(opener->enabled());
  const auto left = OpenGenerator("10001");
  opener->WindowLost();
  opener.reset();
  EXPECT_TRUE(left->Unload()) << "also when the opener went first";

  // Windows may refuse to make a window.
  class RefusingHost final : public ports::FormHost {
   public:
    void Show(controls::Form& shown) override {
      if (shown.name() == "frmGerar") throw base::Error(base::error_number::kInternal, "No window.");
    }
    void Close(controls::Form&) override {}
    void SetTopmost(controls::Form&, bool) override {}
    void Focus(controls::Form&, const char*) override {}
    void PopupMenu(controls::Form&, const char*) override {}
    void StartTimer(ports::TimerTarget&, int) override {}
    void StopTimer(ports::TimerTarget&) noexcept override {}
  } refusing;
  hosting::Forms forms(refusing, reporting);
  const auto form = std::make_shared<product::frmMain>(session, refusing, forms, &generator::MakeGenerator);
  form->Open({.produto_id = IdOfCode("10001")});
  form->Toolbar2.Clicked("gerar");
  EXPECT_EQ(reporting.reports.back().procedure, "Toolbar2_ButtonClick");
  EXPECT_TRUE(form->enabled());
  EXPECT_EQ(forms.all(), std::vector<controls::Form*>{form.get()});
  form->WindowLost();
}

TEST_F(FrmGerarTest, EachChoiceGivesItsCombinations) {
  const struct {
    std::initializer_list<const char*> cores;
    std::initializer_list<const char*> tamanhos;
    const char* dependants;
  } cases[] = {
      {{"Azul"}, {"M"}, "A10-AZ-M Azul M"},
      {{"Azul", "Preto"},
       {"L", "M", "42"},
       "A10-AZ-42 Azul 42, A10-AZ-L Azul L, A10-AZ-M Azul M, A10-PT-42 Preto 42, A10-PT-L Preto L, A10-PT-M Preto M"},
      {{"Azul", "Preto"}, {}, "A10-AZ Azul -, A10-PT Preto -"},
      {{}, {"42"}, "A10-42 - 42"},
      {{"Sangue d'Boi", "Cru"}, {"37,5 cl"}, "A10--375 Cru 37,5 cl, A10-SB-375 Sangue d'Boi 37,5 cl"},
  };
  for (const auto& [cores, tamanhos, dependants] : cases) {
    SCOPED_TRACE(dependants);
    const auto form = OpenGenerator("A10");
    Check(form->ListView1, cores);
    Check(form->ListView2, tamanhos);
    form->Command1.Clicked();
    EXPECT_EQ(Dependants(), dependants);
    EXPECT_EQ(HalfDependants(), "0");
    EXPECT_FALSE(form->loaded());
    EXPECT_TRUE(opener->enabled());
    const auto count = static_cast<std::size_t>(opener->ListView3.Count());
    EXPECT_EQ(LastMessage(), "Produtos criados: " + std::to_string(count) + " | Combinações que já existiam: 0");
    EXPECT_EQ(count, std::max<std::size_t>(cores.size(), 1) * std::max<std::size_t>(tamanhos.size(), 1));
    Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE main_id = " + main_id);
  }
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(FrmGerarTest, NothingCheckedIsSaidAndTheFormStays) {
  const auto form = OpenGenerator("10001");
  database.Forget();
  form->Command1.Clicked();
  EXPECT_EQ(LastMessage(), "Tem de selecionar pelo menos uma cor ou um tamanho.");
  EXPECT_EQ(desktop.messages.back().title, "Quenta_Produtos");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kInformation);
  EXPECT_TRUE(form->loaded());
  EXPECT_TRUE(database.statements.empty());
}

TEST_F(FrmGerarTest, WhatIsThereIsNotCreatedAgainUnlessItWasDeleted) {
  const auto generate = [&] {
    const auto form = OpenGenerator("A10");
    Check(form->ListView1, {"Azul", "Preto"});
    Check(form->ListView2, {"M"});
    const std::string counts = form->Label1.caption();
    form->Command1.Clicked();
    return counts;
  };
  EXPECT_EQ(generate(), "Produtos a criar: 2. Já existem: 0.");
  const std::string first = Dependants();
  EXPECT_EQ(generate(), "Produtos a criar: 0. Já existem: 2.");
  EXPECT_EQ(LastMessage(), "Produtos criados: 0 | Combinações que já existiam: 2");
  EXPECT_EQ(Dependants(), first);

  const std::string deleted = SqlText("SELECT produto_id FROM tbProdutos WHERE codigo = 'A10-AZ-M'");
  Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE produto_id = " + deleted);
  EXPECT_EQ(generate(), "Produtos a criar: 1. Já existem: 1.");
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE codigo = 'A10-AZ-M'"), "2");
  EXPECT_EQ(Dependants(), "A10-PT-M Preto M, A10-AZ-M Azul M") << "a new number, the same code";
}

TEST_F(FrmGerarTest, TheCountsFollowEveryCheck) {
  Sql("INSERT INTO tbProdutos_Cores (cor_id, descrit, code) VALUES (99, 'AZUL', 'A2')");
  const auto form = OpenGenerator("10500");  // has Azul, Preto, Vermelho without a size
  database.Forget();
  EXPECT_EQ(form->Label1.caption(), "Escolha as cores, os tamanhos, ou ambos.");
  form->CoresTodas.Clicked();
  EXPECT_EQ(form->Label1.caption(), "Produtos a criar: 13. Já existem: 4.") << "the server takes AZUL for Azul";
  form->TamanhosTodos.Clicked();
  EXPECT_EQ(form->Label1.caption(), "Produtos a criar: 688. Já existem: 43.");
  form->CoresNenhuma.Clicked();
  EXPECT_EQ(form->Label1.caption(), "Produtos a criar: 43. Já existem: 0.");
  form->TamanhosNenhum.Clicked();
  Check(form->ListView1, {"Vermelho"});
  EXPECT_EQ(form->Label1.caption(), "Produtos a criar: 0. Já existem: 1.");
  EXPECT_TRUE(database.statements.empty()) << "counted without the server";
}

TEST_F(FrmGerarTest, AnErrorIsReportedAndSaidAndTheNextTryCompletes) {
  Sql("DELETE FROM tbArmazens WHERE armazem_id > 2");
  const auto form = OpenGenerator("A10");
  Check(form->ListView1, {"Azul", "Preto"});
  for (int i = 0; form->loaded(); ++i) {
    ASSERT_LT(i, 60);
    SCOPED_TRACE("statement " + std::to_string(i));
    Sql("DELETE FROM tbProdutos_Precos WHERE produto_id IN (SELECT produto_id FROM tbProdutos WHERE main_id = " +
        main_id + ")");
    for (const char* table : {"tbProdutos_Stocks", "tbProdutos_Stocks_Minimos", "tbProdutos"}) {
      Sql(std::string("DELETE FROM ") + table +
          " WHERE produto_id IN (SELECT produto_id FROM tbProdutos WHERE main_id "
          "= " +
          main_id + ")");
    }
    database.Forget();
    reporting.reports.clear();
    database.fail_at = i;
    form->Command1.Clicked();
    database.Forget();
    if (!form->loaded()) break;
    ASSERT_EQ(reporting.reports.size(), 1U);
    const ports::ErrorReport& report = reporting.reports[0];
    EXPECT_EQ(report.product + "/" + report.project + "/" + report.module + "/" + report.procedure,
              "Programa de Contabilidade/Quenta_Encomendas/frmGerar/Command1_Click");
    EXPECT_EQ(HalfDependants(), "0");
    EXPECT_FALSE(session::InTransaction(session));
    EXPECT_FALSE(product_forms.Busy());
    EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
    EXPECT_TRUE(form->ListView1.enabled() && form->Command1.enabled());
    EXPECT_FALSE(opener->enabled()) << "until the generator closes";
    const bool first_created = Dependants() == "A10-AZ Azul -";
    EXPECT_EQ(LastMessage(), std::string("Um erro parou a geração") +
                                 (i == 0          ? ""
                                  : first_created ? " em A10-PT"
                                                  : " em A10-AZ") +
                                 ". O que foi criado até aí mantém-se. | Produtos criados: " +
                                 (first_created ? "1" : "0") + " | Combinações que já existiam: 0");
    EXPECT_EQ(form->Label1.caption(),
              first_created ? "Produtos a criar: 1. Já existem: 1." : "Produtos a criar: 2. Já existem: 0.");
    EXPECT_EQ(opener->ListView3.Count(), first_created ? 1 : 0);
    // Generating again completes what is missing.
    if (first_created) {
      const auto first_opener = opener;
      const auto again = OpenGenerator("A10");
      Check(again->ListView1, {"Azul", "Preto"});
      again->Command1.Clicked();
      EXPECT_EQ(LastMessage(), "Produtos criados: 1 | Combinações que já existiam: 1");
      opener = first_opener;
    }
  }
  EXPECT_EQ(Dependants(), "A10-AZ Azul -, A10-PT Preto -");
}

TEST_F(FrmGerarTest, WhatTheServerRefusesStopsItCleanly) {
  const struct {
    const char* what;
    const char* prepare;
    const char* reason;
  } cases[] = {
      {"no counter", "UPDATE tbContadores SET nome = 'outro' WHERE nome = 'produto_id'", "'produto_id'"},
      {"an identifier that is taken",
       "UPDATE tbContadores SET nome = 'produto_id', contador = 900 WHERE nome = 'outro'", "PK_tbProdutos"},
      {"a code that is too long",
       "UPDATE tbProdutos SET codigo = '1234567890123456789012345678901234567890' WHERE "
       "codigo = '10001'",
       "truncated"},
  };
  const std::string products = SqlText("SELECT COUNT(*) FROM tbProdutos");
  const auto form = OpenGenerator("10001");
  Check(form->ListView1, {"Azul"});
  for (const auto& [what, prepare, reason] : cases) {
    SCOPED_TRACE(what);
    Sql(prepare);
    Sql("UPDATE tbContadores SET contador = 95000 WHERE nome = 'produto_id' AND contador > 900");
    reporting.reports.clear();
    form->Command1.Clicked();
    ASSERT_EQ(reporting.reports.size(), 1U);
    EXPECT_NE(reporting.reports[0].description.find(reason), std::string::npos) << reporting.reports[0].description;
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos"), products);
    Sql("UPDATE tbContadores SET contador = 95000 WHERE nome = 'produto_id'");
  }
}

TEST_F(FrmGerarTest, AMainProductThatIsGoneGivesNothing) {
  Sql("UPDATE tbProdutos SET codigo = 'VAZIO' WHERE produto_id = 900");
  const auto form = OpenGenerator("VAZIO");
  Check(form->ListView1, {"Azul"});
  Sql("DELETE FROM tbProdutos WHERE produto_id = 900");
  form->Command1.Clicked();
  EXPECT_EQ(Dependants(), "");
  EXPECT_EQ(LastMessage(), "O produto principal já não existe. | Produtos criados: 0 | Combinações que já existiam: 0");
  EXPECT_FALSE(form->loaded());
  EXPECT_TRUE(reporting.reports.empty());
}

// Whoever wants to stop it comes to it through the messages that it lets pass between two products.
TEST_F(FrmGerarTest, StoppedBetweenTwoProductsItKeepsWhatItHasCreated) {
  enum class Stop { kCancel, kClose, kWindowLost, kHostQuits, kOpenerGoes };
  const struct {
    Stop stop;
    const char* message;  // empty for none
  } cases[] = {
      {Stop::kCancel,
       "A geração foi interrompida antes de A10-AM. | Produtos criados: 2 | Combinações que já existiam: 0"},
      {Stop::kClose,
       "A geração foi interrompida antes de A10-AM. | Produtos criados: 2 | Combinações que já existiam: 0"},
      {Stop::kWindowLost, ""},
      {Stop::kHostQuits, ""},
      {Stop::kOpenerGoes, "Produtos criados: 16 | Combinações que já existiam: 0"},
  };
  for (const auto& [stop, message] : cases) {
    SCOPED_TRACE(static_cast<int>(stop));
    desktop.messages.clear();
    const auto form = OpenGenerator("A10");
    form->CoresTodas.Clicked();
    int turns = 0;
    const int pumps = desktop.pumps;
    desktop.while_pumping = [&, what = stop] {
      if (++turns != 3) return;
      switch (what) {
        case Stop::kCancel:
          form->Command2.Clicked();
          break;
        case Stop::kClose:
          EXPECT_FALSE(form->Unload()) << "it closes when it has stopped";
          break;
        case Stop::kWindowLost:
          form_host.shown.erase(form.get());
          form->WindowLost();
          break;
        case Stop::kHostQuits:
          desktop.quits_after = desktop.pumps;
          break;
        case Stop::kOpenerGoes:
          opener->WindowLost();
          form_host.shown.erase(opener.get());
          break;
      }
    };
    form->Command1.Clicked();
    desktop.while_pumping = nullptr;
    desktop.quits_after = 30000;
    const bool whole = stop == Stop::kOpenerGoes;
    EXPECT_EQ(desktop.pumps - pumps, whole ? 16 : 3) << "nothing goes on after the stop";
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + main_id),
              whole ? "16" : "2");
    EXPECT_EQ(HalfDependants(), "0");
    EXPECT_EQ(desktop.messages.empty() ? "" : LastMessage(), message);
    EXPECT_FALSE(form->loaded());
    EXPECT_EQ(form_host.shown.count(form.get()), 0U);
    EXPECT_TRUE(opener->enabled());
    EXPECT_FALSE(product_forms.Busy());
    EXPECT_FALSE(session::InTransaction(session));
    EXPECT_TRUE(reporting.reports.empty());
    Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE main_id = " + main_id);
    opener->WindowLost();
    form_host.shown.clear();
  }
}

TEST_F(FrmGerarTest, WhileItGeneratesNothingCanDisturbIt) {
  const auto other = OpenForm(IdOfCode("10002"));
  const auto form = OpenGenerator("A10");
  Check(form->ListView1, {"Azul", "Preto", "Verde"});
  component::General general(component);
  std::set<std::string> shown;
  desktop.while_pumping = [&] {
    shown.insert(form->Label2.caption() + " " + form->ProgressBar1.Describe());
    EXPECT_TRUE(form->ProgressBar1.visible() && form->Label2.visible());
    EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kHourglass);
    EXPECT_FALSE(opener->enabled() || other->enabled());
    EXPECT_TRUE(product_forms.Busy());
    for (const controls::Control* control : form->controls()) {
      if (control->kind() != controls::ControlKind::kCommandButton &&
          control->kind() != controls::ControlKind::kListView) {
        continue;
      }
      EXPECT_EQ(control->enabled(), control == &form->Command2) << control->name();
    }
    EXPECT_FALSE(session::InTransaction(session)) << "the host's turn comes between two products";
    form->Command1_Click();  // once more, from within
    general.ObjectOpen(IdOfCode("10011"), {});
  };
  desktop.while_asking = [&] { form->Command1_Click(); };
  const std::size_t forms = form_host.shown.size();
  form->Command1.Clicked();
  desktop.while_pumping = nullptr;
  EXPECT_EQ(Dependants(), "A10-AZ Azul -, A10-PT Preto -, A10-VD Verde -");
  EXPECT_EQ(shown,
            (std::set<std::string>{"A10-AZ (1 de 3) 0 of 3", "A10-PT (2 de 3) 1 of 3", "A10-VD (3 de 3) 2 of 3"}));
  EXPECT_EQ(form_host.shown.size(), forms - 1);
  EXPECT_TRUE(opener->enabled() && other->enabled());
  form_host.PassTime();
  EXPECT_EQ(form_host.shown.size(), forms) << "what the host asked for comes afterwards";
}

TEST_F(FrmGerarTest, AHostsTransactionIsCommittedWithTheFirstProduct) {
  const auto form = OpenGenerator("A10");
  Check(form->ListView1, {"Azul", "Preto"});
  session.SharedConnection().BeginTransaction();
  session.Execute("UPDATE tbProdutos SET obs = 'do anfitrião' WHERE produto_id = 900");
  form->Command1.Clicked();
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "do anfitrião");
  EXPECT_EQ(Dependants(), "A10-AZ Azul -, A10-PT Preto -");
}

}  // namespace
}  // namespace quenta::tests
