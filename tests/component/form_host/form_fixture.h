// A form on the screen of a host that knows no dialogs, and a user who presses keys.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <windows.h>

#include "component/form_host/sample_form.h"
#include "platform/win32/form_host.h"

namespace quenta::tests {

// Runs the host's loop until nothing has come for a moment.
void Pump();

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
