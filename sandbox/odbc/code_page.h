// The server's code page, Windows-1252: what is left of text that was made for more letters.
#pragma once

#include <string>
#include <string_view>

namespace quenta::sandbox {

// The text as VARCHAR keeps it: a character that the code page lacks becomes its best fit there (Ω an O, ł an l, ∞ an
// 8), or "?" for each of its UTF-16 units.
std::string Narrowed(std::string_view text);

}  // namespace quenta::sandbox
