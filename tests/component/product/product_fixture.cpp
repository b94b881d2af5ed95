#include "component/product/product_fixture.h"

#include <commctrl.h>
#include <objbase.h>

#include <algorithm>
#include <cstdio>

#include "base/convert.h"
#include "base/text.h"
#include "component/session/scrambler.h"
#include "platform/automation/bstr.h"
#include "platform/automation/safe_array_access.h"
#include "platform/automation/variant.h"
#include "platform/automation/variant_value.h"

namespace quenta::tests {

using platform::CallMethod;
using platform::ComPtr;
using platform::CreateObject;
using platform::FromWide;
using platform::GetProperty;
using platform::ToValue;
using platform::ToWide;
using platform::Variant;

namespace {

constexpr const char* kConnection =
    "Provider=SQLOLEDB.1;User ID=suite;Password=Suite-2026;Initial Catalog=Amostra;Data Source=QuentaAmostra";

// The test that runs, for the timer that looks for message boxes: more seldom than Pump takes for silence.
ProductFixture* current = nullptr;
constexpr UINT kBoxMilliseconds = 100;

std::string NameOf(HWND window, const wchar_t* property = L"ControlName") {
  const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(window, property));
  wchar_t name[256] = L"";
  if (LOWORD(value) != 0) GlobalGetAtomNameW(LOWORD(value), name, 256);
  return FromWide(name);
}

std::string WindowText(HWND window) {
  const LRESULT length = SendMessageW(window, WM_GETTEXTLENGTH, 0, 0);
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
  return FromWide(text.c_str());
}

std::string ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, 64);
  return base::ToLower(FromWide(name));
}

}  // namespace

