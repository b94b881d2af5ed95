#include "base/ansi.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace quenta::base {
namespace {

// Bytes 0x80 to 0x9F; all others are the code point of the same number.
constexpr char16_t kUpperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                         0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::string FromAnsi(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : char16_t{byte};
  }
  return FromUtf16(text);
}

std::string ToAnsi(std::string_view text) {
  std::string bytes;
  const std::u16string units = ToUtf16(text);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
      bytes += static_cast<char>(unit);
      continue;
    }
    const auto* const found = std::find(std::begin(kUpperControls), std::end(kUpperControls), unit);
    bytes += found == std::end(kUpperControls) ? '?' : static_cast<char>(0x80 + (found - kUpperControls));
    // A character beyond the basic plane is two units and one question mark.
    const bool pair =
        unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
    if (pair) ++i;
  }
  return bytes;
}

}  // namespace quenta::base
