#include "platform/win32/edit_text.h"

namespace quenta::platform {

std::wstring WindowText(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
  // The buffer's closing null character is the string's own.
  const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

controls::TextRange EditSelection(HWND edit) noexcept {
  DWORD start = 0;
  DWORD end = 0;
  SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  return {start, end - start};
}

void SetEditSelection(HWND edit, controls::TextRange range) noexcept {
  SendMessageW(edit, EM_SETSEL, range.start, static_cast<LPARAM>(range.start + range.length));
}

}  // namespace quenta::platform
