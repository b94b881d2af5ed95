#include "product/barcode.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <random>

#include "gtest/gtest.h"

namespace quenta::tests {
namespace {

using product::BarcodePicture;
using product::Code128;

// Bars and gaps of each character of the symbol, as a scanner sees them.
std::vector<std::string> Characters(const std::vector<int>& widths) {
  std::vector<std::string> characters;
  for (std::size_t i = 0; i + 7 < widths.size(); i += 6) {
    std::string pattern;
    for (std::size_t k = i; k < i + 6; ++k) pattern += static_cast<char>('0' + widths[k]);
    characters.push_back(pattern);
  }
  return characters;
}

std::size_t Length(std::string_view text) {
  const auto widths = Code128(text);
  return widths ? Characters(*widths).size() : 0;
}

// Start, check character and what the text takes.
TEST(Code128, DigitsGoInPairsWhereThatIsShorter) {
  const struct {
    const char* text;
    std::size_t characters;
  } cases[] = {
      {"1", 3},        {"12", 3},    {"123", 5},          {"1234", 4},   {"12345", 6},          {"123456", 5},
      {"A10", 5},      {"A1234", 6}, {"A123456", 7},      {"12345A", 7}, {"123456A", 7},        {"A1234B", 8},
      {"A123456B", 9}, {"10000", 6}, {"10300-CS-42", 12}, {"VN-001", 8}, {"2099000105266", 10},
  };
  for (const auto& [text, characters] : cases) EXPECT_EQ(Length(text), characters) << text;
}

TEST(Code128, RefusesWhatItCannotCarry) {
  for (const char* text : {"", "Ç1", "caf\xC3\xA9", "a\tb", "a\nb", "\x7F"}) EXPECT_FALSE(Code128(text)) << text;
  for (char c = ' '; c <= '~'; ++c) EXPECT_TRUE(Code128(std::string(1, c))) << c;
}

// The standard's own self-check: eleven modules a character, an even number of them black, and no pattern twice.
TEST(Code128, EveryCharacterHasItsOwnPatternOfElevenModules) {
  std::map<std::string, std::string> seen;
  for (char c = ' '; c <= '~'; ++c) {
    const std::vector<std::string> characters = Characters(*Code128(std::string(1, c)));
    ASSERT_EQ(characters.size(), 3U);
    for (const std::string& pattern : characters) {
      int all = 0;
      int black = 0;
      for (std::size_t i = 0; i < pattern.size(); ++i) {
        all += pattern[i] - '0';
        if (i % 2 == 0) black += pattern[i] - '0';
      }
      EXPECT_EQ(all, 11) << c;
      EXPECT_EQ(black % 2, 0) << c;
    }
    EXPECT_TRUE(seen.emplace(characters[1], std::string(1, c)).second) << c << " and " << seen[characters[1]];
  }
}

// The standard's example: behind the start of set A, P J J 1 2 3 C has the check value 54. Set B's start is one higher,
// as is its check value then, "W".
TEST(Code128, HasTheCheckCharacterOfTheStandard) {
  const std::vector<std::string> symbol = Characters(*Code128("PJJ123C"));
  ASSERT_EQ(symbol.size(), 9U);
  EXPECT_EQ(symbol.front(), "211214");
  EXPECT_EQ(symbol.back(), Characters(*Code128("W"))[1]);
}

// Characters that the text takes at least, by trying every way.
std::size_t Shortest(std::string_view text, bool in_c) {
  if (text.empty()) return 0;
  const bool pair = text.size() > 1 && std::isdigit(text[0]) && std::isdigit(text[1]);
  const std::size_t as_text = (in_c ? 2 : 1) + Shortest(text.substr(1), false);
  return pair ? std::min(as_text, (in_c ? 1 : 2) + Shortest(text.substr(2), true)) : as_text;
}

TEST(Code128, NoMixOfTextAndPairsIsShorter) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (unsigned length = 1 + random() % 14; length > 0; --length) {
      text += random() % 4 != 0 ? static_cast<char>('0' + random() % 10) : 'A';
    }
    EXPECT_EQ(Length(text), 2 + std::min(Shortest(text, false), Shortest(text, true))) << text;
  }
}

TEST(BarcodePicture, IsDrawnAsWideAsItsModulesNeed) {
  const auto width = [](std::string_view text) {
    const auto picture = BarcodePicture(text);
    if (!picture) return 0;
    return std::stoi(picture->substr(picture->find("\\picwgoal") + 9));
  };
  // (11 for each character + 13 for the stop + 20 of quiet zone) modules of 14.4 twips.
  EXPECT_EQ(width("A10"), (5 * 11 + 33) * 144 / 10);
  EXPECT_EQ(width("10300-CS-42"), (12 * 11 + 33) * 144 / 10);
  EXPECT_EQ(width(std::string(20, 'A')), (22 * 11 + 33) * 120 / 10) << "narrower modules where it gets long";
  EXPECT_EQ(width(std::string(28, 'A')), (30 * 11 + 33) * 96 / 10);
  EXPECT_EQ(width(std::string(40, 'A')), 0) << "no scanner would read it";
  EXPECT_GT(width(std::string(40, '7')), 0);
}

}  // namespace
}  // namespace quenta::tests
