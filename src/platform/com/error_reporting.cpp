#include "platform/com/error_reporting.h"

#include <utility>

#include "controls/form.h"
#include "platform/automation/bstr.h"
#include "platform/automation/dispatch.h"
#include "platform/automation/variant.h"
#include "platform/com/form_object.h"

namespace quenta::platform {
namespace {

constexpr wchar_t kProgId[] = L"ErrorReporting.General";

}  // namespace

bool AutomationErrorReporting::Report(const ports::ErrorReport& report) noexcept {
  // What fails on the way is lost by agreement, even another module's exception.
  try {
    const ComPtr<IDispatch> reporting = CreateObject(kProgId);
    const Variant product(report.product);
    const Variant project(report.project);
    const Variant module_name(report.module);
    const Variant procedure(report.procedure);
    const Variant description(report.description);
    CallMethod(*reporting.Get(), L"Report", {&product, &project, &module_name, &procedure, &description});
    return true;
  } catch (...) {
    return false;
  }
}

void AutomationErrorReporting::CallWithForm(const wchar_t* method, controls::Form* form) noexcept {
  try {
    // Held here: the call may let messages through, and with them the end of the reconnect.
    const ComPtr<IDispatch> reporting = reconnecting_;
    if (!reporting) return;
    ComPtr<IDispatch> object;
    if (form != nullptr) {
      object = ComPtr<IDispatch>::Adopt(new FormObject(window_of_(*form), ToWide(form->caption())));
    }
    const Variant argument(object.Get());
    CallMethod(*reporting.Get(), method, {&argument});
  } catch (...) {
  }
}

void AutomationErrorReporting::SQLReconnectShow(controls::Form* form) noexcept {
  try {
    reconnecting_ = CreateObject(kProgId);
  } catch (...) {
    reconnecting_.Reset();
  }
  CallWithForm(L"SQLReconnectShow", form);
}

void AutomationErrorReporting::SQLReconnectShutdown(controls::Form* form) noexcept {
  CallWithForm(L"SQLReconnectShutdown", form);
}

void AutomationErrorReporting::SQLReconnectShowBad(controls::Form* form) noexcept {
  CallWithForm(L"SQLReconnectShowBad", form);
}

void AutomationErrorReporting::SQLReconnectShowOK(controls::Form* form) noexcept {
  CallWithForm(L"SQLReconnectShowOK", form);
}

void AutomationErrorReporting::ReleaseReconnect() noexcept {
  // The object's own end may let messages through, too: it is not reached any more by then.
  const ComPtr<IDispatch> ended = std::move(reconnecting_);
}

}  // namespace quenta::platform
