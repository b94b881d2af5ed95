#include "platform/win32/glyph_images.h"

#include <algorithm>
#include <utility>

#include "platform/win32/glyphs.h"

namespace quenta::platform {
namespace {

std::uint32_t SystemColor(int index) noexcept {
  const COLORREF color = GetSysColor(index);
  return static_cast<std::uint32_t>(GetRValue(color)) << 16 | static_cast<std::uint32_t>(GetGValue(color)) << 8 |
         GetBValue(color);
}

// Halfway between text and surface: calm lines, yet of the user's own scheme.
std::uint32_t Softened(std::uint32_t color, std::uint32_t surface) noexcept {
  std::uint32_t mixed = 0;
  for (int shift = 16; shift >= 0; shift -= 8) {
    mixed = mixed << 8 | ((color >> shift & 0xFF) * 3 + (surface >> shift & 0xFF)) / 4;
  }
  return mixed;
}

bool HighContrast() noexcept {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof(state);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(state), &state, 0) &&
         (state.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

GlyphColors Colors(bool disabled) noexcept {
  if (disabled) return {SystemColor(COLOR_GRAYTEXT), SystemColor(COLOR_GRAYTEXT)};
  const std::uint32_t text = SystemColor(COLOR_BTNTEXT);
  if (HighContrast()) return {text, text};
  return {Softened(text, SystemColor(COLOR_BTNFACE)), SystemColor(COLOR_HIGHLIGHT)};
}

OwnedBitmap GlyphBitmap(const std::string& key, SIZE cell, int size, const GlyphColors& colors) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = cell.cx;
  info.bmiHeader.biHeight = -cell.cy;  // rows from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  OwnedBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (bitmap) {
    const std::vector<std::uint32_t> pixels = RenderGlyph(key, size, colors);
    const int left = (cell.cx - size) / 2;
    const int top = (cell.cy - size) / 2;
    for (int row = 0; row < size; ++row) {
      std::copy_n(pixels.data() + row * size, size, static_cast<std::uint32_t*>(bits) + (top + row) * cell.cx + left);
    }
  }
  return bitmap;
}

}  // namespace

ImageList::ImageList(const CommonControls& controls, const std::vector<std::string>& keys, SIZE cell, int size,
                     bool disabled)
    : controls_(&controls),
      list_(controls.ImageList_Create(cell.cx, cell.cy, ILC_COLOR32, static_cast<int>(keys.size()), 0)) {
  if (list_ == nullptr) return;
  ++LiveHandles();
  const GlyphColors colors = Colors(disabled);
  for (const std::string& key : keys) {
    const OwnedBitmap bitmap = GlyphBitmap(key, cell, size, colors);
    controls.ImageList_Add(list_, bitmap.get(), nullptr);
  }
}

ImageList::~ImageList() {
  if (list_ == nullptr) return;
  --LiveHandles();
  controls_->ImageList_Destroy(list_);
}

ImageList::ImageList(ImageList&& other) noexcept
    : controls_(other.controls_), list_(std::exchange(other.list_, nullptr)) {}

ImageList& ImageList::operator=(ImageList&& other) noexcept {
  std::swap(controls_, other.controls_);
  std::swap(list_, other.list_);
  return *this;
}

OwnedIcon GlyphIcon(const std::string& key, int size) {
  const OwnedBitmap color = GlyphBitmap(key, {size, size}, size, Colors(false));
  const OwnedBitmap mask(CreateBitmap(size, size, 1, 1, nullptr));
  ICONINFO info{};
  info.fIcon = TRUE;
  info.hbmColor = color.get();
  info.hbmMask = mask.get();
  return OwnedIcon(CreateIconIndirect(&info));
}

}  // namespace quenta::platform
