// A line without VAT must say why: the reasons are offered for a rate of zero, and erased by any other.
#include "base/convert.h"
#include "controls/field_value.h"
#include "data/control_fill.h"
#include "product/frm_main_guard.h"
#include "product/price_row.h"

namespace quenta::product {

// The rate by its identifier as SQL. One that is not in the table counts as exempt.
bool frmMain::IsExempt(const std::string& iva_id) {
  const ports::RowSet rates = session_.Query("SELECT * FROM tbTaxas_Iva WHERE iva_id = " + iva_id);
  return rates.empty() || !base::IsNonZero(rates.front()["tx"]);
}

void frmMain::FillIsencaoIVA() {
  Guarded("FillIsencaoIVA", [&] {
    const bool exempt = IsExempt(Sql(FXIva_ID, controls::format_code::kNumber));
    if (exempt) {
      data::ControlFill(session_, *this, FXIVA_Descrit, "SELECT * FROM tbTaxas_IVA_Insencoes ORDER BY descrit",
                        "descrit", "isencao_id");
    } else {
      Set(FXIVA_Descrit, base::Value::Null());
      SetInLine(PrecoKey, price_position::kIvaDescrit, "");
    }
    line_is_exempt_ = exempt;
    ShowExemption();
  });
}

void frmMain::ShowExemption() {
  const bool available = line_is_exempt_ && MayChange();
  FXIVA_Descrit.set_enabled(available);
  FXIVA_Descrit_Label.set_enabled(available);
}

}  // namespace quenta::product