void Pump() {
  // On a machine that is busy, timers alone could keep it from ever being quiet.
  constexpr ULONGLONG kLongest = 10000;  // milliseconds
  const ULONGLONG start = GetTickCount64();
  while (GetTickCount64() - start < kLongest &&
         MsgWaitForMultipleObjectsEx(0, nullptr, 40, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

std::string FormOnScreen::Caption() const {
  return WindowText(window_);
}

HWND FormOnScreen::Control(const std::string& name) const {
  struct Search {
    const std::string& name;
    HWND found;
  } search{name, nullptr};
  EnumChildWindows(
      window_,
      [](HWND child, LPARAM data) noexcept CALLBACK -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(data);
        if (NameOf(child) != wanted.name) return TRUE;
        wanted.found = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::string FormOnScreen::Text(const std::string& name) const {
  const HWND control = Control(name);
  if (control == nullptr) return "(no window)";
  const bool box =
      (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_AUTOCHECKBOX && ClassOf(control) == "button";
  if (box) return SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED ? "1" : "0";
  return WindowText(control);
}

bool FormOnScreen::IsReadOnly(const std::string& name) const {
  return (GetWindowLongW(Control(name), GWL_STYLE) & ES_READONLY) != 0;
}

bool FormOnScreen::ButtonIsEnabled(const std::string& toolbar, const std::string& key) const {
  const HWND bar = Control(toolbar);
  for (int i = 0;; ++i) {
    const std::wstring property = L"Button" + std::to_wstring(i);
    const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(bar, property.c_str()));
    if (value == 0) return false;
    if (NameOf(bar, property.c_str()) == key) return SendMessageW(bar, TB_ISBUTTONENABLED, HIWORD(value), 0) != 0;
  }
}

void FormOnScreen::FocusOn(const std::string& name) const {
  SendMessageW(window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(name)), TRUE);
  Pump();
}

void FormOnScreen::TypeOver(const std::string& name, const std::string& text) const {
  FocusOn(name);
  SendMessageW(GetFocus(), EM_SETSEL, 0, -1);
  for (const wchar_t letter : ToWide(text)) PostMessageW(GetFocus(), WM_CHAR, letter, 1);
  Pump();
}

void FormOnScreen::Key(int virtual_key) const {
  PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(virtual_key), 1);
  Pump();
}

void FormOnScreen::Type(const std::string& text) const {
  for (const wchar_t letter : ToWide(text)) PostMessageW(GetFocus(), WM_CHAR, letter, 1);
  Pump();
}

void FormOnScreen::Choose(const std::string& name, const std::string& start) const {
  FocusOn(name);
  Key(VK_HOME);
  for (int i = 0; i < 100 && Text(name).rfind(start, 0) != 0; ++i) Key(VK_DOWN);
  EXPECT_EQ(Text(name).rfind(start, 0), 0U) << name << " has no " << start;
}

std::string FormOnScreen::Focused() const {
  std::string name;
  for (HWND window = GetFocus(); window != nullptr && window != window_ && name.empty(); window = GetParent(window)) {
    name = NameOf(window);
  }
  return name;
}

int FormOnScreen::RowCount(const std::string& list) const {
  return static_cast<int>(SendMessageW(Control(list), LVM_GETITEMCOUNT, 0, 0));
}

std::string FormOnScreen::Row(const std::string& list, int row) const {
  const HWND header = reinterpret_cast<HWND>(SendMessageW(Control(list), LVM_GETHEADER, 0, 0));
  const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  std::string cells;
  for (int column = 0; column < columns; ++column) {
    wchar_t text[512] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 512;
    SendMessageW(Control(list), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    cells += (column > 0 ? " | " : "") + FromWide(text);
  }
  return cells;
}

void FormOnScreen::ChooseFromContextMenu(int entry) const {
  const HWND control = GetFocus();
  PostMessageW(control, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(control), -1);
  // The menu's own loop takes these.
  for (int i = 0; i < entry; ++i) PostMessageW(control, WM_KEYDOWN, VK_DOWN, 1);
  PostMessageW(control, WM_KEYDOWN, VK_RETURN, 1);
  Pump();
}

void FormOnScreen::SelectTab(const std::string& key) const {
  const HWND tabs = Control("TabStrip1");
  for (int i = 0; i < 20; ++i) {
    const std::wstring property = L"Tab" + std::to_wstring(i);
    if (NameOf(tabs, property.c_str()) != key) continue;
    // As a click does: the tab strip itself tells its parent only what the user does.
    RECT tab{};
    SendMessageW(tabs, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&tab));
    const LPARAM at = MAKELPARAM((tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2);
    PostMessageW(tabs, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageW(tabs, WM_LBUTTONUP, 0, at);
    Pump();
    return;
  }
  ADD_FAILURE() << "no tab " << key;
}

int FormOnScreen::TabCount() const {
  return static_cast<int>(SendMessageW(Control("TabStrip1"), TCM_GETITEMCOUNT, 0, 0));
}

void FormOnScreen::ClickHeader(const std::string& list, int column) const {
  const HWND header = reinterpret_cast<HWND>(SendMessageW(Control(list), LVM_GETHEADER, 0, 0));
  RECT place{};
  SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&place));
  const LPARAM at = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
  PostMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
  PostMessageW(header, WM_LBUTTONUP, 0, at);
  Pump();
}

void FormOnScreen::PressCommand(const std::string& button) const {
  PostMessageW(Control(button), BM_CLICK, 0, 0);
  Pump();
}

void FormOnScreen::PressButton(const std::string& toolbar, const std::string& key) const {
  const HWND bar = Control(toolbar);
  for (int i = 0; i < 50; ++i) {
    const std::wstring property = L"Button" + std::to_wstring(i);
    const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(bar, property.c_str()));
    if (NameOf(bar, property.c_str()) != key) continue;
    PostMessageW(GetParent(bar), WM_COMMAND, HIWORD(value), reinterpret_cast<LPARAM>(bar));
    Pump();
    return;
  }
  ADD_FAILURE() << "no button " << key;
}

void FormOnScreen::Close() const {
  PostMessageW(window_, WM_CLOSE, 0, 0);
  Pump();
}

ProductFixture::ProductFixture() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  database_ = CreateObject(L"ADODB.Connection");
  const Variant text{std::string_view(kConnection)};
  CallMethod(*database_.Get(), L"Open", {&text});
  Reports();
  current = this;
  box_timer_ = SetTimer(nullptr, 0, kBoxMilliseconds, LookForBox);
}

ProductFixture::~ProductFixture() {
  for (const FormOnScreen& form : Forms()) {
    AnswerNext(IDNO);
    form.Close();
  }
  KillTimer(nullptr, box_timer_);
  current = nullptr;
  database_ = {};
  Pump();
  CoUninitialize();
}

ComPtr<IDispatch> ProductFixture::NewGeneral() {
  return CreateObject(L"Quenta_Produtos.General");
}

bool ProductFixture::LogIn(IDispatch& general, const std::string& user, const std::string& password) {
  const Variant name{std::string_view(user)};
  const Variant scrambled{std::string_view(session::Scramble(password))};
  return base::ToBoolean(ToValue(CallMethod(general, L"Login", {&name, &scrambled}).Get()), {});
}

bool ProductFixture::Connect(IDispatch& general, const std::string& primary, const std::string& secondary,
                             const std::string& password) {
  const Variant user{std::string_view("ana")};
  const Variant scrambled{std::string_view(session::Scramble(password))};
  const Variant shared_user{std::string_view("suite")};
  const Variant shared_password{std::string_view(session::Scramble("Suite-2026"))};
  const Variant catalogue{std::string_view("Amostra")};
  const Variant first{std::string_view(primary)};
  const Variant second{std::string_view(secondary)};
  const Variant flags(0);
  return base::ToBoolean(
      ToValue(CallMethod(general, L"SQLConnect",
                         {&user, &scrambled, &shared_user, &shared_password, &catalogue, &first, &second, &flags})
                  .Get()),
      {});
}

void ProductFixture::Open(IDispatch& general, const Variant& key) {
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  const Variant table{std::string_view("tbProdutos")};
  const Variant where{std::string_view("")};
  const Variant zero(0);
  CallMethod(general, L"ObjectOpen", {&nothing, &key, &table, &where, &nothing, &zero, &nothing, &zero});
  Pump();
}

void ProductFixture::New(IDispatch& general) {
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  const Variant text{std::string_view("")};
  const Variant zero(0);
  CallMethod(general, L"ObjectNew", {&nothing, &text, &text, &nothing, &zero, &nothing, &zero});
  Pump();
}

std::vector<FormOnScreen> ProductFixture::Forms(const std::string& name) {
  struct Search {
    const std::string& name;
    std::vector<FormOnScreen> forms;
  } search{name, {}};
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM data) noexcept CALLBACK -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(data);
        if (IsWindowVisible(window) && NameOf(window) == wanted.name) wanted.forms.emplace_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.forms;
}

