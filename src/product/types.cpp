// What a product type switches on: attribute fields and the stock tab.
#include "base/convert.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

constexpr int kTabsWithStocks = 7;
constexpr int kStockTab = 2;  // position, from 1

void MakeAvailable(controls::Control& field, controls::Control& caption, bool available) {
  field.set_enabled(available);
  caption.set_enabled(available);
}

}  // namespace

void frmMain::FXTipo_ID_Click() {
  Guarded("FXTipo_ID_Click", [&] {
    const struct {
      const char* column;
      controls::Control& field;
      controls::Control& caption;
    } attributes[] = {{"tamanho", FXTamanho, FXTamanho_Label},
                      {"cor", FXCor, FXCor_Label},
                      {"altura", FXAltura, FXAltura_Label},
                      {"largura", FXLargura, FXLargura_Label},
                      {"profundidade", FXProfundidade, FXProfundidade_Label}};
    ports::RowSet types;
    if (FXTipo_ID.ListIndex() >= 0) {
      types = session_.Query("SELECT * FROM tbProdutos_Tipos WHERE tipo_id = " +
                             controls::GetFieldValue(FXTipo_ID, 0, session_.locale()));
    }
    for (const auto& [column, field, caption] : attributes) {
      MakeAvailable(field, caption, !types.empty() && base::IsNonZero(types.front()[column]));
    }
    if (!types.empty()) {
      // A type that does not say keeps stock.
      const base::Value& has_stocks = types.front()["has_stocks"];
      const bool wants_stocks = has_stocks.is_null() || base::IsNonZero(has_stocks);
      if (!wants_stocks && TabStrip1.Count() == kTabsWithStocks) TabStrip1.Remove(kStockTab);
      if (wants_stocks && TabStrip1.Count() == kTabsWithStocks - 1) {
        TabStrip1.Insert(kStockTab, {"stocks", "Stocks em Armazém"});
      }
    }
    // The prices are left alone: what the user has changed in them stands only in their list.
    if (!filling_) Fill_Stocks();
    MarkAltered();
  });
}

}  // namespace quenta::product
