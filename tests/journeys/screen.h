// Forms without windows, and a person in front of them: keys, clicks and the focus reach the models as they do from the
// windows, in the same order.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/form.h"
#include "journeys/observation.h"
#include "ports/host_object.h"
#include "support/fake_ports.h"

namespace quenta::journeys {

// A window of the host's, for which a form is opened.
struct HostWindow final : ports::HostObject {
  explicit HostWindow(std::string window_name) : name(std::move(window_name)) {}
  std::string name;
};

class Screen final : public ports::FormHost {
 public:
  // Tells what happens to the forms, as it is written in a journey.
  explicit Screen(std::function<void(const std::string& event)> tell) : tell_(std::move(tell)) {}

  // ports::FormHost
  void Show(controls::Form& form) override;
  void Close(controls::Form& form) override;
  void SetTopmost(controls::Form& form, bool topmost) override;
  void Focus(controls::Form& form, const char* control_name) override;
  void PopupMenu(controls::Form& form, const char* menu_name) override;
  void StartTimer(ports::TimerTarget& target, int milliseconds) override { host.StartTimer(target, milliseconds); }
  void StopTimer(ports::TimerTarget& target) noexcept override { host.StopTimer(target); }

  // What the person does in the form in front; std::runtime_error when that cannot be done.
  void FocusOn(const std::string& control);
  void Type(const std::string& control, const std::string& text);  // over what stands there
  void Key(const std::string& key);                                // "Tab", "Ctrl+Shift+Del", "a"
  void Choose(const std::string& box, const std::string& entry);
  void Click(const std::string& control, const std::string& part);  // of a toolbar: a button, or a button and its entry
  void ClickMenu(const std::string& name);
  void ClickTab(const std::string& key);
  void ClickRow(const std::string& list, const std::string& start, bool twice);
  void OpenMenu(const std::string& list);  // the list's context menu
  void ClickHeader(const std::string& list, int column);
  void Pick(const std::string& date_field, const std::string& date);
  void CloseBox();
  void BringToFront(const std::string& form);

  // The forms that are open, each by its name, "#2" behind the second one of a name.
  std::vector<std::pair<std::string, std::shared_ptr<controls::Form>>> Forms() const;
  std::string NameOf(const controls::Form* form) const;  // "nothing" for null
  bool IsTopmost(const controls::Form* form) const;
  // Lets go of forms that have closed: their last event has ended.
  void EndStep() { closed_.clear(); }

  tests::FakeFormHost host;
  std::deque<std::string> answers;  // of the menus that pop up: names of entries

 private:
  struct Window {
    std::shared_ptr<controls::Form> form;
    std::string name;
    controls::Control* focus = nullptr;  // where the keyboard is, or was when the form was left
    controls::Control* told = nullptr;   // the control that was told last that it has the focus
    int commands = 0;
    bool topmost = false;
  };

  std::string FreeName(const std::string& form_name) const;
  Window& Front();
  Window* Find(const controls::Form* form) const;
  controls::Control& Reachable(const std::string& name);
  void Event(const std::function<void()>& tell);
  void Command(const std::function<void()>& run);
  void Move(Window& window, controls::Control* control);
  void Settle();
  void TypeUnit(controls::Control& control, char16_t unit);
  void Erase(controls::Control& control, bool before_caret);
  void PressPlain(const std::string& name, int key, bool shift);
  void SelectTab(Window& window, int index);

  std::function<void(const std::string&)> tell_;
  std::vector<std::unique_ptr<Window>> windows_;  // the one in front last
  std::vector<std::shared_ptr<controls::Form>> closed_;
};

}  // namespace quenta::journeys
