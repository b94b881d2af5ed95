// The stock list: per warehouse the units in stock, the minimum, the reposition quantity and the units on order.
#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

constexpr const char* kStockColumns[] = {"unidades", "unidades_minimas", "unidades_reposicao", "unidades_enc_clientes",
                                         "unidades_enc_fornec"};

}  // namespace

void frmMain::Fill_Stocks() {
  Guarded("Fill_Stocks", [&] {
    const base::Locale& locale = session_.locale();
    const ports::RowSet rows = session_.Query(
        "SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unidades_minimas, "
        "tbProdutos_Stocks_Minimos.reposicao as unidades_reposicao, tbArmazens.descrit as armazem FROM "
        "tbProdutos_Stocks LEFT JOIN tbProdutos_Stocks_Minimos ON (tbProdutos_Stocks.armazem_id = "
        "tbProdutos_Stocks_Minimos.armazem_id AND tbProdutos_Stocks.produto_id = tbProdutos_Stocks_Minimos.produto_id) "
        "LEFT JOIN tbArmazens ON tbProdutos_Stocks.armazem_id = tbArmazens.armazem_id WHERE "
        "tbProdutos_Stocks.produto_id = " +
        base::DecimalText(produto_id_));
    ListView1.Clear();
    for (const ports::Row row : rows) {
      const base::Value& armazem = row["armazem"];
      controls::ListItem& item = ListView1.Add("#" + base::ToText(row["armazem_id"], locale),
                                               armazem.is_null() ? " " : base::ToText(armazem, locale));
      for (const char* column : kStockColumns) {
        const base::Value& units = row[column];
        item.sub_items.push_back(units.is_null() ? std::string(" ") : base::Format(units, "0.00", locale));
      }
    }
    ListView1.ItemsChanged();
  });
}

}  // namespace quenta::product
