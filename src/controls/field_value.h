// Puts database values into record fields, shows them by their format code, and reads fields back as SQL text.
#pragma once

#include <string>

#include "base/locale.h"
#include "base/value.h"
#include "controls/control.h"

namespace quenta::controls {

// How a text field shows its value, by the numbers the suite knows the formats by.
namespace format_code {
inline constexpr int kPlain = 0;
inline constexpr int kDate = 1;
inline constexpr int kNumber = 2;
inline constexpr int kText = 3;
inline constexpr int kAmount = 4;
inline constexpr int kPercent = 5;
inline constexpr int kInteger = 6;
inline constexpr int kAmount3 = 7;  // three decimals
inline constexpr int kNumber3 = 8;  // three decimals
inline constexpr int kDateTime = 9;
inline constexpr int kAmount4 = 10;  // four decimals
}  // namespace format_code

// Shows a database value in a field of any kind. Null empties the field or clears its selection. A code outside 0 to
// 10 leaves a text field as it was. No event fires.
void SetFieldValue(Control& control, const base::Value& value, int code, const base::Locale& locale);

// Redraws a text field from its raw value; nothing happens without one, or with a code that keeps none.
void ShowFormatted(Control& control, int code, const base::Locale& locale);

// The SQL text of what a field holds, "null" when that is nothing.
std::string GetFieldValue(const Control& control, int code, const base::Locale& locale);

}  // namespace quenta::controls
