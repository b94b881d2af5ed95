// Minimums of a warehouse, product types, and the movement history with real windows.
#include "base/text.h"
#include "component/product/product_fixture.h"
#include "platform/automation/bstr.h"

namespace quenta::tests {
namespace {

using StockTest = FormTest;
using HistoryFormTest = FormTest;

TEST_F(StockTest, AWarehousesMinimumsAreEditedByKeyboardAlone) {
  const FormOnScreen form = OpenCode("10000");
  form.SelectTab("stocks");
  const std::string id = std::to_string(IdOfCode("10000"));
  ASSERT_EQ(form.RowCount("ListView1"),
            std::stoi(Sql("SELECT COUNT(*) FROM tbProdutos_Stocks WHERE produto_id = " + id)));
  const auto open = [&](bool by_menu) {
    form.FocusOn("ListView1");
    form.Key(VK_HOME);
    if (by_menu) {
      form.ChooseFromContextMenu(2);  // below one that is disabled
    } else {
      form.Key(VK_RETURN);
    }
    const FormOnScreen stocks = FormNamed("frmStocks");
    EXPECT_NE(stocks.window(), nullptr);
    EXPECT_FALSE(IsWindowEnabled(form.window()));
    return stocks;
  };
  const FormOnScreen stocks = open(false);
  ASSERT_NE(stocks.window(), nullptr);
  EXPECT_EQ(stocks.Text("FXArmazem").rfind("Armazém: ", 0), 0U);
  stocks.TypeOver("FXStockMinimo", "5,5");
  stocks.TypeOver("FXReposicao", "7");
  stocks.Key(VK_RETURN);
  EXPECT_EQ(FormNamed("frmStocks").window(), nullptr);
  EXPECT_TRUE(IsWindowEnabled(form.window()));
  const std::string row = form.Row("ListView1", 0);
  EXPECT_NE(row.find(" | 5,50 | 7,00 | "), std::string::npos) << row;
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM tbProdutos_Stocks_Minimos WHERE unidades = 5.5 AND reposicao = 7 AND produto_id "
                "= " +
                id),
            "1");

  const FormOnScreen again = open(true);
  ASSERT_NE(again.window(), nullptr);
  again.TypeOver("FXStockMinimo", "99");
  again.Key(VK_ESCAPE);
  EXPECT_EQ(FormNamed("frmStocks").window(), nullptr);
  EXPECT_TRUE(IsWindowEnabled(form.window()));
  EXPECT_EQ(form.Row("ListView1", 0), row);
  open(false).Close();
  EXPECT_TRUE(IsWindowEnabled(form.window()));
  EXPECT_TRUE(Reports().empty());
}

TEST_F(StockTest, TheTypeSwitchesAttributesAndTheStockTab) {
  const FormOnScreen form = OpenCode("10300-CS-42");
  ASSERT_TRUE(form.IsEnabled("FXTamanho"));
  EXPECT_EQ(form.TabCount(), 7);
  form.SelectTab("stocks");
  form.Choose("FXTipo_ID", "Serviço");
  EXPECT_EQ(form.TabCount(), 6) << form.Text("FXTipo_ID");
  EXPECT_FALSE(form.IsEnabled("FXTamanho") || form.IsEnabled("FXTamanho_Label"));
  form.SelectTab("dependentes");
  EXPECT_TRUE(IsWindowVisible(form.Control("ListView3"))) << "by its key, wherever it stands now";
  EXPECT_TRUE(Reports().empty());
}

TEST_F(HistoryFormTest, EachTabListsItsLinesAndColumnsSort) {
  const FormOnScreen form = OpenCode("10001");
  for (const char* const tab : {"compras", "vendas", "encomendas_fornecedores", "encomendas_clientes"}) {
    form.SelectTab(tab);
    EXPECT_GT(form.RowCount("ListView13"), 0) << tab;
    EXPECT_FALSE(form.Text("FXValorTotal").empty()) << tab;
  }
  form.SelectTab("vendas");
  const int rows = form.RowCount("ListView13");
  ASSERT_GT(rows, 2);
  const auto column = [&](int row, int position) {
    std::string cells = form.Row("ListView13", row);
    for (int i = 0; i < position; ++i) cells = cells.substr(cells.find(" | ") + 3);
    return cells.substr(0, cells.find(" | "));
  };
  form.ClickHeader("ListView13", 4);
  const auto number = [&](int row) { return std::stod(base::ReplaceAll(column(row, 4), ",", ".")); };
  for (int i = 1; i < rows; ++i) EXPECT_LE(number(i - 1), number(i)) << i;
  form.ClickHeader("ListView13", 4);
  for (int i = 1; i < rows; ++i) EXPECT_GE(number(i - 1), number(i)) << i;
  EXPECT_TRUE(Reports().empty());
}

TEST_F(HistoryFormTest, AHundredThousandLinesStayFluid) {
  const FormOnScreen form = OpenCode("10522");
  const ULONGLONG start = GetTickCount64();
  form.SelectTab("vendas");
  const ULONGLONG shown = GetTickCount64();
  EXPECT_GE(form.RowCount("ListView13"), 90000) << "those of this year";
  form.FocusOn("ListView13");
  for (int i = 0; i < 50; ++i) PostMessageW(GetFocus(), WM_KEYDOWN, VK_PRIOR, 1);
  Pump();
  form.Key(VK_HOME);
  form.Key(VK_END);
  const ULONGLONG scrolled = GetTickCount64();
  form.ClickHeader("ListView13", 6);
  const ULONGLONG sorted = GetTickCount64();
  RecordProperty("milliseconds_to_show", static_cast<int>(shown - start));
  RecordProperty("milliseconds_for_52_scrolls", static_cast<int>(scrolled - shown));
  RecordProperty("milliseconds_to_sort", static_cast<int>(sorted - scrolled));
  EXPECT_TRUE(Reports().empty());
}

}  // namespace
}  // namespace quenta::tests
