#include "journeys/windows_screen.h"

#include <commctrl.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "base/convert.h"
#include "base/date.h"
#include "base/text.h"
#include "journeys/journey.h"
#include "platform/win32/edit_text.h"
#include "platform/win32/wide_text.h"

namespace quenta::journeys {
namespace {

using platform::Narrow;
using platform::Wide;

constexpr const char* kForm = "QuentaForm";
constexpr const char* kDialog = "#32770";

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

LRESULT Send(HWND window, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
  return SendMessageW(window, message, wparam, lparam);
}
template <typename T>
LRESULT Ask(HWND window, UINT message, WPARAM wparam, T& about) {
  return Send(window, message, wparam, reinterpret_cast<LPARAM>(&about));
}

std::vector<HWND> ControlsOf(HWND form) {
  std::vector<HWND> controls;
  EnumChildWindows(
      form,
      [](HWND child, LPARAM found) noexcept CALLBACK -> BOOL {
        if (GetPropW(child, L"ControlName") != nullptr) reinterpret_cast<std::vector<HWND>*>(found)->push_back(child);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&controls));
  return controls;
}

HWND Find(HWND form, const std::string& name) {
  for (const HWND control : ControlsOf(form)) {
    if (NameOf(control) == name) return control;
  }
  return nullptr;
}

bool HasStyle(HWND window, LONG style) {
  return (GetWindowLongW(window, GWL_STYLE) & style) == style;
}

// The part of a box in which the user types; null where he can only choose.
HWND EditOf(HWND box) {
  COMBOBOXINFO info{};
  info.cbSize = sizeof(info);
  return GetComboBoxInfo(box, &info) && info.hwndItem != box ? info.hwndItem : nullptr;
}

POINT MiddleOf(const RECT& place) {
  return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}
POINT MiddleOf(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return MiddleOf(client);
}

std::string YesNo(bool value) {
  return value ? "yes" : "no";
}

// The buttons of a toolbar, by key: their commands.
std::vector<std::pair<std::string, WORD>> ButtonsOf(HWND bar) {
  std::vector<std::pair<std::string, WORD>> buttons;
  for (int i = 0;; ++i) {
    const std::wstring property = L"Button" + std::to_wstring(i);
    const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(bar, property.c_str()));
    if (value == 0) return buttons;
    buttons.emplace_back(NameOf(bar, property), HIWORD(value));
  }
}

std::vector<std::string> TabsOf(HWND tabs) {
  std::vector<std::string> keys;
  for (int i = 0; i < Send(tabs, TCM_GETITEMCOUNT); ++i) keys.push_back(NameOf(tabs, L"Tab" + std::to_wstring(i)));
  return keys;
}

std::string Cell(HWND list, int row, int column) {
  wchar_t text[1024] = L"";
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = text;
  item.cchTextMax = static_cast<int>(std::size(text));
  Ask(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), item);
  return Narrow(text);
}

// Within the text of a row, which is brought into view.
POINT LabelOf(HWND list, LRESULT row) {
  Send(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
  RECT place{};
  place.left = LVIR_LABEL;
  Ask(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), place);
  return {place.left + 5, MiddleOf(place).y};
}

ShownRow RowOf(HWND list, int row) {
  const auto header = reinterpret_cast<HWND>(Send(list, LVM_GETHEADER));
  ShownRow shown;
  for (int column = 0; column < Send(header, HDM_GETITEMCOUNT); ++column) {
    shown.text += (column > 0 ? "|" : "") + Cell(list, row, column);
  }
  LVITEMW item{};
  item.mask = LVIF_IMAGE | LVIF_STATE;
  item.iItem = row;
  item.stateMask = LVIS_STATEIMAGEMASK;
  Ask(list, LVM_GETITEMW, 0, item);
  shown.icon = item.iImage < 0 ? 0 : item.iImage + 1;
  shown.checked = (item.state & LVIS_STATEIMAGEMASK) == static_cast<UINT>(INDEXTOSTATEIMAGEMASK(2));
  return shown;
}

