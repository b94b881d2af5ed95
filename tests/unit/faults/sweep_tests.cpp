// Every operation of the component, with each of its calls to the outside going wrong in turn. Whatever goes wrong:
// nothing of ours stays open, nothing is half saved, somebody is told, and the next try succeeds.
#include <algorithm>
#include <initializer_list>
#include <set>

#include "base/convert.h"
#include "component/session/connection_keeper.h"
#include "data/check_permissions.h"
#include "generator/frm_gerar.h"
#include "product/frm_stocks.h"
#include "sandbox/odbc/odbc_link.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using ports::Answer;
using product::frmMain;

// The sample component as an operation sees it: a fresh form of one product, and whatever else it needs.
class Scene : public SampleComponentTest {
 public:
  using SampleComponentTest::component;
  using SampleComponentTest::desktop;
  using SampleComponentTest::form_host;
  using SampleComponentTest::IdOfCode;
  using SampleComponentTest::LogIn;
  using SampleComponentTest::reporting;
  using SampleComponentTest::sample_;
  using SampleComponentTest::session;
  using SampleComponentTest::settings;
  using SampleComponentTest::Sql;

  template <typename Form>
  Form* Shown(const char* name) {
    for (const auto& [model, held] : form_host.shown) {
      if (model->name() == name) return static_cast<Form*>(model);
    }
    return nullptr;
  }
  component::SQLConnectArguments Arguments() const { return ArgumentsOf("ana"); }

  std::shared_ptr<frmMain> form;
  component::General general{component};
};

enum class Product { kNone, kNew, kMain, kStocked };

using Prepare = void (*)(Scene&);
using Act = bool (*)(Scene&);

struct Operation {
  const char* name;
  Product product;  // whose form is open
  Act act;          // what the user or the host does; false when it was not done
  Prepare prepare = nullptr;
  // An operation that may fail without a report: the host is answered false.
  bool answers_host = false;
  // What it wrote before an error stays, as the suite has it; the report then says under which numbers.
  bool keeps_what_it_wrote = false;
};

void TypeName(Scene& scene) {
  scene.form->FXNome.Typed("Inteiro ou nada");
  if (scene.form->FXFamilia_ID.ListIndex() < 0) scene.form->FXFamilia_ID.Chosen(0);
}

void ChangePrices(Scene& scene) {
  TypeName(scene);
  scene.form->ListView2.At(0).sub_items[6] = "0,1";
  scene.form->PrecosAltered = true;
}

// What an earlier try has left of a small form, the user closes.
template <typename Form>
Form* Reopened(Scene& scene, const char* name, void (*open)(frmMain&)) {
  if (auto* const left = scene.Shown<Form>(name)) left->Unload();
  open(*scene.form);
  return scene.Shown<Form>(name);
}

bool SaveMinimums(Scene& scene) {
  scene.form->ListView1.Clicked(0);
  auto* const form = Reopened<product::frmStocks>(scene, "frmStocks", [](frmMain& opener) {
    opener.TabStrip1.SelectKey("stocks");
    controls::FindMenuItem(opener.menus(), "mnStocksPropriedades")->on_click();
  });
  if (form == nullptr) return false;
  form->FXStockMinimo.Typed("7");
  form->Command1_Click();
  return scene.Shown<product::frmStocks>("frmStocks") == nullptr;
}

void ForgetDependants(Scene& scene) {
  scene.Sql("UPDATE tbProdutos SET main_id = NULL WHERE main_id = " + std::to_string(scene.form->ProdutoId()));
}

bool Generate(Scene& scene) {
  auto* const form =
      Reopened<generator::frmGerar>(scene, "frmGerar", [](frmMain& opener) { opener.Toolbar2.Clicked("gerar"); });
  if (form == nullptr || form->ListView1.Count() == 0 || form->ListView2.Count() == 0) return false;
  form->ListView1.At(0).checked = true;
  form->ListView2.At(0).checked = true;
  form->Command1_Click();
  return scene.Shown<generator::frmGerar>("frmGerar") == nullptr;
}

template <int kMode>
bool FillTrack(Scene& scene) {
  scene.form->Fill_Track(kMode);
  return true;
}

