// The stock list: per warehouse the units in stock, the minimum, the reposition quantity and the units on order.
#include <vector>

#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"
#include "product/frm_main_guard.h"
#include "product/frm_stocks.h"

namespace quenta::product {
namespace {

constexpr const char* kStockColumns[] = {"unidades", "unidades_minimas", "unidades_reposicao", "unidades_enc_clientes",
                                         "unidades_enc_fornec"};

}  // namespace

void frmMain::Fill_Stocks() {
  Guarded("Fill_Stocks", [&] {
    const base::Locale& locale = session_.locale();
    const controls::ListView::Update update(ListView1);
    // Before the query: if that fails, no other product's quantities stay.
    ListView1.Clear();
    const ports::RowSet rows = session_.Query(
        "SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unidades_minimas, "
        "tbProdutos_Stocks_Minimos.reposicao as unidades_reposicao, tbArmazens.descrit as armazem FROM "
        "tbProdutos_Stocks LEFT JOIN tbProdutos_Stocks_Minimos ON (tbProdutos_Stocks.armazem_id = "
        "tbProdutos_Stocks_Minimos.armazem_id AND tbProdutos_Stocks.produto_id = tbProdutos_Stocks_Minimos.produto_id) "
        "LEFT JOIN tbArmazens ON tbProdutos_Stocks.armazem_id = tbArmazens.armazem_id WHERE "
        "tbProdutos_Stocks.produto_id = " +
        base::DecimalText(produto_id_));
    if (rows.empty()) return;
    // Named once, not in every row: there may be many warehouses.
    const std::size_t armazem_id = rows.Column("armazem_id");
    const std::size_t armazem = rows.Column("armazem");
    const std::vector<std::size_t> units = rows.Columns(kStockColumns);
    for (const ports::Row row : rows) {
      const base::Value& name = row.At(armazem);
      controls::ListItem& item = ListView1.Add("#" + base::ToText(row.At(armazem_id), locale),
                                               name.is_null() ? " " : base::ToText(name, locale));
      item.sub_items.reserve(units.size());
      for (const std::size_t column : units) {
        const base::Value& number = row.At(column);
        item.sub_items.push_back(number.is_null() ? std::string(" ") : base::Format(number, "0.00", locale));
      }
    }
  });
}

void frmMain::AddStockCommands() {
  ListView1.multi_select = true;
  ListView1.on_item_activate = [this] { mnStocksPropriedades_Click(); };
  ListView1.on_context_menu = [this] { host().PopupMenu(*this, "mnStocks"); };
}

void frmMain::mnStocksPropriedades_Click() {
  Guarded("mnStocksPropriedades_Click", [&] {
    if (ListView1.selected() < 0) return;
    if (!MayChange()) {
      Tell({.text = locked_ ? "O armazém deste posto não pode alterar produtos." : Label1.caption(),
            .title = "Stock em Armazém",
            .icon = ports::Icon::kInformation});
      return;
    }
    const std::int32_t armazem_id = base::ToLong(ListView1.At(ListView1.selected()).key.substr(1), session_.locale());
    const auto stocks = std::make_shared<frmStocks>(session_, host(), forms_,
                                                    std::static_pointer_cast<frmMain>(shared_from_this()), armazem_id);
    stocks->Show();
    host().Focus(*stocks, stocks->FXStockMinimo.name().c_str());
  });
}

}  // namespace quenta::product
