// A product is created, typed, saved, refused and closed as a person does it, with the database compared at each step.
#include "base/text.h"
#include "component/product/product_fixture.h"

namespace quenta::tests {
namespace {

using RecordTest = FormTest;

// Another warehouse as long as it lives.
class AtWarehouse {
 public:
  explicit AtWarehouse(const wchar_t* number) {
    DWORD size = sizeof before_;
    EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"Armazem", RRF_RT_REG_SZ, nullptr, before_, &size),
              ERROR_SUCCESS);
    Set(number);
  }
  ~AtWarehouse() { Set(before_); }
  AtWarehouse(const AtWarehouse&) = delete;
  AtWarehouse& operator=(const AtWarehouse&) = delete;

 private:
  static constexpr wchar_t kKey[] = L"SOFTWARE\\Ambrell\\Contabilidade";
  static void Set(const wchar_t* number) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, L"Armazem", REG_SZ, number,
                    static_cast<DWORD>((wcslen(number) + 1) * sizeof(wchar_t)));
  }
  wchar_t before_[64] = L"";
};

TEST_F(RecordTest, TheWarehouseAndThePolicyAllowNewProducts) {
  {
    const AtWarehouse warehouse(L"3");
    AnswerNext(IDOK);
    New(*general.Get());
    EXPECT_EQ(box_text, "Não é possível criar produtos no armazem actual.");
    EXPECT_EQ(box_title, "Criar Produto");
  }
  EXPECT_TRUE(Forms().empty());
  {
    const AtWarehouse warehouse(L"999");
    New(*general.Get());
    EXPECT_EQ(Forms().size(), 1U) << "a warehouse without a row refuses nothing";
  }
  EXPECT_TRUE(Reports().empty());
}

class NoCreatorTest : public FormTest {
 protected:
  void SetUp() override { ASSERT_TRUE(LogIn(*general.Get(), "bruno", "bruno-senha")); }
};

TEST_F(NoCreatorTest, IsToldSo) {
  AnswerNext(IDOK);
  New(*general.Get());
  EXPECT_EQ(box_text,
            "Não tem permissões para criar novos produtos. Contacte o administrador de segurança para que lhe sejam "
            "atribuídas as permissões necessárias.");
  EXPECT_EQ(box_title, "Politicas de Segurança");
  EXPECT_TRUE(Forms().empty());
}