// One line for each operation there is.
const Operation kOperations[] = {
    {.name = "log_in",
     .product = Product::kNone,
     .act = [](Scene& s) { return s.general.SQLConnect(s.Arguments()); },
     .prepare = [](Scene& s) { s.session.ReleaseConnection(); },
     .answers_host = true},
    {.name = "open",
     .product = Product::kNone,
     .act =
         [](Scene& s) {
           s.general.ObjectOpen(s.IdOfCode("10300"), {});
           const auto* const form = s.Shown<frmMain>("frmMain");
           return form != nullptr && form->FXCodigo.text() == "10300";
         }},
    {.name = "create",
     .product = Product::kNone,
     .act =
         [](Scene& s) {
           s.general.ObjectNew({});
           const auto* const form = s.Shown<frmMain>("frmMain");
           return form != nullptr && form->ProdutoId() != 0;
         }},
    {.name = "save", .product = Product::kMain, .act = [](Scene& s) { return s.form->Gravar(); }, .prepare = &TypeName},
    {.name = "save_prices_of_all",
     .product = Product::kMain,
     .act = [](Scene& s) { return s.form->Gravar(); },
     .prepare = &ChangePrices},
    {.name = "save_new",
     .product = Product::kNew,
     .act = [](Scene& s) { return s.form->Gravar(); },
     .prepare = &ChangePrices},
    {.name = "close_new_without_saving",
     .product = Product::kNew,
     .act =
         [](Scene& s) {
           s.desktop.answer = Answer::kNo;
           return s.form->Unload();
         },
     .prepare = &TypeName},
    {.name = "sales", .product = Product::kMain, .act = &FillTrack<1>},
    {.name = "purchases", .product = Product::kMain, .act = &FillTrack<2>},
    {.name = "customer_orders", .product = Product::kMain, .act = &FillTrack<3>},
    {.name = "supplier_orders", .product = Product::kMain, .act = &FillTrack<4>},
    {.name = "dependants",
     .product = Product::kMain,
     .act =
         [](Scene& s) {
           s.form->Fill_Dependentes();
           return s.form->ListView3.Count() > 0;
         }},
    {.name = "stocks",
     .product = Product::kMain,
     .act =
         [](Scene& s) {
           s.form->Fill_Stocks();
           return s.form->ListView1.Count() > 0;
         }},
    {.name = "permission",
     .product = Product::kNone,
     .act = [](Scene& s) { return data::CheckSecurityPolicy(s.session, "ana", "#2281", nullptr); }},
    {.name = "minimums", .product = Product::kStocked, .act = &SaveMinimums},
    {.name = "duplicate",
     .product = Product::kMain,
     .act =
         [](Scene& s) {
           const std::int32_t before = s.form->ProdutoId();
           s.form->Duplicar();
           return s.form->ProdutoId() != before;
         },
     .keeps_what_it_wrote = true},
    {.name = "delete",
     .product = Product::kNew,
     .act =
         [](Scene& s) {
           s.form->Apagar();
           return !s.form->loaded();
         }},
    {.name = "close", .product = Product::kMain, .act = [](Scene& s) { return s.form->Unload(); }},
    {.name = "save_history",
     .product = Product::kMain,
     .act =
         [](Scene& s) {
           controls::FindMenuItem(s.form->menus(), "mnHistoricoGuardar")->on_click();
           return s.settings.files.erase("C:\\historico.csv") == 1;
         },
     .prepare =
         [](Scene& s) {
           s.desktop.file_to_save = "C:\\historico.csv";
           s.form->TabStrip1.SelectKey("vendas");
           s.form->Fill_Track(1);
         }},
    {.name = "remove_dependant",
     .product = Product::kMain,
     .act =
         [](Scene& s) {
           const int count = s.form->ListView3.Count();
           s.form->Toolbar2.Clicked("remover");
           return s.form->ListView3.Count() < count;
         },
     .prepare =
         [](Scene& s) {
           s.Sql("UPDATE tbProdutos SET is_deleted = 0 WHERE main_id = " + std::to_string(s.form->ProdutoId()));
           s.form->Fill_Dependentes();
           s.form->ListView3.Select(0);
         }},
    {.name = "generate", .product = Product::kMain, .act = &Generate, .prepare = &ForgetDependants},
};

