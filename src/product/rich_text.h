// Rich text as documents need it: values that cannot act as mark-up, and templates whose placeholders are filled in one
// walk.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quenta::product {

// The text (UTF-8) as rich text shows it, in ASCII: backslash and braces escaped, letters outside ASCII as \u with the
// fallback "?" (those beyond the basic plane as two), line ends as \line, tabs as \tab. Other control characters, which
// have no shape, are left out. A text with such letters is a group, so that it is right wherever it stands, and leaves
// what follows as it was.
std::string StringRTF(std::string_view text);

// What a template has at one of its "<": the bytes that the placeholder takes, 0 when it is none, and the rich text
// that stands in its place.
struct Placeholder {
  std::size_t length = 0;
  std::string_view rich_text;
};

// Whether rich text that is put behind this would become part of a control word, or be eaten by a backslash.
bool EndsInControlWord(std::string_view rich_text);

// Appends a piece of a template with its placeholders filled. `find` is given the template from each "<" on and answers
// what stands there; what it fills in ends no control word of its own half way, and is not looked at again.
template <typename Find>
void AppendFilled(std::string& out, std::string_view piece, Find&& find) {
  std::size_t copied = 0;
  for (std::size_t at = piece.find('<'); at != std::string_view::npos; at = piece.find('<', at)) {
    const Placeholder placeholder = find(piece.substr(at));
    if (placeholder.length == 0) {
      ++at;
      continue;
    }
    out.append(piece, copied, at - copied);
    // Behind a value nothing but what the template has put there can be a control word. Looking no further back keeps
    // the time in proportion to the output, however many values touch.
    if (EndsInControlWord(copied == 0 ? std::string_view(out) : piece.substr(copied, at - copied))) out += ' ';
    out += placeholder.rich_text;
    at += placeholder.length;
    copied = at;
  }
  out.append(piece, copied);
}

// A piece of a template that can be repeated.
struct Stretch {
  std::size_t begin = 0;
  std::size_t end = 0;    // one past its last byte
  std::string separator;  // between two copies: closes the groups that the piece leaves open, or opens what it closes
};

// The table row that holds the mark: from behind the row before it, or from where its own definition begins, to its
// row mark. Nothing when the mark does not stand in a whole row.
std::optional<Stretch> FindTableRow(std::string_view rich_text, std::string_view mark);

// What a document shows, without the tables of fonts and colours before it and the brace that ends it. A text that is
// no rich text is shown whole.
Stretch FindBody(std::string_view rich_text);

}  // namespace quenta::product
