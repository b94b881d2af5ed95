// The drawings on toolbar buttons and in lists: outlines in a grid of 24 units, painted at any size.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace quenta::platform {

// 0xRRGGBB.
struct GlyphColors {
  std::uint32_t line = 0x000000;
  std::uint32_t accent = 0x0066CC;
};

// Rows from top to bottom, premultiplied 0xAARRGGBB. The glyph of a command is known by the command's key ("gravar",
// "apagar" …); "list1" to "list3" are the images of lists; an unknown key gives a plain mark.
std::vector<std::uint32_t> RenderGlyph(std::string_view key, int size, const GlyphColors& colors);

}  // namespace quenta::platform
