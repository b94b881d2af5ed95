#include "platform/win32/wide_text.h"

#include "base/text.h"

namespace quenta::platform {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "wchar_t holds a UTF-16 unit on Windows");

std::wstring Wide(std::string_view text) {
  const std::u16string wide = base::ToUtf16(text);
  return {wide.begin(), wide.end()};
}

std::string Narrow(std::wstring_view text) {
  return base::FromUtf16(std::u16string(text.begin(), text.end()));
}

std::wstring WithWindowsLineEnds(std::wstring_view text) {
  std::wstring result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'\n' && (i == 0 || text[i - 1] != L'\r')) result += L'\r';
    result += text[i];
  }
  return result;
}

}  // namespace quenta::platform
