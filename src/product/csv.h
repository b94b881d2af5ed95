// Lists as text files that spreadsheets open with a double click: cells separated by ";", UTF-8 with its mark, CRLF.
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "controls/list_view.h"

namespace quenta::product {

// The list's visible columns, captions first. Numbers and dates stand there whole, not as the list rounds and shortens
// them: numbers with the user's decimal separator, without currency and thousands separators; dates in the user's short
// form with the century, and their time of day if they have one. A cell that stands for null becomes empty.
// What a spreadsheet would run as a formula is kept from it by an apostrophe; negative numbers are none.
std::string CsvOf(const controls::ListView& list, const base::Locale& locale);

// The text as part of a file's name: characters that Windows does not take there become "_".
std::string FileNameOf(std::string_view text);

}  // namespace quenta::product
