#include "sandbox/host/dialog_template.h"

#include <cstring>
#include <stdexcept>
#include <string_view>

namespace quenta::sandbox::host {
namespace {

// The fixed part of a DIALOGEX template: version, signature, help number, styles, count and rectangle.
constexpr std::size_t kFixedBytes = 26;
constexpr std::size_t kFontHeaderBytes = 6;  // point size, weight, italic, character set

// A text, an ordinal (0xFFFF and a number) or nothing (0), as menu, class and caption are given.
std::size_t SkipNameOrOrdinal(const BYTE* bytes, std::size_t at) {
  WORD word = 0;
  std::memcpy(&word, bytes + at, 2);
  if (word == 0xFFFF) return at + 4;
  while (word != 0) {
    at += 2;
    std::memcpy(&word, bytes + at, 2);
  }
  return at + 2;
}

std::size_t AlignedToFour(std::size_t at) {
  return (at + 3) & ~std::size_t{3};
}

}  // namespace

DialogTemplate::DialogTemplate(int resource_id) {
  const HMODULE module = GetModuleHandleW(nullptr);
  const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(resource_id), RT_DIALOG);
  if (resource == nullptr) throw std::runtime_error("missing dialog resource");
  const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(module, resource)));
  const std::size_t size = SizeofResource(module, resource);

  std::size_t font = kFixedBytes;
  for (int name = 0; name < 3; ++name) font = SkipNameOrOrdinal(bytes, font);
  std::size_t controls = font + kFontHeaderBytes;
  controls = AlignedToFour(SkipNameOrOrdinal(bytes, controls));

  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
  const LOGFONTW& message_font = metrics.lfMessageFont;
  const HDC screen = GetDC(nullptr);
  const WORD points = static_cast<WORD>(MulDiv(-message_font.lfHeight, 72, GetDeviceCaps(screen, LOGPIXELSY)));
  ReleaseDC(nullptr, screen);
  const std::size_t face_bytes = (std::wstring_view(message_font.lfFaceName).size() + 1) * sizeof(wchar_t);

  const std::size_t new_controls = AlignedToFour(font + kFontHeaderBytes + face_bytes);
  words_.resize((new_controls + size - controls + 3) / 4);
  auto* copy = reinterpret_cast<BYTE*>(words_.data());
  std::memcpy(copy, bytes, font);
  std::memcpy(copy + font, &points, 2);
  const WORD weight = static_cast<WORD>(message_font.lfWeight);
  std::memcpy(copy + font + 2, &weight, 2);
  copy[font + 4] = message_font.lfItalic;
  copy[font + 5] = message_font.lfCharSet;
  std::memcpy(copy + font + kFontHeaderBytes, message_font.lfFaceName, face_bytes);
  std::memcpy(copy + new_controls, bytes + controls, size - controls);
}

}  // namespace quenta::sandbox::host