FormOnScreen ProductFixture::FormNamed(const std::string& name) {
  const std::vector<FormOnScreen> forms = Forms(name);
  return forms.empty() ? FormOnScreen(nullptr) : forms.front();
}

void ProductFixture::AnswerNext(std::vector<int> buttons) {
  box_buttons_ = std::move(buttons);
  box_text.clear();
  box_title.clear();
}

// A message box is its thread's active dialog while it is open; its loop delivers our timer.
void CALLBACK ProductFixture::LookForBox(HWND, UINT, UINT_PTR, DWORD) noexcept {
  const HWND box = FindWindowW(L"#32770", nullptr);
  if (current == nullptr) return;
  if (box == nullptr) current->answered_ = nullptr;
  // The next box may have the same handle.
  constexpr int kPatience = 10;
  if (box == nullptr || (box == current->answered_ && ++current->looks_ < kPatience)) return;
  if (GetWindowThreadProcessId(box, nullptr) != GetCurrentThreadId()) return;
  current->box_title = WindowText(box);
  current->box_text.clear();
  for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    if (ClassOf(child) == "static") current->box_text += WindowText(child);
  }
  current->answered_ = box;
  current->looks_ = 0;
  std::vector<int>& buttons = current->box_buttons_;
  if (buttons.empty()) {
    ADD_FAILURE() << "nobody expected this box: " << current->box_text;
    buttons = {GetDlgItem(box, IDCANCEL) != nullptr ? IDCANCEL : GetDlgItem(box, IDNO) != nullptr ? IDNO : IDOK};
  }
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(buttons.front()), 0);
  buttons.erase(buttons.begin());
}

FormOnScreen FormTest::OpenCode(const std::string& code) {
  OpenId(*general.Get(), IdOfCode(code));
  const std::vector<FormOnScreen> forms = Forms();
  EXPECT_FALSE(forms.empty()) << code;
  return forms.empty() ? FormOnScreen(nullptr) : forms.front();
}

FormOnScreen FormTest::NewProduct() {
  New(*general.Get());
  const std::vector<FormOnScreen> forms = Forms();
  EXPECT_EQ(forms.size(), 1U);
  return forms.empty() ? FormOnScreen(nullptr) : forms.front();
}

std::string ProductFixture::Sql(const std::string& statement) {
  const Variant text{std::string_view(statement)};
  const Variant rows = CallMethod(*database_.Get(), L"Execute", {&text});
  IDispatch& recordset = *rows.Get().pdispVal;
  if (base::ToLong(ToValue(GetProperty(recordset, L"State").Get()), {}) == 0) return {};
  if (base::ToBoolean(ToValue(GetProperty(recordset, L"EOF").Get()), {})) return "(none)";
  const Variant one(1);
  const Variant block = CallMethod(recordset, L"GetRows", {&one});
  const base::Value value = ToValue(platform::SafeArrayAccess<VARIANT>(block.Get().parray).Elements().front());
  return value.is_null() ? std::string() : base::ToText(value, {});
}

std::vector<std::string> ProductFixture::Reports() {
  wchar_t path[MAX_PATH] = L"";
  GetEnvironmentVariableW(L"QUENTA_SANDBOX_REPORTS", path, MAX_PATH);
  std::vector<std::string> lines;
  if (FILE* file = _wfopen(path, L"rb")) {
    std::string text;
    char buffer[4096];
    for (std::size_t read = 0; (read = fread(buffer, 1, sizeof buffer, file)) > 0;) text.append(buffer, read);
    fclose(file);
    for (std::size_t start = 0; start < text.size();) {
      std::size_t end = text.find('\n', start);
      if (end == std::string::npos) end = text.size();
      lines.push_back(text.substr(start, end - start));
      start = end + 1;
    }
  }
  const std::vector<std::string> fresh(
      lines.begin() + static_cast<std::ptrdiff_t>(std::min(reports_seen_, lines.size())), lines.end());
  reports_seen_ = lines.size();
  return fresh;
}

}  // namespace quenta::tests
