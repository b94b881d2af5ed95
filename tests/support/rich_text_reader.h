// Reads rich text as a program that shows it does, as far as tests need it: the visible text, and whether its groups
// are in balance.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/ansi.h"
#include "base/text.h"

namespace quenta::tests {

struct RichTextContents {
  std::string text;      // cells end with "|", rows and paragraphs with a line feed
  bool balanced = true;  // every group closes, and the last brace is the document's own
};

// Destinations are read as text too, but for pictures, of which a mark stands for each, and tables.
inline RichTextContents ReadRichText(std::string_view rich_text) {
  RichTextContents contents;
  std::u16string units;
  int depth = 0;
  std::vector<int> fallbacks{1};  // how many characters stand behind a \u, by group
  int passing_over = 0;
  const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
  const auto add = [&](std::string_view bytes) {
    if (passing_over > 0) {
      --passing_over;
    } else {
      units += base::ToUtf16(base::FromAnsi(bytes));
    }
  };
  std::size_t at = 0;
  while (at < rich_text.size()) {
    const char c = rich_text[at++];
    if (c == '{') {
      passing_over = 0;
      fallbacks.push_back(fallbacks.back());
      if (depth++ == 0 && at > 1) contents.balanced = false;
    } else if (c == '}') {
      passing_over = 0;
      if (fallbacks.size() > 1) fallbacks.pop_back();
      if (--depth < 0) contents.balanced = false;
    } else if (c == '\r' || c == '\n') {
      continue;
    } else if (c != '\\') {
      add(rich_text.substr(at - 1, 1));
    } else if (at < rich_text.size() && !is_letter(rich_text[at])) {
      const char symbol = rich_text[at++];
      if (symbol == '\'') {
        const char byte = static_cast<char>(std::stoi(std::string(rich_text.substr(at, 2)), nullptr, 16));
        add(std::string_view(&byte, 1));
        at += 2;
      } else if (symbol == '{' || symbol == '}' || symbol == '\\') {
        add({&symbol, 1});
      }
    } else {
      std::string word;
      std::string number;
      while (at < rich_text.size() && is_letter(rich_text[at])) word += rich_text[at++];
      if (at < rich_text.size() && (rich_text[at] == '-' || is_digit(rich_text[at]))) number += rich_text[at++];
      while (at < rich_text.size() && is_digit(rich_text[at])) number += rich_text[at++];
      if (at < rich_text.size() && rich_text[at] == ' ') ++at;
      if (word == "pict" || word == "fonttbl" || word == "colortbl") {
        if (word == "pict") units += u'▮';
        for (int groups = 1; at < rich_text.size(); ++at) {
          groups += rich_text[at] == '{' ? 1 : rich_text[at] == '}' ? -1 : 0;
          if (groups == 0) break;
        }
      } else if (word == "u") {
        units += static_cast<char16_t>(std::stoi(number));
        passing_over = fallbacks.back();
      } else if (word == "uc") {
        fallbacks.back() = std::stoi(number);
      } else if (word == "cell") {
        units += u'|';
      } else if (word == "tab") {
        units += u'\t';
      } else if (word == "row" || word == "par" || word == "line" || word == "sect") {
        units += u'\n';
      }
    }
  }
  contents.balanced = contents.balanced && depth == 0;
  contents.text = base::FromUtf16(units);
  return contents;
}

}  // namespace quenta::tests
