// The report and the labels as finished documents, opened by the program that the machine has for them: here one that
// keeps a copy.
#include <filesystem>
#include <fstream>

#include "component/product/product_fixture.h"

namespace quenta::tests {
namespace {

namespace fs = std::filesystem;

class DocumentTest : public FormTest {
 protected:
  DocumentTest() {
    fs::remove(Opened("produto_stats.doc"));
    fs::remove(Opened("Etiqueta.doc"));
    fs::remove(Opened("Etiquetas.doc"));
  }
  static fs::path Opened(const char* name) { return fs::path(L"C:\\opened") / name; }
  // What the program got to open; empty when it was not called within a moment.
  static std::string Contents(const char* name) {
    for (int i = 0; i < 100 && !fs::exists(Opened(name)); ++i) Pump();
    Pump();
    std::ifstream file(Opened(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(DocumentTest, TheReportOpensWithTheLinesOfTheTab) {
  const FormOnScreen form = OpenCode("10001");
  form.SelectTab("vendas");
  form.PressButton("Toolbar3", "relatorio");
  const std::string report = Contents("produto_stats.doc");
  ASSERT_EQ(report.rfind("{\\rtf1", 0), 0U);
  EXPECT_NE(report.find("10001"), std::string::npos);
  EXPECT_EQ(report.find("<documento_no>"), std::string::npos);
  EXPECT_TRUE(Reports().empty());
}

TEST_F(DocumentTest, WhileTheLastReportIsOpenElsewhereNothingIsOpened) {
  wchar_t folder[MAX_PATH] = L"";
  GetTempPathW(MAX_PATH, folder);
  const std::wstring path = std::wstring(folder) + L"produto_stats.doc";
  const HANDLE held = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  const FormOnScreen form = OpenCode("10001");
  form.SelectTab("vendas");
  AnswerNext(IDOK);
  form.PressButton("Toolbar3", "relatorio");
  CloseHandle(held);
  EXPECT_EQ(box_text, "Tem uma impressão aberta. Feche esse ficheiro antes de iniciar uma nova impressão.");
  EXPECT_EQ(box_title, "Impressões");
  EXPECT_FALSE(fs::exists(Opened("produto_stats.doc")));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(DocumentTest, OneLabelOrASheetOfThem) {
  const FormOnScreen form = OpenCode("10001");
  form.PressButton("Toolbar1", "imprimir");
  const FormOnScreen labels = FormNamed("frmEtiquetas");
  ASSERT_NE(labels.window(), nullptr);
  EXPECT_FALSE(IsWindowEnabled(form.window()));
  labels.Key(VK_RETURN);
  EXPECT_EQ(FormNamed("frmEtiquetas").window(), nullptr);
  EXPECT_TRUE(IsWindowEnabled(form.window()));
  const std::string label = Contents("Etiqueta.doc");
  EXPECT_NE(label.find("10001"), std::string::npos);
  EXPECT_EQ(label.find("<<"), std::string::npos);

  form.PressButton("Toolbar1", "imprimir");
  const FormOnScreen sheet = FormNamed("frmEtiquetas");
  ASSERT_NE(sheet.window(), nullptr);
  SendMessageW(sheet.Control("Option2"), BM_CLICK, 0, 0);
  sheet.TypeOver("FXQuantidade", "abc");
  AnswerNext(IDOK);
  sheet.Key(VK_RETURN);
  EXPECT_FALSE(box_text.empty()) << "that is no number";
  EXPECT_EQ(sheet.Focused(), "FXQuantidade");
  sheet.TypeOver("FXQuantidade", "5");
  sheet.TypeOver("FXPosicao", "3");
  sheet.Key(VK_RETURN);
  EXPECT_NE(Contents("Etiquetas.doc").find("10001"), std::string::npos);
  EXPECT_TRUE(Reports().empty());
}

}  // namespace
}  // namespace quenta::tests