// The ways in which a call goes wrong. What a lost answer and a server that stays away do to a query, the others do
// too.
struct Way {
  const char* name;
  Fault fault;
  bool queries_too;
  bool is_an_error = true;
};
constexpr Way kWays[] = {{"fails", Fault::kFails, true},
                         {"fails, and so do all later ones", Fault::kFailsForGood, false},
                         {"meets a line that is gone", Fault::kLineDrops, true},
                         {"is done, but its answer is lost", Fault::kAnswerIsLost, false},
                         {"reads other columns", Fault::kOtherColumns, true, false},
                         {"reads nothing but Null", Fault::kAllNull, true, false}};

class Sweep : public Scene, public ::testing::WithParamInterface<Operation> {
 protected:
  void SetUp() override {
    // Few rows keep the sweep short: two warehouses, two dependants.
    Sql("DELETE FROM tbArmazens WHERE armazem_id > 2");
    const std::string main_id = std::to_string(main_id_);
    Sql("UPDATE tbProdutos SET main_id = NULL WHERE main_id = " + main_id + " AND tamanho <> '42'");
    Sql("UPDATE tbProdutos SET main_id = " + main_id + " WHERE codigo = '10000'");
    LogIn("ana");
    observer_.ConnectSource(sample_.source, "", "", 0);
  }

  // Changes with every commit of any other connection.
  std::string Version() { return observer_.RunText("PRAGMA data_version").front().front(); }

  // The form stays the user's as long as it shows the same product.
  void Prepare(const Operation& operation) {
    const std::int32_t id = operation.product == Product::kMain ? main_id_ : stocked_id_;
    const bool wanted = operation.product == Product::kMain || operation.product == Product::kStocked;
    if (!wanted || !form || !form->loaded() || form->ProdutoId() != id) {
      CloseForms();
      if (operation.product != Product::kNone) form = OpenForm(wanted ? id : 0);
    }
    session.policies.clear();
    desktop.answer = Answer::kYes;
    if (operation.prepare != nullptr) operation.prepare(*this);
    version_ = Version();
  }

  // All ports count their calls with one plan.
  void CountCalls(FaultPlan* plan) {
    for (Fallible* part : std::initializer_list<Fallible*>{&settings, &desktop, &reporting, &form_host}) {
      part->faults = plan;
    }
    database.every_call = plan != nullptr;
  }

  // Runs the operation with the call at this position going wrong (-1: none). True when it was done.
  bool Run(const Operation& operation, Fault fault, int position) {
    reporting.reports.clear();
    reporting.lost = 0;
    desktop.quitting = false;
    database.Forget();
    CountCalls(&database);
    database.fault = fault;
    database.fail_at = position;
    const bool done = operation.act(*this) && !reporting.told();
    database.fail_at = -1;
    CountCalls(nullptr);
    changed_ = Version() != version_;
    return done;
  }

  // Without asking, as when the host takes the windows away.
  void CloseForms() {
    form.reset();
    while (!form_host.shown.empty()) {
      const std::shared_ptr<controls::Form> held = form_host.shown.begin()->second;
      form_host.shown.erase(held.get());
      held->WindowLost();
    }
  }

  bool TransactionIsOpen() {
    try {
      return session.transaction_held || session::InTransaction(session);
    } catch (const base::Error&) {
      return false;  // the line is gone, and with it the transaction
    }
  }

