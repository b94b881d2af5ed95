// Names on labels: how much room a template gives them, and what of a name fits into it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenta::product {

// What a template lets a text take.
struct LabelRoom {
  int width = 0;  // of a line, in twips
  int lines = 1;
  int half_points = 24;  // size of the font
  bool bold = false;
};

// The room at each occurrence of the placeholder from this position of the template on, in their order. Nothing for
// those outside of table rows of exact height (\trrh below zero): their place grows with the text.
std::vector<std::optional<LabelRoom>> RoomsOf(std::string_view label_template, std::size_t from,
                                              std::string_view placeholder);

// The text, or as much of it as fits with an ellipsis behind it. It is measured in Arial, and breaks at blanks only: a
// program that breaks elsewhere too needs no more lines.
std::string FitToRoom(std::string_view text, const LabelRoom& room);

}  // namespace quenta::product
