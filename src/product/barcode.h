// Product codes as bar codes (Code 128), and their pictures in rich text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenta::product {

// Widths of the bars and the gaps between them in modules (1 to 4), beginning and ending with a bar, without the quiet
// zones. Shortest mix of the code sets B (text) and C (pairs of digits). Nothing for an empty text, and for one that
// holds anything but the ASCII characters from the blank to "~".
std::optional<std::vector<int>> Code128(std::string_view text);

// The bar code of the text as a picture for rich text: vectors, so that every printer draws its sharpest edges, with
// ten modules of quiet zone on either side. At most 62 mm wide and 11 mm high. Nothing where Code128 has nothing, or
// where the modules would be too narrow for an office printer and a hand scanner (0.17 mm).
std::optional<std::string> BarcodePicture(std::string_view text);

}  // namespace quenta::product
