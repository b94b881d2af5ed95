// What the outside can hold that nobody meant it to: broken settings, orphaned rows, forms that go while they load.
#include "data/registry.h"
#include "sandbox/odbc/odbc_link.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using base::Value;
using product::frmMain;

constexpr const char* kShadow = "C:\\ProgramData\\Torvik Software\\RegShadow.db";
constexpr const char* kKey = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Contabilidade)";

class BadInput : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
  // Past the server that the sandbox plays, which would not allow it.
  void Sqlite(const std::string& sql) {
    sandbox::OdbcLink link;
    link.ConnectSource(sample_.source, "", "", 0);
    link.RunText(sql);
  }
  std::string Products() { return SqlText("SELECT COUNT(*) FROM tbProdutos"); }

  data::Registry registry{session.ports()};
};

TEST_F(BadInput, AShadowFileIsReadAsFarAsItMakesSense) {
  using namespace std::string_literals;
  const std::string entry = std::string(kKey) + ":Armazem";
  const struct {
    std::string bytes;
    Value value;
  } cases[] = {
      {"", "do registo"},
      {"\n\r\r\n\n", "do registo"},
      {entry, "do registo"},
      {entry + "=", "do registo"},
      {entry + "=2", "2"},
      {entry + "=2\r\r\n", "2\r"},
      {entry + "=2\n" + entry + "=3\n", "2"},
      {"\0\0\0"s + entry + "=2\r\n", "do registo"},
      {"\xEF\xBB\xBF" + entry + "=2\r\n", "do registo"},
      {entry + "=\x80\x81\x8D\xFF", "€\xC2\x81\xC2\x8Dÿ"},
      {std::string(100000, '\xE7') + "\r\n" + entry + "=2", "2"},
  };
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Armazem)"] = "do registo";
  for (const auto& [bytes, value] : cases) {
    settings.files[kShadow] = bytes;
    EXPECT_EQ(registry.ObterValorString(kKey, "Armazem"), value) << bytes.substr(0, 80);
  }
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(BadInput, AShadowFileThatCannotBeRewrittenStaysAsItIs) {
  settings.files[kShadow] = "outra:linha=1";
  FaultPlan locked{.fail_at = 6, .fault = Fault::kFailsForGood};  // all has been read, and the work file is locked
  settings.faults = &locked;
  EXPECT_EQ(registry.ObterValorString(R"(HKEY_LOCAL_MACHINE\SOFTWARE\X)", "y", "omissão"), Value("omissão"));
  EXPECT_EQ(settings.files[kShadow], "outra:linha=1");
  EXPECT_TRUE(reporting.reports.empty());
}

// The rows that a product refers to may be gone. It opens all the same, and saving it loses nothing unasked.
TEST_F(BadInput, AProductWhoseFamilyIsGoneOpensAndAsksForOne) {
  const std::int32_t id = IdOfCode("10000");
  const std::string familia = "SELECT familia_id FROM tbProdutos WHERE produto_id = " + std::to_string(id);
  const std::string before = SqlText(familia);
  Sqlite("PRAGMA foreign_keys = OFF");
  Sqlite("DELETE FROM tbProdutos_Familias WHERE familia_id = " + before);
  const auto form = OpenForm(id);
  EXPECT_EQ(form->FXFamilia_ID.ListIndex(), -1);
  EXPECT_EQ(form->FXSub_Familia_ID.ListCount(), 0);
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
  EXPECT_FALSE(form->Gravar());
  EXPECT_EQ(desktop.messages.back().text, "Tem de indicar uma familia de produtos para o produto que pretende gravar.");
  EXPECT_EQ(SqlText(familia), before);
}

TEST_F(BadInput, WithoutATableTheFormSaysSoAndSavesNothingOfWhatItCouldNotRead) {
  const char* const tables[] = {"tbProdutos_Tipos",    "tbProdutos_Cores",  "tbProdutos_Tamanhos",
                                "tbProdutos_Familias", "vwTaxas_Iva",       "vwFornecedores",
                                "vwCentros_Custo",     "tbProdutos_Precos", "tbProdutos_Subfamilias"};
  const std::int32_t id = IdOfCode("10300-CS-42");
  sandbox::OdbcLink link;
  link.ConnectSource(sample_.source, "", "", 0);
  const auto record = [&] {
    return link.RunText("SELECT * FROM tbProdutos WHERE produto_id = " + std::to_string(id)).front();
  };
  const auto before = record();
  for (const std::string table : tables) {
    SCOPED_TRACE(table);
    const bool view = table.starts_with("vw");
    const auto definition = link.RunText("SELECT sql FROM sqlite_master WHERE name = '" + table + "'").front().front();
    link.RunText(view ? "DROP VIEW " + table : "ALTER TABLE " + table + " RENAME TO escondida");
    reporting.reports.clear();
    const auto form = OpenForm(id);
    EXPECT_FALSE(reporting.reports.empty());
    EXPECT_TRUE(form->visible());
    EXPECT_FALSE(form->Gravar());
    EXPECT_EQ(record(), before);
    link.RunText(view ? definition : "ALTER TABLE escondida RENAME TO " + table);
    reporting.reports.clear();
    EXPECT_EQ(OpenForm(id)->FXCodigo.text(), "10300-CS-42");
    EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
  }
}

// The host may take a form's window away while the form waits for the server: the load ends, and leaves nothing.
TEST_F(BadInput, AFormThatGoesWhileItLoadsStaysAway) {
  const std::string products = Products();
  for (const std::int32_t id : {IdOfCode("10000"), 0}) {
    const auto form = std::static_pointer_cast<frmMain>(product_forms.Create());
    database.Forget();
    database.fail_at = 1;  // the first list, after the keeper's question
    database.fault = Fault::kLineDrops;
    desktop.while_pumping = [&] { form->WindowLost(); };
    form->Open({.produto_id = id});
    desktop.while_pumping = nullptr;
    EXPECT_FALSE(form->loaded() || form->visible());
    EXPECT_TRUE(form_host.shown.empty());
    EXPECT_FALSE(form->Gravar());
    EXPECT_FALSE(session.transaction_held || product_forms.Busy());
    EXPECT_EQ(Products(), products) << "nobody is there to keep a new product";
  }
}

}  // namespace
}  // namespace quenta::tests