void AddContents(HWND control, const std::string& kind, Fact& fact) {
  const auto add = [&](const std::string& name, const std::string& value) { fact.values.emplace_back(name, value); };
  if (kind == "ComboBox") {
    add("text", Shown(TextOf(control)));
    if (const HWND edit = EditOf(control)) add("locked", YesNo(HasStyle(edit, ES_READONLY)));
  } else if (kind == "Edit") {
    add("text", Shown(TextOf(control)));
    add("locked", YesNo(HasStyle(control, ES_READONLY)));
  } else if (kind == "ToolbarWindow32") {
    for (const auto& [key, command] : ButtonsOf(control)) {
      const bool on = Send(control, TB_ISBUTTONENABLED, command) != 0;
      add(key, Send(control, TB_ISBUTTONHIDDEN, command) != 0 ? "hidden" : on ? "on" : "off");
    }
  } else if (kind == "SysTabControl32") {
    const std::vector<std::string> keys = TabsOf(control);
    const LRESULT chosen = Send(control, TCM_GETCURSEL);
    std::string all;
    for (const std::string& key : keys) all += (all.empty() ? "" : " ") + key;
    add("chosen", Shown(chosen < 0 ? "" : keys.at(static_cast<std::size_t>(chosen))));
    add("tabs", Shown(all));
  } else if (kind == "SysListView32") {
    add("rows", base::DecimalText(Send(control, LVM_GETITEMCOUNT)));
  } else if (kind == "SysDateTimePick32") {
    SYSTEMTIME day{};
    Ask(control, DTM_GETSYSTEMTIME, 0, day);
    char text[20];
    std::snprintf(text, sizeof text, "%02d-%02d-%04d", day.wDay, day.wMonth, day.wYear);
    add("text", Shown(text));
  } else if (kind == "msctls_progress32") {
    add("text", Shown(base::DecimalText(Send(control, PBM_GETPOS)) + " of " +
                      base::DecimalText(Send(control, PBM_GETRANGE, FALSE))));
  } else if (kind == "Button" && (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) > BS_DEFPUSHBUTTON) {
    add("caption", Shown(TextOf(control)));
    add("text", Send(control, BM_GETCHECK) == BST_CHECKED ? "1" : "0");
  } else {
    add("text", Shown(TextOf(control)));
  }
}

int VirtualKey(const std::string& name) {
  static const std::map<std::string, int> kNames = {
      {"Tab", VK_TAB},      {"Enter", VK_RETURN}, {"Esc", VK_ESCAPE},   {"Del", VK_DELETE},    {"Backspace", VK_BACK},
      {"F5", VK_F5},        {"Space", VK_SPACE},  {"PageUp", VK_PRIOR}, {"PageDown", VK_NEXT}, {"End", VK_END},
      {"Home", VK_HOME},    {"Left", VK_LEFT},    {"Up", VK_UP},        {"Right", VK_RIGHT},   {"Down", VK_DOWN},
      {"Ctrl", VK_CONTROL}, {"Shift", VK_SHIFT}};
  const auto found = kNames.find(name);
  if (found != kNames.end()) return found->second;
  if (name.size() != 1) Fail("no key is called " + name);
  return std::toupper(static_cast<unsigned char>(name[0]));
}

INPUT KeyInput(int key, wchar_t character, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = static_cast<WORD>(key);
  input.ki.wScan = character;
  input.ki.dwFlags = flags;
  return input;
}

// All down, the last one first up again.
void Press(const std::vector<int>& keys) {
  std::vector<INPUT> inputs;
  for (const int key : keys) inputs.push_back(KeyInput(key, 0, 0));
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) inputs.push_back(KeyInput(*key, 0, KEYEVENTF_KEYUP));
  SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

std::string NameOfEntry(const MENUITEMINFOW& entry) {
  wchar_t name[256] = L"";
  GlobalGetAtomNameW(static_cast<ATOM>(entry.dwItemData), name, 256);
  return Narrow(name);
}

MENUITEMINFOW EntryAt(HMENU menu, int position) {
  MENUITEMINFOW entry{};
  entry.cbSize = sizeof(entry);
  entry.fMask = MIIM_DATA | MIIM_FTYPE | MIIM_STATE | MIIM_ID;
  GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &entry);
  return entry;
}

}  // namespace

std::string NameOf(HWND window, const std::wstring& property) {
  const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(window, property.c_str()));
  wchar_t name[256] = L"";
  if (LOWORD(value) != 0) GlobalGetAtomNameW(LOWORD(value), name, 256);
  return Narrow(name);
}

std::string TextOf(HWND window) {
  return Narrow(platform::WindowText(window));
}

std::string ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, 64);
  return Narrow(name);
}

// --- What happens on the screen ---

