// Shows form models as real windows, each as long as its form is loaded.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <windows.h>

#include "controls/commands.h"
#include "controls/form.h"
#include "platform/win32/timers.h"
#include "platform/win32/window_memory_file.h"
#include "ports/form_host.h"

namespace quenta::platform {

class FormWindow;
struct WindowServices;

// All calls come from the thread on which the forms live. How forms are found from outside stands in window_names.h.
class FormHost final : public ports::FormHost {
 public:
  // The windows' places are remembered in this file; an empty path remembers nothing.
  explicit FormHost(std::string window_memory_path = DefaultWindowMemoryPath());
  // Destroys what windows are left.
  ~FormHost() override;

  // Throws base::Error when Windows makes no window.
  void Show(controls::Form& form) override;
  void Close(controls::Form& form) override;
  void SetTopmost(controls::Form& form, bool topmost) override;
  void Focus(controls::Form& form, const char* control_name) override;

  void PopupMenu(controls::Form& form, const char* menu_name) override;
  void StartTimer(ports::TimerTarget& target, int milliseconds) override { timers_.Start(target, milliseconds); }
  void StopTimer(ports::TimerTarget& target) noexcept override { timers_.Stop(target); }

  // Whether a timer runs: the library must stay loaded.
  bool TimersRun() const noexcept { return !timers_.empty(); }

  // Windows that exist, and the keyboard's hook as long as its code may run: the library must stay loaded.
  int OpenForms() const noexcept;
  // Destroys all windows at once, tells their forms that they are lost, and stops the timers.
  void CloseAll() noexcept;

  // The form's window; null when it has none.
  HWND WindowOf(const controls::Form& form) const noexcept;
  // To be called when a message box over the form has ended: it has enabled the form, whatever the model says.
  void QuestionEnded(const controls::Form& form) noexcept;

 private:
  std::shared_ptr<FormWindow> Find(const controls::Form& form) const noexcept;
  HWND WindowOfCaller(const controls::Form& form) const;
  HWND WindowToOpenOver(const controls::Form& form) const;
  const std::shared_ptr<WindowServices>& Services();

  std::string window_memory_path_;
  std::shared_ptr<WindowServices> services_;  // made with the first form
  std::vector<std::shared_ptr<FormWindow>> windows_;
  Timers timers_;
};

}  // namespace quenta::platform
