// The connection keeper behind General: lines die, servers refuse and take their time, and the user goes on.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "component/product/product_fixture.h"

namespace quenta::tests {
namespace {

// The folder for what these tests leave behind, with a backslash at its end.
std::string TempFolder() {
  char folder[MAX_PATH] = "";
  GetTempPathA(MAX_PATH, folder);
  return folder;
}

class BadServerTest : public ProductFixture {
 protected:
  // Support's log is on: the library asks for it when the first General is made.
  static void SetUpTestSuite() {
    std::remove(kLogFile.c_str());
    RegSetKeyValueA(HKEY_LOCAL_MACHINE, kSettings, "StatementLog", REG_SZ, kLogFile.c_str(),
                    static_cast<DWORD>(kLogFile.size() + 1));
  }
  static void TearDownTestSuite() { RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kSettings, "StatementLog"); }

  // Both servers are well at first. The fixture's own line, opened before, knows no faults.
  void SetUp() override {
    Servers("");
    _putenv_s("QUENTA_FAULTS", kFaultsFile.c_str());
    ASSERT_TRUE(Connect(*general.Get(), "QuentaAmostra", "QuentaReserva"));
    Reports();
  }
  void TearDown() override {
    Servers("");
    _putenv_s("QUENTA_FAULTS", "");
    std::remove(kFaultsFile.c_str());
  }

  static void Servers(const std::string& state) { std::ofstream(kFaultsFile) << state << "\n"; }

  // A product that is asked for while every line dies shows what there is: nothing.
  void LetLineDie() {
    Servers("* = drop");
    Open10300();
    EXPECT_TRUE(Has("Report\t"));
    for (const FormOnScreen& form : Forms()) form.Close();
    Reports();
  }
  void Open10300() {
    OpenId(*general.Get(), IdOfCode("10300"));
    reports_ = Reports();
  }
  bool Has(const std::string& start) const {
    return std::any_of(reports_.begin(), reports_.end(), [&](const auto& line) { return line.rfind(start, 0) == 0; });
  }

  platform::ComPtr<IDispatch> general = NewGeneral();
  std::vector<std::string> reports_;
  static constexpr const char* kSettings = "SOFTWARE\\Ambrell\\Contabilidade";
  static inline const std::string kFaultsFile = TempFolder() + "quenta_avarias.txt";
  static inline const std::string kLogFile = TempFolder() + "quenta_instrucoes.log";
};

TEST_F(BadServerTest, TheHostsMessagesAreProcessedWhileASlowServerConnects) {
  LetLineDie();
  Servers("* = slow 1500");
  static int ticks;
  ticks = 0;
  // The server recovers while the component waits for it, which it can only when our timer is heard meanwhile.
  const UINT_PTR timer = SetTimer(nullptr, 0, 100, [](HWND, UINT, UINT_PTR, DWORD) noexcept {
    if (++ticks == 5) Servers("");
  });
  Open10300();
  KillTimer(nullptr, timer);
  EXPECT_GE(ticks, 5);
  EXPECT_EQ(FormNamed("frmMain").Text("FXCodigo"), "10300");
  EXPECT_TRUE(Has("SQLReconnectShow\t") && Has("SQLReconnectShutdown\t") && Has("SQLReconnectShowOK\t"));
  EXPECT_FALSE(Has("Report\t"));
}

TEST_F(BadServerTest, TheOtherServerTakesOverAndWhenNobodyAnswersTheUserIsTold) {
  LetLineDie();
  Servers("* = refuse");
  Open10300();
  EXPECT_TRUE(Has("SQLReconnectShowBad\t") && Has("Report\t"));
  FormNamed("frmMain").Close();
  Servers("QuentaAmostra = refuse");
  Open10300();
  EXPECT_EQ(FormNamed("frmMain").Text("FXCodigo"), "10300");
  EXPECT_TRUE(Has("SQLReconnectShowOK\t"));
  EXPECT_FALSE(Has("Report\t"));
}

TEST_F(BadServerTest, ASaveThatMeetsADeadLineKeepsTheFormAndSucceedsLater) {
  Open10300();
  const FormOnScreen form = FormNamed("frmMain");
  form.TypeOver("FXNome", "Linha cortada");
  Servers("* = drop");
  // A permission that cannot be read is one that is not there.
  AnswerNext(IDOK);
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(box_title, "Politicas de Segurança");
  reports_ = Reports();
  EXPECT_TRUE(Has("Report\t"));
  EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar")) << "still to be saved";
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM tbProdutos WHERE nome = 'Linha cortada'"), "0");
  Servers("");
  form.PressButton("Toolbar1", "gravar");
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  EXPECT_NE(Sql("SELECT COUNT(*) FROM tbProdutos WHERE nome = 'Linha cortada'"), "0");
}

TEST_F(BadServerTest, SupportsLogTellsOfEveryStatementAndOfNoPassword) {
  Open10300();
  std::ifstream file(kLogFile, std::ios::binary);
  const std::string log{std::istreambuf_iterator<char>(file), {}};
  for (const char* const text :
       {"OPEN Provider=SQLOLEDB.1;", ";Password=***;", " ms\t", "rows\tSELECT @@TRANCOUNT as valor",
        "rows\tSELECT * FROM tbProdutos WHERE produto_id = "}) {
    EXPECT_NE(log.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(log.find("Suite-2026"), std::string::npos);
  EXPECT_EQ(log.find("ana-senha"), std::string::npos);
}

}  // namespace
}  // namespace quenta::tests
