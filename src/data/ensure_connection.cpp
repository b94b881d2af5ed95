#include "data/ensure_connection.h"

#include <memory>

#include "component/session/connection_keeper.h"
#include "controls/form.h"

namespace quenta::data {
namespace {

// Holds the form: while the keeper waits, the host may take the form's window away.
class FormAtWork final : public session::WorkingForm {
 public:
  explicit FormAtWork(controls::Form& form) : form_(form.shared_from_this()) {}

  int MousePointer() override { return static_cast<int>(form_->mouse_pointer()); }
  void SetMousePointer(int pointer) override { form_->set_mouse_pointer(static_cast<controls::MousePointer>(pointer)); }
  void SetWindowState(int state) override { form_->set_window_state(static_cast<controls::WindowState>(state)); }
  void Refresh() override { form_->Refresh(); }
  controls::Form* Form() override { return form_.get(); }

 private:
  std::shared_ptr<controls::Form> form_;
};

}  // namespace

void EnsureConnection(session::Session& session, controls::Form* form) {
  if (form == nullptr) {
    session::EnsureConnection(session, nullptr);
    return;
  }
  FormAtWork at_work(*form);
  session::EnsureConnection(session, &at_work);
}

void RestoreConnection(session::Session& session, controls::Form& form) {
  FormAtWork at_work(form);
  session::RestoreConnection(session, &at_work);
}

}  // namespace quenta::data
