// A form on the screen of a host that knows no dialogs, and a user who presses keys.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <windows.h>

#include "component/form_host/sample_form.h"
#include "platform/win32/form_host.h"

namespace quenta::tests {

// Runs the host's loop until nothing has come for a moment.
void Pump();

// Keys as the keyboard gives them, to whatever window has it; nothing is processed yet.
void SendKeys(int key, const std::vector<int>& modifiers = {});

// Does something again and again from inside a modal loop (of a menu, a dialog of the system), until it returns true.
class Meanwhile {
 public:
  explicit Meanwhile(std::function<bool()> act);
  ~Meanwhile();
  Meanwhile(const Meanwhile&) = delete;
  Meanwhile& operator=(const Meanwhile&) = delete;

 private:
  static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) noexcept;

  std::function<bool()> act_;
  UINT_PTR timer_;
  int left_ = 200;  // times until somebody has to give up
};

class FormFixture : public testing::Test {
 protected:
  void TearDown() override;

  // Shows the form and forgets what happened while it appeared.
  void Show();

  // The window of the form's control, found as another process would find it.
  HWND Window(const std::string& name) const;
  // The key that a property of a window names; empty when it has none.
  static std::string NameOf(HWND window, const std::wstring& property = L"ControlName");
  std::string Focused() const { return NameOf(ControlOf(GetFocus())); }
  std::string TextOf(const std::string& name) const;

  // Real input: to whatever window has the keyboard.
  void Press(int key, std::vector<int> modifiers = {});
  void Type(const std::string& letters);
  // Any text, as an input method or a keyboard with these letters gives it.
  void TypeUnicode(const std::string& text);
  // A press of the left or the right mouse button at a place of a control's window.
  void Click(const std::string& name, POINT at, bool right = false);
  void FocusOn(const std::string& name);
  // As a click on the button does it.
  void PressButton(const std::string& toolbar, const std::string& key);

  // The events of the form from now on, as one text.
  std::string EventsOf(const std::function<void()>& act);

  platform::FormHost host{""};
  std::shared_ptr<SampleForm> form = std::make_shared<SampleForm>(host);
  HWND window = nullptr;

 private:
  static HWND ControlOf(HWND inner);
};

}  // namespace quenta::tests
