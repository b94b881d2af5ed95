#include "platform/win32/desktop.h"

#include <memory>

#include <windows.h>

#include <shellapi.h>

#include "controls/form.h"
#include "platform/win32/dpi.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

UINT IconFlag(ports::Icon icon) noexcept {
  switch (icon) {
    case ports::Icon::kNone:
      return 0;
    case ports::Icon::kInformation:
      return MB_ICONINFORMATION;
    case ports::Icon::kQuestion:
      return MB_ICONQUESTION;
    case ports::Icon::kCritical:
      return MB_ICONERROR;
  }
  return 0;
}

UINT ButtonsFlag(ports::Buttons buttons) noexcept {
  switch (buttons) {
    case ports::Buttons::kOk:
      return MB_OK;
    case ports::Buttons::kYesNo:
      return MB_YESNO;
    case ports::Buttons::kYesNoCancel:
      return MB_YESNOCANCEL;
  }
  return MB_OK;
}

}  // namespace

ports::Answer Desktop::Ask(const ports::Message& message, controls::Form* over) {
  const DpiScope dpi_scope;
  const ActivationContext::Scope context(context_);
  // The form may lose its last other owner while the question is open.
  const std::shared_ptr<controls::Form> alive = over != nullptr ? over->shared_from_this() : nullptr;
  HWND owner = over != nullptr ? forms_.WindowOf(*over) : nullptr;
  if (owner == nullptr) owner = GetActiveWindow();
  const UINT flags =
      IconFlag(message.icon) | ButtonsFlag(message.buttons) | (message.system_modal ? MB_SYSTEMMODAL : MB_APPLMODAL);
  const int answer = MessageBoxW(owner, Wide(message.text).c_str(), Wide(message.title).c_str(), flags);
  if (over != nullptr) forms_.QuestionEnded(*over);
  switch (answer) {
    case IDYES:
      return ports::Answer::kYes;
    case IDNO:
      return ports::Answer::kNo;
    case IDCANCEL:
      return message.buttons == ports::Buttons::kYesNoCancel ? ports::Answer::kCancel : ports::Answer::kOk;
    case IDOK:
      return ports::Answer::kOk;
    default:  // the box could not be shown at all
      break;
  }
  if (message.buttons == ports::Buttons::kOk) return ports::Answer::kOk;
  return message.buttons == ports::Buttons::kYesNo ? ports::Answer::kNo : ports::Answer::kCancel;
}

bool Desktop::OpenDocument(const std::string& path, const std::string& working_folder, controls::Form* over) {
  const HWND owner = over != nullptr ? forms_.WindowOf(*over) : nullptr;
  const std::wstring folder = Wide(working_folder);
  const HINSTANCE result = ShellExecuteW(owner, L"open", Wide(path).c_str(), nullptr,
                                         folder.empty() ? nullptr : folder.c_str(), SW_SHOWNORMAL);
  constexpr INT_PTR kLargestError = 32;
  return reinterpret_cast<INT_PTR>(result) > kLargestError;
}

bool Desktop::Breathe() {
  constexpr DWORD kLongestWait = 10;  // milliseconds
  MsgWaitForMultipleObjectsEx(0, nullptr, kLongestWait, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // It is the host's loop that must end by it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return true;
}

}  // namespace quenta::platform
