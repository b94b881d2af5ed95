#include "component/product/product_fixture.h"

#include <commctrl.h>
#include <objbase.h>

#include <algorithm>
#include <cstdio>

#include "base/convert.h"
#include "base/text.h"
#include "component/session/scrambler.h"
#include "platform/automation/bstr.h"
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

// The one message box that is waited for: a timer looks for it, more seldom than Pump takes for silence.
ProductFixture* waiting_for_box = nullptr;
int box_button = 0;
UINT_PTR box_timer = 0;
constexpr UINT kBoxMilliseconds = 100;

void StopWaiting() {
  if (box_timer != 0) KillTimer(nullptr, box_timer);
  box_timer = 0;
  waiting_for_box = nullptr;
}

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
  while (MsgWaitForMultipleObjectsEx(0, nullptr, 40, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0) {
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
      [](HWND child, LPARAM data) noexcept -> BOOL {
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
}

ProductFixture::~ProductFixture() {
  for (const FormOnScreen& form : Forms()) {
    AnswerNext(IDNO);
    form.Close();
  }
  StopWaiting();
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

std::vector<FormOnScreen> ProductFixture::Forms() {
  std::vector<FormOnScreen> forms;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM data) noexcept -> BOOL {
        if (IsWindowVisible(window) && NameOf(window) == "frmMain") {
          reinterpret_cast<std::vector<FormOnScreen>*>(data)->emplace_back(window);
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&forms));
  return forms;
}

void ProductFixture::AnswerNext(int button) {
  StopWaiting();
  waiting_for_box = this;
  box_button = button;
  box_text.clear();
  box_title.clear();
  box_timer = SetTimer(nullptr, 0, kBoxMilliseconds, LookForBox);
}

// A message box is its thread's active dialog while it is open; its loop delivers our timer.
void CALLBACK ProductFixture::LookForBox(HWND, UINT, UINT_PTR, DWORD) noexcept {
  const HWND box = FindWindowW(L"#32770", nullptr);
  if (waiting_for_box == nullptr || box == nullptr) return;
  if (GetWindowThreadProcessId(box, nullptr) != GetCurrentThreadId()) return;
  waiting_for_box->box_title = WindowText(box);
  for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    if (ClassOf(child) == "static") waiting_for_box->box_text += WindowText(child);
  }
  StopWaiting();
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(box_button), 0);
}

std::string ProductFixture::Sql(const std::string& statement) {
  const Variant text{std::string_view(statement)};
  const Variant rows = CallMethod(*database_.Get(), L"Execute", {&text});
  IDispatch& recordset = *rows.Get().pdispVal;
  if (base::ToLong(ToValue(GetProperty(recordset, L"State").Get()), {}) == 0) return {};
  if (base::ToBoolean(ToValue(GetProperty(recordset, L"EOF").Get()), {})) return "(none)";
  const Variant first(0);
  const Variant fields = GetProperty(recordset, L"Fields");
  const Variant field = CallMethod(*fields.Get().pdispVal, L"Item", {&first});
  const base::Value value = ToValue(GetProperty(*field.Get().pdispVal, L"Value").Get());
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