  bool Committed() const {
    return std::find(database.statements.begin(), database.statements.end(), "COMMIT") != database.statements.end();
  }
  // Nothing is written outside of a transaction of ours, and nothing was saved unless it came to the commit.
  void ExpectWholeTransactions() const {
    bool inside = false;
    for (const std::string& statement : database.statements) {
      if (statement == "BEGIN") inside = true;
      if (statement == "COMMIT" || statement == "ROLLBACK") inside = false;
      EXPECT_TRUE(inside || !Writes(statement)) << statement;
    }
    EXPECT_TRUE(!changed_ || Committed()) << "something was saved though nothing was committed";
  }
  std::ptrdiff_t CountWrites() const {
    return std::count_if(database.statements.begin(), database.statements.end(), &Writes);
  }
  // A form that did not fill itself whole may be saved only when that loses nothing of the record.
  void ExpectNothingIsLostBySaving(const Operation& operation) {
    auto* const shown = operation.product == Product::kNone ? Shown<frmMain>("frmMain") : nullptr;
    if (shown == nullptr) return;
    const auto record = [&] {
      const std::string where = " WHERE produto_id = " + std::to_string(shown->ProdutoId());
      std::string text = SqlText("SELECT COUNT(*) FROM tbProdutos_Precos" + where);
      const ports::RowSet rows = Sql("SELECT * FROM tbProdutos" + where);
      for (std::size_t i = 0; !rows.empty() && i < rows.columns().size(); ++i) {
        const base::Value& value = rows.front().At(i);
        if (rows.columns()[i] != "data_modified") text += "|" + (value.is_null() ? "" : base::ToText(value, {}));
      }
      return text;
    };
    const std::string before = record();
    shown->PrecosAltered = true;
    shown->Gravar();
    EXPECT_EQ(record(), before);
  }
  static bool Writes(const std::string& statement) {
    return statement.starts_with("INSERT") || statement.starts_with("UPDATE") || statement.starts_with("DELETE");
  }
  std::string Reported() const {
    return reporting.reports.empty() ? "refused without a report" : reporting.reports.back().description;
  }

  void SweepOneWay(const Operation& operation, const Way& way) {
    Prepare(operation);
    ASSERT_TRUE(Run(operation, way.fault, -1)) << Reported();
    const bool commits = Committed();
    const std::ptrdiff_t writes = CountWrites();
    const int calls = database.calls;
    const std::set<int> passed = database.passed;
    std::set<int> positions(database.opens.begin(), database.opens.end());
    // What reaches no server knows no other way than to fail. A connection does not fail for good in its settings.
    for (int i = 0; i < calls; ++i) {
      if (way.fault == Fault::kFails || (way.fault == Fault::kFailsForGood && !passed.contains(i))) positions.insert(i);
    }
    for (std::size_t i = 0; i < database.statements.size(); ++i) {
      const bool is_query = database.statements[i].starts_with("SELECT");
      if (way.queries_too || !is_query) positions.insert(database.positions[i]);
      if (!way.queries_too && is_query) positions.erase(database.positions[i]);
    }
    for (const int position : positions) {
      Prepare(operation);
      const bool done = Run(operation, way.fault, position);
      SCOPED_TRACE("call " + std::to_string(position) + " " + way.name + "; last came " +
                   (database.statements.empty() ? "nothing" : database.statements.back()));
      EXPECT_FALSE(TransactionIsOpen());
      EXPECT_FALSE(product_forms.Busy()) << "other forms stay out of reach";
      EXPECT_TRUE(done || operation.answers_host || !way.is_an_error || desktop.quitting || reporting.told())
          << "nobody was told";
      if (!operation.keeps_what_it_wrote) {
        ExpectWholeTransactions();
        EXPECT_TRUE(!done || desktop.quitting || Committed() == commits) << "done, it says, and nothing was saved";
      }
      const bool saved_already = Committed();
      if (way.fault != Fault::kAllNull) ExpectNothingIsLostBySaving(operation);
      // A form that has closed has nothing that could be tried again.
      if (done || (form && !form->loaded())) continue;
      // Whatever the user does first that fills a list or asks for a permission restores the line.
      if (!operation.answers_host) session::EnsureConnection(session, nullptr);
      if (operation.product == Product::kNone) CloseForms();
      EXPECT_TRUE(Run(operation, way.fault, -1)) << "the next try: " << Reported();
      EXPECT_TRUE(saved_already || CountWrites() == writes) << "the next try saves something else";
    }
  }

  sandbox::OdbcLink observer_;
  std::int32_t main_id_ = IdOfCode("10300");
  std::int32_t stocked_id_ = IdOfCode("10407");
  std::string version_;
  bool changed_ = false;
};

TEST_P(Sweep, NothingIsHalfDoneAndTheNextTrySucceeds) {
  for (const Way& way : kWays) SweepOneWay(GetParam(), way);
}

INSTANTIATE_TEST_SUITE_P(EachCall, Sweep, ::testing::ValuesIn(kOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

}  // namespace
}  // namespace quenta::tests
