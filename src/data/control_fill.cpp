#include "data/control_fill.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/convert.h"
#include "component/session/guarded.h"
#include "data/ensure_connection.h"

namespace quenta::data {
namespace {

constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Produtos", "modControlFill",
                                  session::DescriptionStyle::kNumbered};

constexpr std::size_t kMissing = static_cast<std::size_t>(-1);

std::size_t ExactColumn(const ports::RowSet& rows, const std::string& name) {
  const auto found = std::find(rows.columns().begin(), rows.columns().end(), name);
  return found == rows.columns().end() ? kMissing : static_cast<std::size_t>(found - rows.columns().begin());
}

}  // namespace

bool ControlFill(session::Session& session, controls::Form& form, controls::ItemList& control, const std::string& sql,
                 const std::string& text_column, const std::string& id_column) {
  return session::Guarded(session.ports().error_reporting, kLabels, "ControlFill", [&] {
    EnsureConnection(session, &form);
    ports::RowSet rows = session.Query(sql);
    if (rows.empty()) return true;
    const std::size_t text_at = ExactColumn(rows, text_column);
    const std::size_t id_at = id_column.empty() ? kMissing : ExactColumn(rows, id_column);
    if (text_at == kMissing || (!id_column.empty() && id_at == kMissing)) return false;
    const controls::ItemList::Update update(control);
    control.Clear();
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows.Cell(i, text_at).is_null()) continue;
      std::optional<std::int32_t> id;
      if (id_at != kMissing && !rows.Cell(i, id_at).is_null()) {
        id = base::ToLong(rows.Cell(i, id_at), session.locale());
      }
      control.AddItem(base::ToText(rows.Take(i, text_at), session.locale()));
      if (id) control.SetItemData(control.NewIndex(), *id);
    }
    return true;
  });
}

}  // namespace quenta::data