WindowsScreen* WindowsScreen::current_ = nullptr;

WindowsScreen::WindowsScreen(std::function<void(const std::string&)> tell, std::function<void(HWND)> answer)
    : tell_(std::move(tell)),
      answer_(std::move(answer)),
      sent_hook_(SetWindowsHookExW(WH_CALLWNDPROC, &OnSent, nullptr, GetCurrentThreadId())),
      creating_hook_(SetWindowsHookExW(WH_CBT, &OnCreating, nullptr, GetCurrentThreadId())) {
  current_ = this;
}

WindowsScreen::~WindowsScreen() {
  for (const auto& [timer, act] : later_) KillTimer(nullptr, timer);
  current_ = nullptr;
}

LRESULT CALLBACK WindowsScreen::OnSent(int code, WPARAM wparam, LPARAM lparam) noexcept {
  if (code == HC_ACTION && current_ != nullptr) current_->Sent(*reinterpret_cast<const CWPSTRUCT*>(lparam));
  return CallNextHookEx(nullptr, code, wparam, lparam);
}

// As when Windows has no room for more windows.
LRESULT CALLBACK WindowsScreen::OnCreating(int code, WPARAM wparam, LPARAM lparam) noexcept {
  const bool box = code == HCBT_CREATEWND && current_ != nullptr && current_->refuses_boxes &&
                   ClassOf(reinterpret_cast<HWND>(wparam)) == kDialog;
  if (!box) return CallNextHookEx(nullptr, code, wparam, lparam);
  current_->refuses_boxes = false;
  return 1;
}

void CALLBACK WindowsScreen::OnTimer(HWND, UINT, UINT_PTR timer, DWORD) noexcept {
  KillTimer(nullptr, timer);
  if (current_ == nullptr) return;
  const auto found = current_->later_.extract(timer);
  if (!found.empty()) found.mapped()();
}

void WindowsScreen::Later(std::function<void()> act) {
  later_[SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &OnTimer)] = std::move(act);
}

void WindowsScreen::Sent(const CWPSTRUCT& message) {
  if (message.message == WM_INITMENUPOPUP) {
    Later([this, menu = reinterpret_cast<HMENU>(message.wParam)] { ChooseFrom(menu); });
  } else if (ClassOf(message.hwnd) == kForm) {
    SentToForm(message);
  } else if (message.message == WM_SHOWWINDOW && message.wParam != 0 && ClassOf(message.hwnd) == kDialog) {
    Later([this, box = message.hwnd] { answer_(box); });
  }
}

void WindowsScreen::SentToForm(const CWPSTRUCT& message) {
  const HWND form = message.hwnd;
  const auto known = std::find_if(forms_.begin(), forms_.end(), [&](const auto& one) { return one.second == form; });
  const bool shows = message.message == WM_SHOWWINDOW && message.wParam != 0;
  const bool goes = message.message == WM_DESTROY || (message.message == WM_SHOWWINDOW && message.wParam == 0);
  if (shows && known == forms_.end()) {
    std::string name = NameOf(form);
    const std::string first = name;
    const auto taken = [&](const auto& one) { return one.first == name; };
    for (int number = 2; std::any_of(forms_.begin(), forms_.end(), taken); ++number) {
      name = first + "#" + std::to_string(number);
    }
    forms_.emplace_back(name, form);
    opening_ = form;
    tell_("shown " + name);
  } else if (known == forms_.end()) {
    return;
  } else if (goes) {
    tell_("closed " + known->first);
    forms_.erase(known);
  } else if (message.message == WM_NEXTDLGCTL && message.lParam != 0) {
    const bool first = std::exchange(opening_, nullptr) == form;
    const std::string prefix = known->first == "frmMain" ? "" : known->first + ".";
    if (!first && !acts_) tell_("focus " + prefix + NameOf(reinterpret_cast<HWND>(message.wParam)));
  } else if (message.message == WM_WINDOWPOSCHANGING) {
    const auto& place = *reinterpret_cast<const WINDOWPOS*>(message.lParam);
    if ((place.flags & SWP_NOZORDER) != 0) return;
    if (place.hwndInsertAfter == HWND_TOPMOST) tell_("topmost " + known->first);
    if (place.hwndInsertAfter == HWND_NOTOPMOST) tell_("not topmost " + known->first);
  }
}

