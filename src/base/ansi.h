// The ANSI code page of the suite's machines, Windows-1252: used only in the shadow settings file and in rich text.
#pragma once

#include <string>
#include <string_view>

namespace quenta::base {

// UTF-8 of bytes in Windows-1252. Every byte has a character (the five unassigned ones map to C1 controls).
std::string FromAnsi(std::string_view bytes);

// Windows-1252 bytes of the text; a character that the code page lacks becomes "?". Never best-fit: U+02BC must not
// turn into a quote.
std::string ToAnsi(std::string_view text);

}  // namespace quenta::base
