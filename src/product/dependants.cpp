// The dependent products: variants of this one by colour and size.
#include "base/convert.h"
#include "base/text.h"
#include "data/sql_field.h"
#include "product/frm_main_guard.h"

namespace quenta::product {

void frmMain::Fill_Dependentes() {
  // Under the label of the tab that asks for the list, as the suite has it.
  Guarded("TabStrip1_Click", [&] {
    using data::ListKind;
    ListView3.Clear();
    const ports::RowSet rows =
        session_.Query("SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + base::DecimalText(produto_id_));
    const controls::ListView::Update update(ListView3);
    for (const ports::Row row : rows) {
      const std::string key = "#" + base::ToText(row["produto_id"], session_.locale());
      ListView3.Add(key, data::ListField(session_, row, "codigo", ListKind::kText));
      for (const char* column : {"nome", "cor", "tamanho"}) {
        ListView3.Item(key).sub_items.push_back(data::ListField(session_, row, column, ListKind::kText));
      }
    }
  });
}

}  // namespace quenta::product