// In a menu that has popped up: what is in it, and the keys that lead to the entry.
void WindowsScreen::ChooseFrom(HMENU menu) {
  const bool told = entry_.empty();
  std::string answer = std::exchange(entry_, {});
  if (told && !answers.empty()) {
    answer = answers.front();
    answers.pop_front();
  }
  std::string entries;
  int downs = 0;
  int keys = 0;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    const MENUITEMINFOW entry = EntryAt(menu, i);
    const bool separator = (entry.fType & MFT_SEPARATOR) != 0;
    const bool can_run = (entry.fState & MFS_GRAYED) == 0;
    const std::string name = NameOfEntry(entry);
    entries += " " + (separator ? "-" : can_run ? name : "(" + name + ")");
    if (!separator) ++downs;
    if (name == answer && can_run) keys = downs;
  }
  if (told) tell_("menu" + entries + " -> " + (keys > 0 ? answer : "none"));
  for (int i = 0; i < keys; ++i) Press({VK_DOWN});
  Press({keys > 0 ? VK_RETURN : VK_ESCAPE});
}

void WindowsScreen::Pump(DWORD milliseconds) {
  constexpr DWORD kQuiet = 15;
  constexpr ULONGLONG kLongest = 20000;  // timers alone could keep a busy machine from ever being quiet
  const ULONGLONG start = GetTickCount64();
  const auto left = [&](ULONGLONG until) {
    const ULONGLONG passed = GetTickCount64() - start;
    return passed < until ? static_cast<DWORD>(until - passed) : 0;
  };
  while (left(kLongest) > 0 && MsgWaitForMultipleObjectsEx(0, nullptr, std::max(kQuiet, left(milliseconds)),
                                                           QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    if (milliseconds > 0 && left(milliseconds) == 0) return;
  }
}

// --- The person's side ---

// The form that is uppermost and can be used; one that is disabled where none can.
HWND WindowsScreen::Front() const {
  HWND disabled = nullptr;
  for (HWND window = GetTopWindow(nullptr); window != nullptr; window = GetWindow(window, GW_HWNDNEXT)) {
    if (NameOfForm(window) == "nothing") continue;
    if (IsWindowEnabled(window)) return window;
    if (disabled == nullptr) disabled = window;
  }
  if (disabled == nullptr) Fail("no form is open");
  return disabled;
}

std::string WindowsScreen::NameOfForm(HWND window) const {
  for (const auto& [name, form] : forms_) {
    if (form == window) return name;
  }
  return "nothing";
}

HWND WindowsScreen::Reachable(const std::string& name) const {
  const HWND control = Find(Front(), name);
  if (control == nullptr) Fail(NameOf(Front()) + " has no " + name);
  if (!IsWindowVisible(control) || !IsWindowEnabled(control)) {
    Fail(name + " is disabled, hidden, or on a page that is not chosen");
  }
  return control;
}

HWND WindowsScreen::List(const std::string& name) const {
  const HWND list = Reachable(name);
  if (ClassOf(list) != WC_LISTVIEWA) Fail(name + " is no list");
  return list;
}

void WindowsScreen::ClickAt(HWND window, POINT at, bool twice) {
  const LPARAM place = MAKELPARAM(at.x, at.y);
  for (const UINT press : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
    PostMessageW(window, press, MK_LBUTTON, place);
    PostMessageW(window, WM_LBUTTONUP, 0, place);
    if (!twice) break;
  }
}

void WindowsScreen::FocusOn(const std::string& name) {
  const HWND control = Reachable(name);
  if (GetFocus() == control || IsChild(control, GetFocus())) return;
  HWND edit = ClassOf(control) == "Edit" ? control : EditOf(control);
  acts_ = true;
  if (edit != nullptr) {
    ClickAt(edit, MiddleOf(edit));
  } else {
    Send(Front(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
  }
  Pump();
  acts_ = false;
}

void WindowsScreen::Type(const std::string& name, const std::string& text) {
  FocusOn(name);
  Send(GetFocus(), EM_SETSEL, 0, -1);
  if (text.empty()) return Key("Del");
  std::vector<INPUT> inputs;
  for (const wchar_t unit : Wide(text)) {
    for (const DWORD up : {DWORD{0}, DWORD{KEYEVENTF_KEYUP}}) {
      inputs.push_back(unit == L'\n' ? KeyInput(VK_RETURN, 0, up) : KeyInput(0, unit, up | KEYEVENTF_UNICODE));
    }
  }
  SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

void WindowsScreen::Key(const std::string& keys) {
  std::vector<int> codes;
  std::string left = keys;
  for (std::size_t plus; (plus = left.find('+')) != std::string::npos && plus + 1 < left.size();) {
    codes.push_back(VirtualKey(left.substr(0, plus)));
    left.erase(0, plus + 1);
  }
  codes.push_back(VirtualKey(left));
  Press(codes);
}

void WindowsScreen::Choose(const std::string& name, const std::string& entry) {
  const HWND box = Reachable(name);
  if (ClassOf(box) != "ComboBox") Fail(name + " is no list to choose from");
  // By its arrow, and then in the list that opens; one that is locked does not open.
  RECT client{};
  GetClientRect(box, &client);
  ClickAt(box, {client.right - 5, (client.top + client.bottom) / 2});
  Pump();
  if (Send(box, CB_GETDROPPEDSTATE) == 0) return;
  COMBOBOXINFO info{};
  info.cbSize = sizeof(info);
  GetComboBoxInfo(box, &info);
  const std::wstring wanted = Wide(entry);
  const LRESULT index = Ask(info.hwndList, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), *wanted.c_str());
  if (index < 0) Fail(name + " has no entry " + entry);
  Send(info.hwndList, LB_SETTOPINDEX, static_cast<WPARAM>(index));
  RECT place{};
  Ask(info.hwndList, LB_GETITEMRECT, static_cast<WPARAM>(index), place);
  ClickAt(info.hwndList, MiddleOf(place));
}

void WindowsScreen::Click(const std::string& name, const std::string& part) {
  const HWND control = Reachable(name);
  const std::string kind = ClassOf(control);
  if (kind == WC_LISTVIEWA) {  // the check box of the row that begins so, left of its text
    const POINT label = LabelOf(control, RowThatBegins(control, part));
    return ClickAt(control, {8, label.y});
  }
  if (kind != TOOLBARCLASSNAMEA) return ClickAt(control, MiddleOf(control));
  const auto [key, entry] = FirstWord(part);
  for (const auto& [button, command] : ButtonsOf(control)) {
    if (button != key) continue;
    if (Send(control, TB_ISBUTTONHIDDEN, command) != 0) return;
    RECT place{};
    Ask(control, TB_GETRECT, command, place);
    entry_ = entry;
    constexpr LONG kArrow = 4;  // its place from the button's end
    return ClickAt(control, entry.empty() ? POINT{place.left + 10, MiddleOf(place).y}
                                          : POINT{place.right - kArrow, MiddleOf(place).y});
  }
  Fail(name + " has no button " + key);
}

// As the menu does it when it opens and the entry is chosen.
void WindowsScreen::ClickMenu(const std::string& name) {
  const HWND form = Front();
  const HMENU bar = GetMenu(form);
  for (int i = 0; i < GetMenuItemCount(bar); ++i) {
    const HMENU menu = GetSubMenu(bar, i);
    for (int k = 0; k < GetMenuItemCount(menu); ++k) {
      if (NameOfEntry(EntryAt(menu, k)) != name) continue;
      const std::size_t before = later_.size();
      Send(form, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), i);
      if (later_.size() > before) {  // nothing pops up here
        KillTimer(nullptr, later_.rbegin()->first);
        later_.erase(std::prev(later_.end()));
      }
      const MENUITEMINFOW entry = EntryAt(menu, k);
      if ((entry.fState & MFS_GRAYED) == 0) PostMessageW(form, WM_COMMAND, entry.wID, 0);
      return;
    }
  }
  Fail("no menu has an entry " + name);
}

void WindowsScreen::ClickTab(const std::string& key) {
  const HWND tabs = Reachable("TabStrip1");
  const std::vector<std::string> keys = TabsOf(tabs);
  const auto found = std::find(keys.begin(), keys.end(), key);
  if (found == keys.end()) Fail("no tab " + key);
  RECT place{};
  Ask(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(found - keys.begin()), place);
  ClickAt(tabs, MiddleOf(place));
}

int WindowsScreen::RowThatBegins(HWND list, const std::string& start) {
  for (int row = 0; row < Send(list, LVM_GETITEMCOUNT); ++row) {
    if (Cell(list, row, 0).rfind(start, 0) == 0) return row;
  }
  Fail(NameOf(list) + " has no row " + start);
}

void WindowsScreen::ClickRow(const std::string& name, const std::string& start, bool twice) {
  const HWND list = List(name);
  ClickAt(list, LabelOf(list, RowThatBegins(list, start)), twice);
}

// On the row that is chosen, or beside the rows.
void WindowsScreen::OpenMenu(const std::string& name) {
  const HWND list = List(name);
  FocusOn(name);
  const LRESULT row = Send(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  RECT place{};
  GetClientRect(list, &place);
  LPARAM at = MAKELPARAM(5, place.bottom - 5);
  if (row >= 0) {
    const POINT middle = LabelOf(list, row);
    at = MAKELPARAM(middle.x, middle.y);
  }
  PostMessageW(list, WM_RBUTTONDOWN, MK_RBUTTON, at);
  PostMessageW(list, WM_RBUTTONUP, 0, at);
}

void WindowsScreen::ClickHeader(const std::string& list, int column) {
  const auto header = reinterpret_cast<HWND>(Send(List(list), LVM_GETHEADER));
  RECT place{};
  Ask(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), place);
  ClickAt(header, MiddleOf(place));
}

// As the calendar does it.
void WindowsScreen::Pick(const std::string& name, const std::string& date) {
  const HWND field = Reachable(name);
  FocusOn(name);
  const auto parsed = base::ParseDate(date, {});
  if (!parsed) Fail(date + " is no date");
  const base::CalendarTime time = base::ToCalendar(*parsed);
  NMDATETIMECHANGE change{};
  change.nmhdr = {field, static_cast<UINT_PTR>(GetDlgCtrlID(field)), static_cast<UINT>(DTN_DATETIMECHANGE)};
  change.st.wYear = static_cast<WORD>(time.year);
  change.st.wMonth = static_cast<WORD>(time.month);
  change.st.wDay = static_cast<WORD>(time.day);
  Ask(field, DTM_SETSYSTEMTIME, GDT_VALID, change.st);
  Ask(GetParent(field), WM_NOTIFY, change.nmhdr.idFrom, change);
}

void WindowsScreen::CloseBox() {
  PostMessageW(Front(), WM_SYSCOMMAND, SC_CLOSE, 0);
}

HWND WindowsScreen::FormNamed(const std::string& wanted) const {
  for (const auto& [name, window] : forms_) {
    if (name == wanted) return window;
  }
  Fail(wanted + " is not open");
}

void WindowsScreen::BringToFront(const std::string& form) {
  SetForegroundWindow(FormNamed(form));
}

void WindowsScreen::Lose(const std::string& form) {
  DestroyWindow(FormNamed(form));
}

// --- What it shows ---

Facts WindowsScreen::FactsOf(HWND form, const std::string& form_name) {
  const std::string prefix = form_name == "frmMain" ? "" : form_name + ".";
  Facts facts{{form_name,
               {{"caption", Shown(TextOf(form))},
                {"enabled", YesNo(IsWindowEnabled(form) != FALSE)},
                {"minimized", YesNo(IsIconic(form) != FALSE)}}}};
  for (const HWND control : ControlsOf(form)) {
    Fact fact{prefix + NameOf(control), {}};
    const std::string kind = ClassOf(control);
    AddContents(control, kind, fact);
    fact.values.emplace_back("enabled", YesNo(IsWindowEnabled(control) != FALSE));
    // A page that is not chosen is hidden, and a label goes with its field or for want of a text.
    const bool goes_with_others = kind == "QuentaFrame" || kind == "Static";
    if (!goes_with_others) fact.values.emplace_back("visible", YesNo(HasStyle(control, WS_VISIBLE)));
    facts.push_back(std::move(fact));
  }
  return facts;
}

std::map<std::string, std::vector<ShownRow>> WindowsScreen::RowsOf(HWND form, const std::string& form_name) {
  std::map<std::string, std::vector<ShownRow>> lists;
  for (const HWND control : ControlsOf(form)) {
    if (ClassOf(control) != WC_LISTVIEWA) continue;
    std::vector<ShownRow>& rows = lists[(form_name == "frmMain" ? "" : form_name + ".") + NameOf(control)];
    const auto count = static_cast<int>(Send(control, LVM_GETITEMCOUNT));
    for (int row = 0; row < count; ++row) {
      if (!IsLeftOut(row, count)) rows.push_back(RowOf(control, row));
    }
  }
  return lists;
}

}  // namespace quenta::journeys
