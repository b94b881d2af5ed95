// The suite's error-reporting object, called late-bound by its ProgID.
#pragma once

#include <windows.h>

#include <functional>

#include "platform/automation/com_ptr.h"
#include "ports/error_reporting.h"

namespace quenta::platform {

// Everything that goes wrong here is lost: the class is not registered, a method is missing, the object raises an error
// of its own. A report says that it was. Used on the owning thread only.
class AutomationErrorReporting final : public ports::ErrorReporting {
 public:
  // Says which window shows a form; null when none does.
  using WindowOf = std::function<HWND(controls::Form&)>;

  explicit AutomationErrorReporting(WindowOf window_of) : window_of_(std::move(window_of)) {}

  // A new reporting object for each report.
  bool Report(const ports::ErrorReport& report) noexcept override;

  // One reporting object from the start of a reconnect to its end. The form is handed over as an object with the
  // properties hWnd and Caption, or as Nothing.
  void SQLReconnectShow(controls::Form* form) noexcept override;
  void SQLReconnectShutdown(controls::Form* form) noexcept override;
  void SQLReconnectShowBad(controls::Form* form) noexcept override;
  void SQLReconnectShowOK(controls::Form* form) noexcept override;
  void ReleaseReconnect() noexcept override;

 private:
  void CallWithForm(const wchar_t* method, controls::Form* form) noexcept;

  WindowOf window_of_;
  ComPtr<IDispatch> reconnecting_;
};

}  // namespace quenta::platform
