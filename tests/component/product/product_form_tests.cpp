#include "component/product/product_fixture.h"

#include "base/convert.h"
#include "platform/automation/bstr.h"
#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"

namespace quenta::tests {
namespace {

using platform::Variant;

using ConnectingTest = ProductFixture;

// Takes one of the suite's settings out of the registry as long as it lives.
class WithoutSetting {
 public:
  explicit WithoutSetting(const wchar_t* name) : name_(name) {
    DWORD size = sizeof text_;
    EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, kKey, name_, RRF_RT_REG_SZ, nullptr, text_, &size), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, name_), ERROR_SUCCESS);
  }
  ~WithoutSetting() {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, name_, REG_SZ, text_,
                    static_cast<DWORD>((wcslen(text_) + 1) * sizeof(wchar_t)));
  }
  WithoutSetting(const WithoutSetting&) = delete;
  WithoutSetting& operator=(const WithoutSetting&) = delete;

 private:
  static constexpr wchar_t kKey[] = L"SOFTWARE\\Ambrell\\Contabilidade";
  const wchar_t* name_;
  wchar_t text_[256] = L"";
};

TEST_F(ConnectingTest, LoginTakesTheSuitesSettingsAndChecksTheUsersPassword) {
  const auto general = NewGeneral();
  EXPECT_FALSE(LogIn(*general.Get(), "ana", "errada"));
  EXPECT_FALSE(LogIn(*general.Get(), "ninguém", "ana-senha"));
  EXPECT_FALSE(LogIn(*general.Get(), "ana;Initial Catalog=x", "ana-senha"));
  EXPECT_TRUE(LogIn(*general.Get()));
  EXPECT_TRUE(LogIn(*NewGeneral().Get(), "ana", "errada")) << "the session is open already";
  EXPECT_TRUE(Reports().empty());
}

TEST_F(ConnectingTest, SQLConnectFindsTheServerThatAnswers) {
  const struct {
    const char* name;
    const char* primary;
    const char* secondary;
    const char* password;
    bool connects;
  } cases[] = {
      {"both up, wrong password", "QuentaAmostra", "QuentaAmostra", "errada", false},
      {"both dead", "NaoExiste", "NemEste", "ana-senha", false},
      {"one server, dead", "NaoExiste", "NaoExiste", "ana-senha", false},
      {"primary dead", "NaoExiste", "QuentaAmostra", "ana-senha", true},
  };
  const auto general = NewGeneral();
  for (const auto& c : cases) {
    EXPECT_EQ(Connect(*general.Get(), c.primary, c.secondary, c.password), c.connects) << c.name;
  }
  EXPECT_TRUE(Reports().empty());
  OpenId(*general.Get(), IdOfCode("10000"));
  ASSERT_EQ(Forms().size(), 1U);
  EXPECT_EQ(Forms()[0].Text("FXCodigo"), "10000");
}

