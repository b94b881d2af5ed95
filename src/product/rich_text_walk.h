// Walks over the structure of rich text: groups, control words, and the "<" that placeholders begin with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace quenta::product {

inline bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The letters behind a backslash; empty for a control symbol.
inline std::string_view ControlWordAt(std::string_view rich_text, std::size_t backslash) {
  std::size_t end = backslash + 1;
  while (end < rich_text.size() && IsLetter(rich_text[end])) ++end;
  return rich_text.substr(backslash + 1, end - backslash - 1);
}

// Walks over what structures rich text: calls on_group(+1 or -1, position) and on_word(letters, position of the
// backslash), and on_mark(position) for each "<". A callback that answers false ends the walk.
template <typename OnGroup, typename OnWord, typename OnMark>
void Walk(std::string_view rich_text, OnGroup&& on_group, OnWord&& on_word, OnMark&& on_mark) {
  for (std::size_t at = rich_text.find_first_of("\\{}<"); at != std::string_view::npos;
       at = rich_text.find_first_of("\\{}<", at)) {
    bool go_on = true;
    std::size_t length = 1;
    switch (rich_text[at]) {
      case '\\': {
        const std::string_view word = ControlWordAt(rich_text, at);
        length += std::max<std::size_t>(word.size(), 1);
        go_on = on_word(word, at);
        break;
      }
      case '<':
        go_on = on_mark(at);
        break;
      default:
        go_on = on_group(rich_text[at] == '{' ? 1 : -1, at);
    }
    if (!go_on) return;
    at += length;
  }
}

}  // namespace quenta::product
