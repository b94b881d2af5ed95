// What a product type switches on: attribute fields and the stock tab.
#include <array>
#include <utility>

#include "base/convert.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

constexpr int kTabsWithStocks = 7;
constexpr int kStockTab = 2;  // position, from 1

// The flags of a type, in the order in which they are looked at.
constexpr std::array<const char*, frmMain::kAttributeCount> kAttributes{"tamanho", "cor", "altura", "largura",
                                                                        "profundidade"};

}  // namespace

// A field and its caption always change together.
void frmMain::ShowAttributes() {
  const std::array<std::pair<controls::Control*, controls::Control*>, kAttributeCount> fields{
      {{&FXTamanho, &FXTamanho_Label},
       {&FXCor, &FXCor_Label},
       {&FXAltura, &FXAltura_Label},
       {&FXLargura, &FXLargura_Label},
       {&FXProfundidade, &FXProfundidade_Label}}};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const bool available = has_attribute_[i] && MayChange();
    fields[i].first->set_enabled(available);
    fields[i].second->set_enabled(available);
  }
}

void frmMain::FXTipo_ID_Click() {
  Guarded("FXTipo_ID_Click", [&] {
    ports::RowSet types;
    if (FXTipo_ID.ListIndex() >= 0) {
      types = session_.Query("SELECT * FROM tbProdutos_Tipos WHERE tipo_id = " +
                             controls::GetFieldValue(FXTipo_ID, 0, session_.locale()));
    }
    for (std::size_t i = 0; i < has_attribute_.size(); ++i) {
      has_attribute_[i] = !types.empty() && base::IsNonZero(types.front()[kAttributes[i]]);
    }
    ShowAttributes();
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
