// Text and selection of edit controls, the edit part of a combo box included.
#pragma once

#include <string>

#include <windows.h>

#include "controls/control.h"

namespace quenta::platform {

std::wstring WindowText(HWND window);

controls::TextRange EditSelection(HWND edit) noexcept;
// A range that reaches beyond the text ends with it.
void SetEditSelection(HWND edit, controls::TextRange range) noexcept;

}  // namespace quenta::platform
