#include "component/form_host/form_fixture.h"

#include <commctrl.h>

#include <map>

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

void SendKeys(int key, const std::vector<int>& modifiers) {
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
  EXPECT_EQ(SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)), inputs.size());
}

namespace {

// A timer without a window knows nothing but its number.
std::map<UINT_PTR, Meanwhile*>& RunningMeanwhile() {
  static std::map<UINT_PTR, Meanwhile*> running;
  return running;
}

}  // namespace

Meanwhile::Meanwhile(std::function<bool()> act)
    : act_(std::move(act)), timer_(SetTimer(nullptr, 0, 30, &Meanwhile::OnTimer)) {
  RunningMeanwhile()[timer_] = this;
}

Meanwhile::~Meanwhile() {
  RunningMeanwhile().erase(timer_);
  KillTimer(nullptr, timer_);
}

void CALLBACK Meanwhile::OnTimer(HWND, UINT, UINT_PTR timer, DWORD) noexcept {
  const auto found = RunningMeanwhile().find(timer);
  if (found == RunningMeanwhile().end()) return;
  Meanwhile& self = *found->second;
  const bool given_up = --self.left_ < 0;
  if (!given_up && !self.act_()) return;
  RunningMeanwhile().erase(timer);
  KillTimer(nullptr, timer);
  EXPECT_FALSE(given_up) << "what was waited for has not come";
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
      [](HWND child, LPARAM data) CALLBACK -> BOOL {
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
  SendKeys(key, modifiers);
  Pump();
}

void FormFixture::TypeUnicode(const std::string& text) {
  for (const wchar_t unit : platform::Wide(text)) {
    INPUT inputs[2]{};
    for (INPUT& input : inputs) {
      input.type = INPUT_KEYBOARD;
      input.ki.wScan = unit;
      input.ki.dwFlags = KEYEVENTF_UNICODE;
    }
    inputs[1].ki.dwFlags |= KEYEVENTF_KEYUP;
    SendInput(2, inputs, sizeof(INPUT));
    Pump();
  }
}

void FormFixture::Click(const std::string& name, POINT at, bool right) {
  const LPARAM place = MAKELPARAM(at.x, at.y);
  PostMessageW(Window(name), right ? WM_RBUTTONDOWN : WM_LBUTTONDOWN, right ? MK_RBUTTON : MK_LBUTTON, place);
  PostMessageW(Window(name), right ? WM_RBUTTONUP : WM_LBUTTONUP, 0, place);
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
