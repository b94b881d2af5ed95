// Text at the edge to Windows: UTF-8 inside, UTF-16 outside.
#pragma once

#include <string>
#include <string_view>

namespace quenta::platform {

std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// Line ends as Windows' edit controls know them: every line feed without its carriage return gets one.
std::wstring WithWindowsLineEnds(std::wstring_view text);

}  // namespace quenta::platform
