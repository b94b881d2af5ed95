#include "component/form_host/form_fixture.h"

#include <commctrl.h>

#include "platform/win32/wide_text.h"

namespace quenta::tests {

void Pump() {
  // A plain loop: it translates and dispatches, and leaves dialogs to themselves.
  while (MsgWaitForMultipleObjectsEx(0, nullptr, 30, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}

void FormFixture::TearDown() {
  host.CloseAll();
  Pump();
}

void FormFixture::Show() {
  form->Show();
  Pump();
  window = host.WindowOf(*form);
  ASSERT_NE(window, nullptr);
  form->events.clear();
}

std::string FormFixture::NameOf(HWND window, const std::wstring& property) {
  const auto value = reinterpret_cast<ULONG_PTR>(GetPropW(window, property.c_str()));
  wchar_t name[256] = L"";
  GlobalGetAtomNameW(LOWORD(value), name, 256);
  return platform::Narrow(name);
}

HWND FormFixture::Window(const std::string& name) const {
  struct Search {
    const std::string& name;
    HWND found;
  } search{name, nullptr};
  EnumChildWindows(
      window,
      [](HWND child, LPARAM data) -> BOOL {
        auto& wanted = *reinterpret_cast<Search*>(data);
        if (NameOf(child) != wanted.name) return TRUE;
        wanted.found = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND FormFixture::ControlOf(HWND inner) {
  while (inner != nullptr && GetPropW(inner, L"ControlName") == nullptr) inner = GetAncestor(inner, GA_PARENT);
  return inner;
}

std::string FormFixture::TextOf(const std::string& name) const {
  wchar_t text[256] = L"";
  GetWindowTextW(Window(name), text, 256);
  return platform::Narrow(text);
}

void FormFixture::Press(int key, std::vector<int> modifiers) {
  std::vector<INPUT> inputs;
  const auto add = [&](int code, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = static_cast<WORD>(code);
    input.ki.dwFlags = flags;
    inputs.push_back(input);
  };
  for (const int modifier : modifiers) add(modifier, 0);
  add(key, 0);
  add(key, KEYEVENTF_KEYUP);
  for (auto modifier = modifiers.rbegin(); modifier != modifiers.rend(); ++modifier) add(*modifier, KEYEVENTF_KEYUP);
  ASSERT_EQ(SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)), inputs.size());
  Pump();
}

void FormFixture::Type(const std::string& letters) {
  for (const char letter : letters) Press(letter == ' ' ? VK_SPACE : letter - 'a' + 'A');
}

void FormFixture::FocusOn(const std::string& name) {
  SendMessageW(window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Window(name)), TRUE);
  Pump();
  form->events.clear();
}

void FormFixture::PressButton(const std::string& toolbar, const std::string& key) {
  const HWND bar = Window(toolbar);
  for (int i = 0;; ++i) {
    const std::wstring property = L"Button" + std::to_wstring(i);
    ASSERT_NE(GetPropW(bar, property.c_str()), nullptr) << "no button " << key << " on " << toolbar;
    if (NameOf(bar, property) != key) continue;
    const auto command = HIWORD(reinterpret_cast<ULONG_PTR>(GetPropW(bar, property.c_str())));
    PostMessageW(GetParent(bar), WM_COMMAND, command, reinterpret_cast<LPARAM>(bar));
    Pump();
    return;
  }
}

std::string FormFixture::EventsOf(const std::function<void()>& act) {
  form->events.clear();
  act();
  std::string text;
  for (const std::string& event : form->events) text += (text.empty() ? "" : ", ") + event;
  return text;
}

}  // namespace quenta::tests
