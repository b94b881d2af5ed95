#include "sandbox/odbc/text_comparison.h"

#include <cstdint>
#include <string>

namespace quenta::sandbox {
namespace {

// The next character; malformed UTF-8 is taken byte by byte, so that every text has an order.
char32_t NextCharacter(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned char lead = byte(at++);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  if (more == 0 || at + static_cast<std::size_t>(more) > text.size()) return lead;
  char32_t character = static_cast<char32_t>(lead & (0x3F >> more));
  for (int i = 0; i < more; ++i) {
    if ((byte(at + static_cast<std::size_t>(i)) & 0xC0) != 0x80) return lead;
    character = (character << 6) | (byte(at + static_cast<std::size_t>(i)) & 0x3F);
  }
  at += static_cast<std::size_t>(more);
  return character;
}

char32_t Lower(char32_t c) {
  if (c >= U'A' && c <= U'Z') return c + 32;
  if (c < 0xC0 || c > 0x17F) return c;
  if (c <= 0xDE) return c == 0xD7 ? c : c + 32;
  if (c == 0x178) return 0xFF;
  const bool even_is_upper = (c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177);
  const bool odd_is_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  if ((even_is_upper && c % 2 == 0) || (odd_is_upper && c % 2 == 1)) return c + 1;
  return c;
}

// Base letters of the lower-case letters U+00DF to U+00FF ("." for none) and of U+0100 to U+017F.
constexpr std::string_view kBaseLatin1 = "saaaaaaaceeeeiiiidnooooo.ouuuuyty";
constexpr std::string_view kBaseExtended =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiiijjkkkllllllllllnnnnnnnnnoooooooorrrrrrssssssssttttttuuuuuuuuuu"
    "uuwwyy"
    "yzzzzzzs";
static_assert(kBaseLatin1.size() == 0xFF - 0xDF + 1);
static_assert(kBaseExtended.size() == 0x17F - 0x100 + 1);

// What decides first (class of character, then base letter) and what decides between equals (the accent).
struct Weight {
  std::uint32_t primary = 0;
  std::uint32_t accent = 0;
};

Weight WeightOf(char32_t character) {
  constexpr std::uint32_t kSigns = 0x100;
  constexpr std::uint32_t kDigits = 0x1000;
  constexpr std::uint32_t kLetters = 0x2000;
  constexpr std::uint32_t kOthers = 0x10000;
  const char32_t c = Lower(character);
  if (c >= U'0' && c <= U'9') return {kDigits + c, 0};
  if (c >= U'a' && c <= U'z') return {kLetters + c, 0};
  if (c < 0xDF) return {kSigns + c, 0};
  if (c > 0x17F) return {kOthers + c, 0};
  const char base = c <= 0xFF ? kBaseLatin1[c - 0xDF] : kBaseExtended[c - 0x100];
  if (base == '.') return {kSigns + c, 0};
  return {kLetters + static_cast<unsigned char>(base), c};
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

int CompareCharacters(char32_t a, char32_t b) {
  const Weight left = WeightOf(a);
  const Weight right = WeightOf(b);
  if (left.primary != right.primary) return left.primary < right.primary ? -1 : 1;
  if (left.accent != right.accent) return left.accent < right.accent ? -1 : 1;
  return 0;
}

std::u32string Characters(std::string_view text) {
  std::u32string characters;
  for (std::size_t at = 0; at < text.size();) characters += NextCharacter(text, at);
  return characters;
}

// The class that opens at pattern[at] ("["): whether the character is in it; `at` moves behind it. Nothing when the
// bracket is never closed, which matches nothing.
std::optional<bool> MatchesClass(char32_t character, std::u32string_view pattern, std::size_t& at) {
  std::size_t next = at + 1;
  const bool negated = next < pattern.size() && pattern[next] == U'^';
  if (negated) ++next;
  bool found = false;
  for (; next < pattern.size() && pattern[next] != U']'; ++next) {
    const char32_t low = pattern[next];
    if (next + 2 < pattern.size() && pattern[next + 1] == U'-' && pattern[next + 2] != U']') {
      const char32_t high = pattern[next + 2];
      found = found || (CompareCharacters(character, low) >= 0 && CompareCharacters(character, high) <= 0);
      next += 2;
    } else {
      found = found || CompareCharacters(character, low) == 0;
    }
  }
  if (next >= pattern.size()) return std::nullopt;
  at = next + 1;
  return found != negated;
}

bool Match(std::u32string_view text, std::u32string_view pattern, std::optional<char32_t> escape) {
  std::size_t at = 0;
  // Where the last "%" stood and how much of the text it has swallowed: on a mismatch it swallows one more.
  std::size_t retry_pattern = std::u32string_view::npos;
  std::size_t retry_text = 0;
  std::size_t here = 0;
  for (;;) {
    bool matched = false;
    if (at == pattern.size()) {
      if (here == text.size()) return true;
    } else if (pattern[at] == U'%' && pattern[at] != escape) {
      retry_pattern = ++at;
      retry_text = here;
      continue;
    } else if (here < text.size()) {
      const char32_t sign = pattern[at];
      if (sign == escape && at + 1 < pattern.size()) {
        matched = CompareCharacters(text[here], pattern[at + 1]) == 0;
        if (matched) at += 2;
      } else if (sign == U'_') {
        matched = true;
        ++at;
      } else if (sign == U'[') {
        std::size_t behind = at;
        const std::optional<bool> in_class = MatchesClass(text[here], pattern, behind);
        if (!in_class) return false;
        matched = *in_class;
        if (matched) at = behind;
      } else {
        matched = CompareCharacters(text[here], sign) == 0;
        if (matched) ++at;
      }
    }
    if (matched) {
      ++here;
      continue;
    }
    if (retry_pattern == std::u32string_view::npos || retry_text >= text.size()) return false;
    here = ++retry_text;
    at = retry_pattern;
  }
}

}  // namespace

int CompareText(std::string_view a, std::string_view b) {
  a = WithoutTrailingBlanks(a);
  b = WithoutTrailingBlanks(b);
  int accents = 0;
  std::size_t in_a = 0;
  std::size_t in_b = 0;
  while (in_a < a.size() && in_b < b.size()) {
    const char32_t left_character = NextCharacter(a, in_a);
    const char32_t right_character = NextCharacter(b, in_b);
    if (left_character == right_character) continue;
    const Weight left = WeightOf(left_character);
    const Weight right = WeightOf(right_character);
    if (left.primary != right.primary) return left.primary < right.primary ? -1 : 1;
    if (accents == 0 && left.accent != right.accent) accents = left.accent < right.accent ? -1 : 1;
  }
  if (in_a < a.size()) return 1;
  if (in_b < b.size()) return -1;
  return accents;
}

bool MatchesPattern(std::string_view text, std::string_view pattern, std::optional<char32_t> escape) {
  const std::u32string signs = Characters(pattern);
  std::u32string characters = Characters(text);
  if (Match(characters, signs, escape)) return true;
  bool shorter = false;
  while (!characters.empty() && characters.back() == U' ') {
    characters.pop_back();
    shorter = true;
  }
  return shorter && Match(characters, signs, escape);
}

}  // namespace quenta::sandbox