TEST_F(RecordTest, ANewProductThatIsNotWantedIsDeletedAgain) {
  const FormOnScreen form = NewProduct();
  const std::string code = form.Text("FXCodigo");
  const std::string id = Sql("SELECT produto_id FROM tbProdutos WHERE codigo = '" + code + "'");
  ASSERT_NE(id, "(none)");
  form.TypeOver("FXNome", "Afinal não");
  AnswerNext({IDYES, IDOK});
  form.Close();
  ASSERT_EQ(Forms().size(), 1U) << "it cannot be saved without a family, so the form stays";
  EXPECT_EQ(form.Text("FXNome"), "Afinal não");
  AnswerNext(IDNO);
  form.Close();
  EXPECT_TRUE(Forms().empty());
  for (const char* const table :
       {"tbProdutos", "tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    EXPECT_EQ(Sql(std::string("SELECT COUNT(*) FROM ") + table + " WHERE produto_id = " + id), "0") << table;
  }
}

TEST_F(RecordTest, RefusalsComeInOrderAndLeadToTheirField) {
  const FormOnScreen form = NewProduct();
  form.SelectTab("dependentes");
  form.TypeOver("FXCodigo", "10000");
  form.TypeOver("FXNome", "");
  form.FocusOn("FXNome");
  form.Key(VK_DELETE);
  const auto refused = [&](const char* text, const char* field) {
    AnswerNext(IDOK);
    form.PressButton("Toolbar1", "gravar");
    EXPECT_EQ(box_text, text);
    EXPECT_EQ(box_title, "Registo de Documentos");
    EXPECT_EQ(form.Focused(), field);
  };
  refused("Tem de indicar uma familia de produtos para o produto que pretende gravar.", "FXFamilia_ID");
  form.Choose("FXFamilia_ID", "Casa");
  form.SelectTab("precos");
  form.FocusOn("FXIva_ID");
  SendMessageW(form.Control("FXIva_ID"), CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
  SendMessageW(GetParent(form.Control("FXIva_ID")), WM_COMMAND,
               MAKEWPARAM(GetDlgCtrlID(form.Control("FXIva_ID")), CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(form.Control("FXIva_ID")));
  form.SelectTab("dependentes");
  refused("Tem de indicar a taxa de IVA para poder gravar o registo.", "FXIva_ID");
  EXPECT_TRUE(IsWindowVisible(form.Control("FXIva_ID"))) << "on its tab";
  form.Choose("FXIva_ID", "NOR");
  refused("Tem de indicar um nome para o produto que pretende gravar.", "FXNome");
  form.TypeOver("FXNome", "Produto");
  refused("O código atribuido já existe, tem de indicar um código de produto diferente.", "FXCodigo");
  form.TypeOver("FXCodigo", "x'y");
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(Sql("SELECT nome FROM tbProdutos WHERE codigo = 'x''y'"), "Produto");
  EXPECT_TRUE(Reports().empty());
}

TEST_F(RecordTest, WhatIsTypedComesBackAsItIs) {
  const struct {
    const char* field;
    const char* typed;
    const char* column;
    const char* kept;
  } cases[] = {
      {"FXNome", "Café «Ñandú» 100% [a_b] \xF0\x9F\x8D\xB7 'x' \"y\"", "nome",
       "Café «Ñandú» 100% [a_b] ?? 'x' \"y\""},  // the statement's text has the server's code page
      {"FXMarca", "%_[]{}\\;--", "marca", nullptr},
      {"FXCor", "42", "cor", nullptr},
      {"FXTamanho", "  XL  ", "tamanho", nullptr},
      {"FXAltura", "1.234,50", "altura", "1234.5"},
      {"FXLargura", "12-", "largura", "-12"},
      {"FXProfundidade", "abc", "profundidade", "0"},
      {"FXObs", "linha 1", "obs", nullptr},
  };
  const FormOnScreen form = OpenCode("10300-CS-42");
  form.Choose("FXTipo_ID", "Artigo por medida");
  for (const auto& c : cases) form.TypeOver(c.field, c.typed);
  // The button does not move the focus: the field that has it is taken all the same.
  form.PressButton("Toolbar1", "gravar");
  for (const auto& c : cases) {
    EXPECT_EQ(base::ReplaceAll(Sql(std::string("SELECT ") + c.column + " FROM tbProdutos WHERE codigo = '10300-CS-42'"),
                               ",", "."),
              c.kept != nullptr ? c.kept : c.typed)
        << c.field;
  }
  form.Close();
  const FormOnScreen again = OpenCode("10300-CS-42");
  EXPECT_EQ(again.Text("FXNome"), cases[0].kept);
  EXPECT_EQ(again.Text("FXAltura"), "1\u00A0234,50");
  EXPECT_FALSE(again.ButtonIsEnabled("Toolbar1", "gravar"));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(RecordTest, WhatTheServerRefusesIsReportedAndNothingIsHalfSaved) {
  const FormOnScreen form = OpenCode("10012");
  const std::string marca = form.Text("FXMarca");
  const std::string longer_than_the_column(400, 'n');
  form.TypeOver("FXMarca", "Outra");
  form.TypeOver("FXNome", longer_than_the_column);
  form.PressButton("Toolbar1", "gravar");
  if (form.Text("FXNome").size() == longer_than_the_column.size()) {
    EXPECT_EQ(Reports().size(), 1U);
    EXPECT_EQ(Sql("SELECT marca FROM tbProdutos WHERE codigo = '10012'"), marca);
    EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar"));
    form.TypeOver("FXNome", "Curto");
    form.PressButton("Toolbar1", "gravar");
  }
  EXPECT_EQ(Sql("SELECT marca FROM tbProdutos WHERE codigo = '10012'"), "Outra");
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar1", "gravar"));

  const std::string id = std::to_string(IdOfCode("10012"));
  for (const char* const table :
       {"tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos", "tbProdutos"}) {
    Sql(std::string("DELETE FROM ") + table + " WHERE produto_id = " + id);
  }
  form.TypeOver("FXNome", "De outro");
  AnswerNext(IDOK);
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(box_text, "Este produto foi entretanto apagado por outro utilizador. As alterações não foram gravadas.");
  EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar")) << "what was typed is still there";
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM tbProdutos WHERE nome = 'De outro'"), "0");
}

TEST_F(RecordTest, EveryWayOfChangingTextMarksAndSettingItDoesNot) {
  const FormOnScreen form = OpenCode("10013");
  const auto marks = [&] { return form.ButtonIsEnabled("Toolbar1", "gravar"); };
  form.FocusOn("FXObs");
  form.Key(VK_SHIFT);
  form.Key(VK_TAB);
  EXPECT_FALSE(marks());
  form.TypeOver("FXObs", "abc");
  form.PressButton("Toolbar1", "gravar");
  for (const UINT edit : {WM_COPY, WM_CUT, WM_UNDO, WM_CUT, WM_PASTE}) {
    EXPECT_FALSE(marks());
    form.FocusOn("FXObs");
    SendMessageW(form.Control("FXObs"), EM_SETSEL, 0, -1);
    SendMessageW(form.Control("FXObs"), edit, 0, 0);
    Pump();
    EXPECT_EQ(marks(), edit != WM_COPY) << edit;
    if (marks()) form.PressButton("Toolbar1", "gravar");
  }
  form.FocusOn("FXFamilia_ID");
  form.Key(VK_DELETE);
  EXPECT_EQ(form.Text("FXFamilia_ID"), "");
  EXPECT_TRUE(marks());
  EXPECT_TRUE(Reports().empty());
}

TEST_F(RecordTest, ANameIsCompletedFromThoseOfItsFamily) {
  const FormOnScreen form = OpenCode("10000");
  form.FocusOn("FXNome");
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  form.Type("az");
  const std::string completed = form.Text("FXNome");
  EXPECT_EQ(base::ToLower(completed.substr(0, 2)), "az");
  EXPECT_GT(completed.size(), 5U) << "the rest is proposed";
  form.Type("qq");
  EXPECT_EQ(base::ToLower(form.Text("FXNome")), "azqq") << "and typed over";
  EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(RecordTest, TheSecondNewProductIsAnotherOne) {
  const FormOnScreen first = NewProduct();
  New(*general.Get());
  ASSERT_EQ(Forms().size(), 2U);
  const FormOnScreen second = Forms()[0].window() == first.window() ? Forms()[1] : Forms()[0];
  EXPECT_NE(first.Text("FXCodigo"), second.Text("FXCodigo"));
  first.TypeOver("FXNome", "Primeiro");
  second.TypeOver("FXNome", "Segundo");
  EXPECT_EQ(first.Text("FXNome"), "Primeiro");
}

}  // namespace
}  // namespace quenta::tests
