// Lists as text files that spreadsheets open with a double click: cells separated by ";", UTF-8 with its mark, CRLF.
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "controls/list_view.h"

namespace quenta::product {

// The list's visible columns as it shows them, captions first. The cells of number columns become plain numbers with
// the user's decimal separator, without currency and thousands separators; a cell that stands for null becomes empty.
// What a spreadsheet would run as a formula is kept from it by an apostrophe; negative numbers are none.
std::string CsvOf(const controls::ListView& list, const base::Locale& locale);

// The text as part of a file's name: characters that Windows does not take there become "_".
std::string FileNameOf(std::string_view text);

}  // namespace quenta::product
