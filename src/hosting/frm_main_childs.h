// The hidden form that stands for the component's user interface as long as there is any.
#pragma once

#include "controls/form.h"
#include "controls/timer.h"
#include "hosting/forms.h"

namespace quenta::hosting {

// Loaded with the first visible form and never shown. Unloading it leaves all other forms as they are.
class frmMainChilds final : public controls::Form {
 public:
  frmMainChilds(ports::FormHost& host, ports::ErrorReporting& error_reporting, const Forms& forms);

  // Closes the form by Killme. Without a timer, which is reported, it closes at once: nothing of its own is running.
  void CloseLater() noexcept;

  // Unloads this form on a later pass of the message loop: a form cannot go while one of its own events is running.
  // Enabled twice before it fires, it still unloads once.
  controls::Timer Killme;

 protected:
  void OnUnload(bool& cancel) override;

 private:
  void Killme_Timer() noexcept;

  ports::ErrorReporting& error_reporting_;
  const Forms& forms_;
};

}  // namespace quenta::hosting
