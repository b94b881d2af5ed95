// Messages that a form's window posts to itself, to act when the message at hand has ended.
#pragma once

#include <windows.h>

namespace quenta::platform {

inline constexpr UINT kDestroyMessage = WM_APP + 1;   // the window goes, unless an event is still running
inline constexpr UINT kShortcutMessage = WM_APP + 2;  // wparam: position of the shortcut
inline constexpr UINT kTabMessage = WM_APP + 3;       // wparam: position of the tab to select
inline constexpr UINT kEscapeMessage = WM_APP + 4;
inline constexpr UINT kDialogMessage = WM_APP + 5;  // the form that keeps this one disabled comes to the front

}  // namespace quenta::platform
