#include "product/rich_text.h"

#include <chrono>
#include <random>

#include "base/text.h"
#include "gtest/gtest.h"
#include "support/rich_text_reader.h"

namespace quenta::tests {
namespace {

using product::AppendFilled;
using product::FindBody;
using product::FindTableRow;
using product::Placeholder;
using product::StringRTF;

TEST(StringRTF, EscapesWhatWouldBeMarkUpOrIsNoAscii) {
  const struct {
    const char* text;
    const char* rich_text;
  } cases[] = {
      {"Rolo anti-gota {kit} \\ recarga", R"(Rolo anti-gota \{kit\} \\ recarga)"},
      {"Café à beira-mar", R"({\uc1 Caf\u233? \u224? beira-mar})"},
      {"\xE2\x82\xAC\xC2\xA0"
       "5",
       R"({\uc1 \u8364?\u160?5})"},
      {"\xEF\xBF\xBD\xEA\xA4\x80", R"({\uc1 \u-3?\u-22272?})"},  // above 32767
      {"\xF0\x9F\x8D\xB7", R"({\uc1 \u-10180?\u-8329?})"},       // beyond the basic plane
      {"um\r\ndois\ntrês\rquatro", R"({\uc1 um\line dois\line tr\u234?s\line quatro})"},
      {"um\ndois", R"(um\line dois)"},
      {"a\tb", R"(a\tab b)"},
      {"a\x01\x1B\x7F"
       "b",
       "ab"},
      {"<preco_total>", "<preco_total>"},
      {"", ""},
  };
  for (const auto& [text, rich_text] : cases) EXPECT_EQ(StringRTF(text), rich_text) << text;
}

// However many characters of fallback the template has a reader pass over, before and behind the text.
TEST(StringRTF, WhateverTheTextAReaderShowsItUnchanged) {
  constexpr char16_t kLetters[] = {'{', '}', '\\', '<',  '>',  '?',    '-',    '0',    '9',
                                   'u', 'r', ' ',  '\'', 0xE9, 0x20AC, 0xD83C, 0xDF77, 0xFFFD};
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::u16string units;
    for (unsigned length = random() % 12; length > 0; --length) units += kLetters[random() % std::size(kLetters)];
    const std::string text = base::FromUtf16(units);
    const std::string rich_text = StringRTF(text);
    for (const char c : rich_text) EXPECT_TRUE(c >= ' ' && c <= '~') << rich_text;
    const unsigned fallbacks = random() % 4;
    const std::string letter = "\\u233 " + std::string(fallbacks, '?');
    EXPECT_EQ(ReadRichText("{\\rtf1\\uc" + std::to_string(fallbacks) + letter + rich_text + letter + "}").text,
              "é" + text + "é")
        << rich_text;
  }
}

// "<a>" stands for the value.
std::string Filled(std::string_view piece, std::string_view value) {
  std::string out;
  AppendFilled(out, piece, [&](std::string_view text) {
    return text.starts_with("<a>") ? Placeholder{3, value} : Placeholder{};
  });
  return out;
}

TEST(Template, AValueNeverRunsIntoTheMarkUpBeforeIt) {
  const struct {
    const char* piece;
    const char* filled;
  } cases[] = {
      {R"({\b <a>})", R"({\b par})"},
      {R"({\b<a>})", R"({\b par})"},
      {R"({\fs20<a>})", R"({\fs20 par})"},
      {R"({\li-20<a>})", R"({\li-20 par})"},
      {R"(a\\b<a>)", R"(a\\bpar)"},
      {R"(\\\b<a>)", R"(\\\b par)"},
      {R"(\<a>)", R"(\ par)"},
      {R"(\\<a>)", R"(\\par)"},
      {R"(\'e9<a>)", R"(\'e9par)"},
      {R"(\-<a>)", R"(\-par)"},
      {R"(b<a>20<a>)", R"(bpar20par)"},
      {"<<a><a", "<par<a"},
      {"\xE9<a>\xFF", "\xE9par\xFF"},
  };
  for (const auto& [piece, filled] : cases) EXPECT_EQ(Filled(piece, "par"), filled) << piece;
  EXPECT_EQ(Filled("<a><a>", "<a>"), "<a><a>") << "what was filled in is not looked at again";
}

// Placeholders that touch: their values are one run of letters, which must not be looked through again for each.
TEST(Template, IsFilledInTimeInProportionToTheOutput) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Filled(base::ReplaceAll(std::string(100'000, 'x'), "x", "<a>"), "letters").size(), 700'000U);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// The row that holds "<data>", or "(none)".
std::string RowOf(std::string_view text) {
  const auto row = FindTableRow(text, "<data>");
  if (!row) return "(none)";
  return std::string(text.substr(row->begin, row->end - row->begin)) + "|" + row->separator;
}

TEST(Template, FindsTheRowThatHoldsTheMark) {
  const struct {
    const char* what;
    const char* text;
    const char* row;
  } cases[] = {
      {"the second row of a table", R"({\trowd Data\cell\row\trowd <data>\cell\row end})",
       R"(\trowd <data>\cell\row|)"},
      {"the first row", R"({\pard x\par\trowd <data>\cell\row end})", R"(\trowd <data>\cell\row|)"},
      {"rows without definitions of their own", R"({\trowd a\cell\row <data>\cell\row})", R"( <data>\cell\row|)"},
      {"the definition repeated in a group behind the cells, first row",
       R"({\trowd\pard{<data>\cell}{\trowd\row }\pard})", R"(\trowd\pard{<data>\cell}{\trowd\row|})"},
      {"the definition repeated in a group behind the cells, second row",
       R"({\trowd{a\cell}{\trowd\row }\pard{<data>\cell}{\trowd\row }})", R"( }\pard{<data>\cell}{\trowd\row|)"},
      {"a group closed inside the row", R"({{\trowd <data>\cell}\row})", R"(\trowd <data>\cell}\row|{)"},
      {"text between two tables", R"({\trowd a\cell\row\pard text\par\trowd <data>\cell\row})",
       R"(\trowd <data>\cell\row|)"},
      {"the mark in a text before the table too",
       R"({<data>\par\trowd a\cell\row\pard <data>\par\trowd <data>\cell\row})", R"(\trowd <data>\cell\row|)"},
      {"a nested table before the mark", R"({\trowd{\trowd a\nestcell\nestrow}<data>\cell\row})",
       R"(\trowd{\trowd a\nestcell\nestrow}<data>\cell\row|)"},
      {"words that only look like row marks", R"({\trowd a\\row\rowx\lastrow <data>\cell\row})",
       R"(\trowd a\\row\rowx\lastrow <data>\cell\row|)"},
      {"no mark", R"({\trowd a\cell\row})", "(none)"},
      {"another placeholder that begins like it", R"({\trowd <data_inicio>\cell\row})", "(none)"},
      {"the mark in no table", R"({<data>\par})", "(none)"},
      {"half a row", R"({\trowd <data>\cell})", "(none)"},
      {"the mark behind the last row", R"({\trowd a\cell\row <data>})", "(none)"},
      {"an empty template", "", "(none)"},
  };
  for (const auto& [what, text, row] : cases) EXPECT_EQ(RowOf(text), row) << what;
}

TEST(Template, FindsWhatADocumentShows) {
  const struct {
    const char* text;
    const char* body;
  } cases[] = {
      {R"({\rtf1{\fonttbl{\f0 Arial;}}{\stylesheet{\pard Normal;}}\margl0\pard a\par b} )", R"(\pard a\par b)"},
      {R"({\rtf1\trowd a\cell\row\pard})", R"(\trowd a\cell\row\pard)"},
      {"no rich text", "no rich text"},
      {R"({\rtf1 \pard never ends)", R"({\rtf1 \pard never ends)"},
      {"", ""},
  };
  for (const auto& [text, expected] : cases) {
    const product::Stretch body = FindBody(text);
    EXPECT_EQ(std::string_view(text).substr(body.begin, body.end - body.begin), expected) << text;
  }
}

}  // namespace
}  // namespace quenta::tests
