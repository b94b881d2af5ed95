// The price list: the working copy of the product's price lines, and the line that is shown in the entry fields.
#include <iterator>
#include <vector>

#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"
#include "product/price_row.h"

namespace quenta::product {
namespace {

constexpr const char* kDefaultMark = " [Predefinido]";

// A line's sub-items by position: the columns they come from, and what stands there for Null. The first two are for the
// user, the others are raw values.
constexpr const char* kColumns[] = {"preco",       "preco_total", "preco", "iva_id",     "iva",
                                    "preco_total", "desconto",    "tipo",  "iva_descrit"};
constexpr const char* kForNull[] = {" ", " ", "0", "0", "0", "0", "0", "0", ""};
constexpr std::size_t kShownColumns = 2;
static_assert(std::size(kColumns) == price_position::kIvaDescrit && std::size(kForNull) == std::size(kColumns));

}  // namespace

bool frmMain::Fill_Precos() {
  return Guarded("Fill_Precos", [&] {
    const base::Locale& locale = session_.locale();
    // Before the query: if that fails, no other product's prices stay.
    PrecoKey.clear();
    PrecosAltered = false;
    uncomputed_.clear();
    ListView2.Clear();
    const ports::RowSet lines = session_.Query(
        "SELECT tbProdutos_Precos.*, tbProdutos_Precos_Tipos.descrit as tipo FROM tbProdutos_Precos LEFT JOIN "
        "tbProdutos_Precos_Tipos ON tbProdutos_Precos.tipo_id = tbProdutos_Precos_Tipos.tipo_id WHERE produto_id = " +
        base::DecimalText(produto_id_) + " ORDER BY tbProdutos_Precos_Tipos.descrit");
    TakeLimits(lines);
    if (lines.empty()) return true;
    const std::size_t tipo_id = lines.Column("tipo_id");
    const std::size_t tipo = lines.Column("tipo");
    const std::size_t predef = lines.Column("predef");
    const std::vector<std::size_t> columns = lines.Columns(kColumns);
    for (const ports::Row line : lines) {
      const std::string key = "#" + base::ToText(line.At(tipo_id), locale);
      const base::Value& name = line.At(tipo);
      controls::ListItem& item = ListView2.Add(key, name.is_null() ? " " : base::ToText(name, locale));
      item.small_icon = kLineIcon;
      item.sub_items.reserve(columns.size());
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const base::Value& value = line.At(columns[i]);
        item.sub_items.push_back(value.is_null()     ? kForNull[i]
                                 : i < kShownColumns ? base::Format(value, "0.00", locale)
                                                     : base::ToText(value, locale));
      }
      if (!base::IsNonZero(line.At(predef))) continue;
      item.small_icon = kDefaultLineIcon;
      item.text += kDefaultMark;
      ListView2.Select(ListView2.Count() - 1);
      ShowPreco(key);
    }
    return true;
  });
}

void frmMain::ShowPreco(const std::string& key) {
  Guarded("ShowPreco", [&] {
    using namespace controls::format_code;
    const bool altered = altered_;
    const PriceRow line(ListView2.Item(key));
    // What the user has emptied in the line is nothing, and shows as that.
    const auto number = [](const std::string& raw) { return raw.empty() ? base::Value::Null() : base::Value(raw); };
    PrecoKey = key;
    ForgetTyping();
    Set(FXTipo, line.tipo(), kText);
    Set(FXValor, number(line.preco()), kAmount);
    Set(FXIVA, number(line.iva()), kAmount);
    Set(FXIva_ID, line.iva_id());
    Set(FXTOTAL, number(line.preco_total()), kAmount);
    Set(FXDesconto, number(line.desconto()), kPercent);
    FillIsencaoIVA();
    Set(FXIVA_Descrit, line.iva_descrit());
    altered_ = altered;
  });
}

void frmMain::mnProdutosPredef_Click() {
  Guarded("mnProdutosPredef_Click", [&] {
    if (ListView2.Count() == 0) return;
    for (int i = 0; i < ListView2.Count(); ++i) {
      controls::ListItem& item = ListView2.At(i);
      const bool chosen = i == ListView2.selected();
      const std::string name = PriceRow(item).tipo();
      item.small_icon = chosen ? kDefaultLineIcon : kLineIcon;
      item.text = chosen ? name + kDefaultMark : name;
    }
    ListView2.ItemsChanged();
    SetAltered(true);
    PrecosAltered = true;
  });
}

// Takes the user to a line that cannot be saved as it is: what he does next is done to it.
void frmMain::ShowLine(int row) {
  ShowTab("precos");
  ListView2.Select(row);
  const std::string& key = ListView2.At(row).key;
  if (key != PrecoKey) ShowPreco(key);
}

// What the user typed belonged to another line, or another product.
void frmMain::ForgetTyping() {
  ValorAltered = IVAAltered = TotalAltered = false;
}

// Writes into the line's row; into none when there is no line.
void frmMain::SetInLine(const std::string& key, int position, const std::string& text) {
  if (key.empty()) return;
  ListView2.Item(key).sub_items.at(static_cast<std::size_t>(position - 1)) = text;
  ListView2.ItemsChanged();
}

}  // namespace quenta::product
