// Fills a list control from a query: one entry for each row, with the row's identifier as its item data.
#pragma once

#include <string>

#include "component/session/session.h"
#include "controls/form.h"
#include "controls/item_list.h"

namespace quenta::data {

// Column names are compared exactly; an identifier column that is empty fills texts only. Without rows, or without the
// named columns, the control keeps what it had. Rows whose text is Null are left out; a Null identifier leaves the
// entry without item data. An error is reported and leaves the entries read so far. False after an error, and without
// the named columns. Any list will do. The form is the control's: a reconnect is shown over it.
bool ControlFill(session::Session& session, controls::Form& form, controls::ItemList& control, const std::string& sql,
                 const std::string& text_column, const std::string& id_column);

}  // namespace quenta::data
