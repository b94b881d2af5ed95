// Switches numeric and code fields between their display and what the user edits, when they gain and lose the focus.
#pragma once

#include <string>

#include "base/locale.h"
#include "controls/control.h"

namespace quenta::controls {

// First character of the locale's decimal separator.
std::string LocaleDecimal(const base::Locale& locale);

// What the user is told when a field does not take what was typed.
const char* RefusalOf(const Control& control);

// Neither routine reports anything, or fails: what cannot be shown as a number is shown as it stands.

// A field gets the focus: a numeric one shows its raw value (percentages times 100), all of it selected. Without a raw
// value it becomes empty. Code 3 selects the text of a field or an editable box.
void FieldGotFocus(Control& control, int code, const base::Locale& locale);

// A field loses the focus: what was typed becomes the raw value (percentages divided by 100) and is shown formatted.
// What is no number becomes 0; an emptied field changes nothing. Code 10 shows three decimals here, and the plain
// numbers have no negative part of their own: deliberately unlike ShowFormatted.
// A masked field keeps what was typed.
// False when the number is beyond what a column holds: the field then shows its former value. And when a masked field
// holds a date that does not exist. The user has to be told (RefusalOf).
[[nodiscard]] bool FieldLostFocus(Control& control, int code, const base::Locale& locale);

}  // namespace quenta::controls
