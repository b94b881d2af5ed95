#include "base/text.h"

#include <charconv>

namespace quenta::base {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// Reads one code point at position and moves past it. Surrogates encoded in three bytes are taken as they are.
char32_t NextCodePoint(std::string_view text, std::size_t& position) {
  const auto lead = static_cast<unsigned char>(text[position++]);
  if (lead < 0x80) return lead;
  int more = 0;
  char32_t code = 0;
  char32_t smallest = 0;
  if ((lead & 0xE0) == 0xC0) {
    more = 1;
    code = lead & 0x1FU;
    smallest = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    more = 2;
    code = lead & 0x0FU;
    smallest = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    more = 3;
    code = lead & 0x07U;
    smallest = 0x10000;
  } else {
    return kReplacement;
  }
  const std::size_t after_lead = position;
  for (int i = 0; i < more; ++i) {
    if (position >= text.size() || !IsContinuation(static_cast<unsigned char>(text[position]))) {
      position = after_lead;
      return kReplacement;
    }
    code = (code << 6) | (static_cast<unsigned char>(text[position++]) & 0x3FU);
  }
  if (code < smallest || code > 0x10FFFF) {
    position = after_lead;
    return kReplacement;
  }
  return code;
}

void AppendUtf8(std::string& text, char32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0 | (code >> 12));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xF0 | (code >> 18));
    text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

bool IsHighSurrogate(char32_t code) {
  return code >= 0xD800 && code <= 0xDBFF;
}
bool IsLowSurrogate(char32_t code) {
  return code >= 0xDC00 && code <= 0xDFFF;
}

// In Latin Extended A, pairs stand side by side; which one of a pair is the capital depends on the stretch.
bool EvenIsCapital(char32_t code) {
  return (code >= 0x100 && code <= 0x137) || (code >= 0x14A && code <= 0x177);
}
bool OddIsCapital(char32_t code) {
  return (code >= 0x139 && code <= 0x148) || (code >= 0x179 && code <= 0x17E);
}
bool HasNoPair(char32_t code) {
  return code == 0x130 || code == 0x131 || code == 0x138 || code == 0x149;
}

char32_t LowerOf(char32_t code) {
  if (code >= 'A' && code <= 'Z') return code + 32;
  if (code >= 0xC0 && code <= 0xDE && code != 0xD7) return code + 32;
  if (code == 0x178) return 0xFF;
  if (HasNoPair(code)) return code;
  if (EvenIsCapital(code)) return code | 1U;
  if (OddIsCapital(code)) return (code & 1U) != 0 ? code + 1 : code;
  return code;
}

char32_t UpperOf(char32_t code) {
  if (code >= 'a' && code <= 'z') return code - 32;
  if (code >= 0xE0 && code <= 0xFE && code != 0xF7) return code - 32;
  if (code == 0xFF) return 0x178;
  if (HasNoPair(code)) return code;
  if (EvenIsCapital(code)) return code & ~char32_t{1};
  if (OddIsCapital(code)) return (code & 1U) == 0 ? code - 1 : code;
  return code;
}

// The letter without its accent, for small letters up to U+00FF.
char32_t PlainLetterOf(char32_t code) {
  constexpr char kPlain[] = "aaaaaa\0ceeeeiiii\0nooooo\0ouuuuy\0y";
  if (code < 0xE0 || code > 0xFF) return code;
  const char plain = kPlain[code - 0xE0];
  return plain == '\0' ? code : static_cast<char32_t>(plain);
}

template <typename Map>
std::string MapLetters(std::string_view text, Map map) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) AppendUtf8(result, map(NextCodePoint(text, position)));
  return result;
}

}  // namespace

std::string FromUtf16(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (IsHighSurrogate(code) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - char32_t{0xDC00});
    }
    AppendUtf8(result, code);
  }
  return result;
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t code = NextCodePoint(text, position);
    if (code >= 0x10000) {
      result += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      result += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
      result += static_cast<char16_t>(code);
    }
  }
  return result;
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t length = 0;
  for (std::size_t position = 0; position < text.size();) length += NextCodePoint(text, position) >= 0x10000 ? 2 : 1;
  return length;
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  if (from.empty()) return std::string(text);
  std::string result;
  std::size_t position = 0;
  for (std::size_t found = text.find(from); found != std::string_view::npos; found = text.find(from, position)) {
    result.append(text, position, found - position);
    result += to;
    position = found + from.size();
  }
  result.append(text, position);
  return result;
}

std::string ToUpper(std::string_view text) {
  return MapLetters(text, UpperOf);
}

std::string ToLower(std::string_view text) {
  return MapLetters(text, LowerOf);
}

bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix) {
  std::size_t in_text = 0;
  for (std::size_t in_prefix = 0; in_prefix < prefix.size();) {
    if (in_text >= text.size()) return false;
    if (LowerOf(NextCodePoint(prefix, in_prefix)) != LowerOf(NextCodePoint(text, in_text))) return false;
  }
  return true;
}

bool EqualIgnoreCase(std::string_view a, std::string_view b) {
  std::size_t in_a = 0;
  std::size_t in_b = 0;
  while (in_a < a.size() && in_b < b.size()) {
    if (LowerOf(NextCodePoint(a, in_a)) != LowerOf(NextCodePoint(b, in_b))) return false;
  }
  return in_a == a.size() && in_b == b.size();
}

std::string SortKey(std::string_view text) {
  const std::string lower = ToLower(text);
  std::string key = MapLetters(lower, PlainLetterOf);
  if (key != lower) (key += '\0') += lower;
  return key;
}

std::string DecimalText(long long number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  return {digits, end};
}

}  // namespace quenta::base
