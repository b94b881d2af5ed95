#include "platform/win32/desktop.h"

#include <cstring>
#include <cwchar>
#include <memory>

#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>

#include "base/error.h"
#include "controls/form.h"
#include "platform/win32/dpi.h"
#include "platform/win32/handles.h"
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

// The dialog refuses, without showing itself, a proposal that cannot be a file's name: a product's code may hold these.
std::wstring FileName(const std::string& proposal) {
  std::wstring name = Wide(proposal);
  for (wchar_t& unit : name) {
    if (unit < L' ' || std::wcschr(L"<>:\"/\\|?*", unit) != nullptr) unit = L'_';
  }
  return name;
}

// A box has to end unanswered when the window below it goes, or the host is quitting.
bool MustGo(HWND owner) noexcept {
  MSG quit;
  return (owner != nullptr && !IsWindow(owner)) || PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE);
}

// Programs that watch the clipboard hold it for a moment whenever it changes.
bool OpenClipboardPatiently(HWND owner) noexcept {
  constexpr int kTries = 10;
  constexpr DWORD kPause = 10;  // milliseconds
  for (int i = 0; i < kTries; ++i) {
    if (OpenClipboard(owner)) return true;
    Sleep(kPause);
  }
  return false;
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
    default:
      break;
  }
  if (!MustGo(owner)) {
    throw base::Error(base::error_number::kOutOfMemory, "Windows cannot show the message: " + message.text);
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

std::optional<std::string> Desktop::AskFileToSave(const ports::FileToSave& file, controls::Form* over) {
  const DpiScope dpi_scope;
  const ActivationContext::Scope context(context_);
  const std::shared_ptr<controls::Form> alive = over != nullptr ? over->shared_from_this() : nullptr;
  const std::wstring extension = Wide(file.extension);
  std::wstring types = Wide(file.type_name) + L" (*." + extension + L")";
  types.push_back(L'\0');
  types += L"*." + extension;
  types.push_back(L'\0');
  const std::wstring title = Wide(file.title);
  std::wstring path = FileName(file.name);
  constexpr std::size_t kLongestPath = 32768;
  path.resize(kLongestPath, L'\0');
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = over != nullptr ? forms_.WindowOf(*over) : GetActiveWindow();
  dialog.lpstrFilter = types.c_str();
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.lpstrTitle = title.c_str();
  dialog.lpstrDefExt = extension.c_str();
  // The host's working folder is not ours to change.
  dialog.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR | OFN_HIDEREADONLY;
  const bool chosen = GetSaveFileNameW(&dialog) != FALSE;
  if (over != nullptr) forms_.QuestionEnded(*over);
  if (!chosen && CommDlgExtendedError() != 0 && !MustGo(dialog.hwndOwner)) {
    throw base::Error(base::error_number::kOutOfMemory, "Windows cannot ask for the file: " + file.title);
  }
  if (!chosen) return std::nullopt;
  return Narrow(path.c_str());
}

bool Desktop::CopyText(const std::string& text) {
  const std::wstring wide = Wide(text);
  const std::size_t size = (wide.size() + 1) * sizeof(wchar_t);
  // The clipboard takes nothing from whom it cannot name: a window of this moment.
  const OwnedWindow owner(
      CreateWindowExW(0, WC_STATICW, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr));
  if (!OpenClipboardPatiently(owner.get())) return false;
  EmptyClipboard();
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  bool copied = false;
  if (memory != nullptr) {
    if (void* const place = GlobalLock(memory)) {
      std::memcpy(place, wide.c_str(), size);
      GlobalUnlock(memory);
      copied = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    }
    // The clipboard owns what it has taken.
    if (!copied) GlobalFree(memory);
  }
  CloseClipboard();
  return copied;
}

bool Desktop::PumpMessages() {
  constexpr DWORD kLongestWait = 10;  // milliseconds
  // A window that posts to itself never lets the queue run empty.
  constexpr int kMostMessages = 100;
  MsgWaitForMultipleObjectsEx(0, nullptr, kLongestWait, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  MSG message;
  for (int i = 0; i < kMostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
    if (message.message == WM_QUIT) {
      // It is the host's loop that must end by it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  // The request to quit comes behind everything that is posted: it is looked for among what is left.
  return !PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) || message.message != WM_QUIT;
}

}  // namespace quenta::platform