TEST_F(ConnectingTest, WithBothServersUpTheSessionOpens) {
  const auto general = NewGeneral();
  EXPECT_FALSE(Connect(*general.Get(), "QuentaAmostra", "QuentaReserva", "errada"));
  EXPECT_TRUE(Connect(*general.Get(), "QuentaAmostra", "QuentaReserva"));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(ConnectingTest, LoginNeedsEverySetting) {
  const auto general = NewGeneral();
  for (const wchar_t* const name :
       {L"dtSecurityInfo", L"dtUser", L"dtPassword", L"dtInitialCatalog", L"dtDataSource"}) {
    const WithoutSetting without(name);
    EXPECT_FALSE(LogIn(*general.Get())) << platform::FromWide(name);
  }
  EXPECT_TRUE(LogIn(*general.Get()));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(FormTest, EveryRecordFieldShowsWhatTheDatabaseHolds) {
  const char* const codes[] = {"10000", "10006", "10300-CS-42", "10121-AZ", "10028",        "A10",
                               "10466", "10017", "10702",       "T-FIS",    "2099000105266"};
  for (const char* const code : codes) {
    const FormOnScreen form = OpenCode(code);
    const std::string where = " FROM tbProdutos WHERE produto_id = " + std::to_string(IdOfCode(code));
    const auto looked_up = [&](const char* text, const char* table, const char* key, const char* column) {
      const std::string id = Sql(std::string("SELECT ") + column + where);
      return id.empty() ? id : Sql(std::string("SELECT ") + text + " FROM " + table + " WHERE " + key + " = " + id);
    };
    const std::map<std::string, std::string> expected = {
        {"FXCodigo", Sql("SELECT codigo" + where)},
        {"FXNome", Sql("SELECT nome" + where)},
        {"FXMarca", Sql("SELECT marca" + where)},
        {"FXObs", Sql("SELECT obs" + where)},
        {"FXCor", Sql("SELECT cor" + where)},
        {"FXTamanho", Sql("SELECT tamanho" + where)},
        {"FXDescontinuado", Sql("SELECT descontinuado" + where) == "True" ? "1" : "0"},
        {"FXFamilia_ID", looked_up("descrit", "tbProdutos_Familias", "familia_id", "familia_id")},
        {"FXSub_Familia_ID", looked_up("descrit", "tbProdutos_Subfamilias", "subfamilia_id", "subfamilia_id")},
        {"FXFornecedor_ID", looked_up("nome_union", "vwFornecedores", "contacto_id", "fornecedor_id")},
        {"FXTipo_ID", looked_up("descrit", "tbProdutos_Tipos", "tipo_id", "tipo_id")},
        {"FXCentro_ID", looked_up("descrit2", "vwCentros_Custo", "centro_id", "centro_id")},
    };
    for (const auto& [control, text] : expected) EXPECT_EQ(form.Text(control), text) << code << " " << control;
    for (const auto& [control, column] : {std::pair("FXAltura", "altura"), std::pair("FXLargura", "largura"),
                                          std::pair("FXProfundidade", "profundidade")}) {
      const std::string number = Sql(std::string("SELECT ") + column + where);
      EXPECT_EQ(base::ParseNumber(form.Text(control), {}), base::ParseNumber(number, {})) << code << " " << control;
    }
    form.Close();
    EXPECT_TRUE(Forms().empty()) << code;
  }
  EXPECT_TRUE(Reports().empty());
}

TEST_F(FormTest, AnotherProductOnTheSameGeneralGetsAFormOfItsOwn) {
  const FormOnScreen first = OpenCode("10000");
  OpenCode("10001");
  ASSERT_EQ(Forms().size(), 2U);
  OpenCode("10001");
  ASSERT_EQ(Forms().size(), 2U);
  EXPECT_EQ(first.Text("FXCodigo"), "10000");
  EXPECT_NE(first.Caption(), Forms()[0].Caption());
}

TEST_F(FormTest, AFormOutlivesTheReferencesOfItsHost) {
  const FormOnScreen form = OpenCode("10000");
  general = {};
  Pump();
  EXPECT_EQ(form.Text("FXCodigo"), "10000");
  form.FocusOn("FXNome");
  form.Close();
  EXPECT_TRUE(Forms().empty());
}

TEST_F(FormTest, WhatIsTypedIsSavedAndFoundAgain) {
  const FormOnScreen form = OpenCode("10010");
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  form.TypeOver("FXNome", "Sardinha d'Ouro às três");
  EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  form.PressButton("Toolbar1", "gravar");
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  EXPECT_EQ(Sql("SELECT nome FROM tbProdutos WHERE codigo = '10010'"), "Sardinha d'Ouro às três");
  form.Close();
  EXPECT_EQ(OpenCode("10010").Text("FXNome"), "Sardinha d'Ouro às três");
  EXPECT_TRUE(Reports().empty());
}

TEST_F(FormTest, ClosingWithChangesAsks) {
  const FormOnScreen form = OpenCode("10011");
  form.TypeOver("FXMarca", "Outra");
  AnswerNext(IDCANCEL);
  form.Close();
  EXPECT_EQ(box_text, "Deseja gravar as alterações efectuadas?");
  EXPECT_EQ(box_title, "Quenta_Produtos");
  ASSERT_EQ(Forms().size(), 1U);
  EXPECT_EQ(form.Text("FXMarca"), "Outra");
  AnswerNext(IDNO);
  form.Close();
  EXPECT_TRUE(Forms().empty());
  EXPECT_NE(Sql("SELECT marca FROM tbProdutos WHERE codigo = '10011'"), "Outra");
}

TEST_F(FormTest, ANewProductIsCreatedTypedSavedAndFoundAgain) {
  const FormOnScreen form = NewProduct();
  const std::string code = form.Text("FXCodigo");
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM tbProdutos WHERE codigo = '" + code + "'"), "1");
  form.TypeOver("FXNome", "Produto novo");
  AnswerNext(IDOK);
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(box_text, "Tem de indicar uma familia de produtos para o produto que pretende gravar.");
  EXPECT_EQ(box_title, "Registo de Documentos");
  form.TypeOver("FXFamilia_ID", "C");
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(Sql("SELECT nome FROM tbProdutos WHERE codigo = '" + code + "'"), "Produto novo");
  form.Close();
  EXPECT_TRUE(Forms().empty());
  EXPECT_EQ(OpenCode(code).Text("FXNome"), "Produto novo");
}

TEST_F(FormTest, BadKeysAreReportedAndTheHostGoesOn) {
  Open(*general.Get(), Variant());
  EXPECT_TRUE(Reports().empty()) << "Empty opens nothing, and is no error";
  Variant null;
  null.Get().vt = VT_NULL;
  Open(*general.Get(), null);
  Open(*general.Get(), Variant(std::string_view("abc")));
  Open(*general.Get(), Variant(std::string_view("99999999999")));
  EXPECT_EQ(Reports().size(), 3U);
  EXPECT_TRUE(Forms().empty());
  OpenId(*general.Get(), 999999);
  ASSERT_EQ(Forms().size(), 1U) << "a product that is not there shows an empty form";
  EXPECT_EQ(Forms()[0].Text("FXCodigo"), "");
  EXPECT_TRUE(Reports().empty());
}

TEST_F(FormTest, AMissingViewOrColumnIsReportedAndTheFormStays) {
  const char* const broken_views[] = {nullptr, "CREATE VIEW vwCentros_Custo AS SELECT centro_id FROM tbCentros_Custo"};
  for (const char* const view : broken_views) {
    Sql("DROP VIEW vwCentros_Custo");
    if (view != nullptr) Sql(view);
    const FormOnScreen form = OpenCode("10000");
    EXPECT_EQ(form.Text("FXCentro_ID"), "(1)") << "by its number, as its list does not offer it";
    EXPECT_EQ(form.Text("FXFornecedor_ID"), Sql("SELECT nome_union FROM vwFornecedores WHERE contacto_id = (SELECT "
                                                "fornecedor_id FROM tbProdutos WHERE codigo = '10000')"));
    form.Close();
    const std::vector<std::string> reports = Reports();
    EXPECT_EQ(reports.size(), 1U);
    for (const std::string& report : reports) EXPECT_NE(report.find("modControlFill"), std::string::npos) << report;
    if (view != nullptr) Sql("DROP VIEW vwCentros_Custo");
    Sql("CREATE VIEW vwCentros_Custo AS SELECT centro_id, codigo, descrit, codigo + ' - ' + descrit AS descrit2 FROM "
        "tbCentros_Custo");
  }
}

TEST_F(FormTest, TheKeyboardWorksInAHostThatKnowsNoDialogs) {
  const FormOnScreen form = OpenCode("10000");
  form.FocusOn("FXCodigo");
  const HWND first = GetFocus();
  PostMessageW(first, WM_KEYDOWN, VK_TAB, 1);
  Pump();
  EXPECT_NE(GetFocus(), first) << "Tab moves on";
  PostMessageW(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 1);
  Pump();
  EXPECT_TRUE(Forms().empty()) << "Esc closes";
}

TEST_F(FormTest, EveryCommandIsInTheMenuBarAndShowsWhetherItCanRun) {
  const FormOnScreen form = OpenCode("10000");
  const HMENU bar = GetMenu(form.window());
  // State of an entry by its caption's beginning, as the user sees it when the menu opens.
  const auto enabled = [&](const std::string& start) {
    for (int i = 0; i < GetMenuItemCount(bar); ++i) {
      const HMENU menu = GetSubMenu(bar, i);
      SendMessageW(form.window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), i);
      for (int k = 0; k < GetMenuItemCount(menu); ++k) {
        wchar_t caption[100] = L"";
        GetMenuStringW(menu, static_cast<UINT>(k), caption, 100, MF_BYPOSITION);
        if (platform::FromWide(caption).rfind(start, 0) == 0) {
          return (GetMenuState(menu, static_cast<UINT>(k), MF_BYPOSITION) & MF_GRAYED) == 0;
        }
      }
    }
    ADD_FAILURE() << "no entry " << start;
    return false;
  };
  for (const char* const entry : {"Imprimir &etiquetas", "&Duplicar", "&Apagar", "&Sair", "Tornar &predefinido",
                                  "&Stocks em", "&Dependentes", "A&tualizar"}) {
    EXPECT_TRUE(enabled(entry)) << entry;
  }
  for (const char* const entry : {"&Gravar\t", "&Gerar dependentes", "Ad&icionar dependente", "&Remover dependente",
                                  "&Adicionar armazém", "&Remover armazém", "&Relatório", "&Guardar como CSV"}) {
    EXPECT_FALSE(enabled(entry)) << entry;
  }
  form.TypeOver("FXMarca", "Outra");
  form.SelectTab("vendas");
  for (const char* const entry : {"&Gravar\t", "&Relatório", "&Guardar como CSV"}) EXPECT_TRUE(enabled(entry)) << entry;
  EXPECT_FALSE(enabled("Tornar &predefinido")) << "the prices are not shown";
  form.SelectTab("dependentes");
  for (const char* const entry : {"&Gerar dependentes", "&Remover dependente"}) EXPECT_TRUE(enabled(entry)) << entry;
}

}  // namespace
}  // namespace quenta::tests
