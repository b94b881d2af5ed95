#include "base/text.h"

#include "base/ansi.h"
#include "gtest/gtest.h"

namespace quenta::base {
namespace {

TEST(Utf16, EveryUnitSurvivesTheWayThereAndBack) {
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string text{u'a', static_cast<char16_t>(unit), u'b'};
    ASSERT_EQ(ToUtf16(FromUtf16(text)), text) << std::hex << static_cast<unsigned>(unit);
  }
  EXPECT_EQ(FromUtf16(u"\U0001F377"), "\xF0\x9F\x8D\xB7");
  EXPECT_EQ(Utf16Length("a\xF0\x9F\x8D\xB7"), 3U);
}

TEST(Utf16, MalformedBytesBecomeReplacementCharacters) {
  for (const char* bytes : {"\xC3", "\x80", "\xFF", "\xE2\x82", "\xC0\x80", "\xF5\x80\x80\x80"}) {
    const std::u16string units = ToUtf16(bytes);
    ASSERT_FALSE(units.empty());
    for (const char16_t unit : units) EXPECT_EQ(unit, 0xFFFD) << bytes;
  }
}

TEST(Ansi, EveryByteSurvivesAndNothingTurnsIntoAQuote) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(ToAnsi(FromAnsi(bytes)), bytes);
  EXPECT_EQ(ToAnsi("\xCA\xBC\xE2\x80\xB2\xEF\xBC\x87\xF0\x9F\x8D\xB7"), "????");
  EXPECT_EQ(ToAnsi("\xE2\x82\xAC"), "\x80");
}

TEST(Case, FollowsPortugueseLettersOnly) {
  EXPECT_EQ(ToUpper("ação às três, João"), "AÇÃO ÀS TRÊS, JOÃO");
  EXPECT_EQ(ToLower("ÇÃÕÜŸŽ×"), "çãõüÿž×");
  EXPECT_TRUE(EqualIgnoreCase("Título I", "título i"));
  EXPECT_FALSE(EqualIgnoreCase("acao", "ação"));
  EXPECT_FALSE(EqualIgnoreCase("abc", "ab"));
  EXPECT_TRUE(StartsWithIgnoreCase("Água", "ág"));
  EXPECT_FALSE(StartsWithIgnoreCase("Á", "Ág"));
}

TEST(ReplaceAll, NeverScansWhatItPutIn) {
  EXPECT_EQ(ReplaceAll("a'b''", "'", "''"), "a''b''''");
  EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(Trim("   "), "");
}

}  // namespace
}  // namespace quenta::base
