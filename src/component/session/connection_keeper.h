// Keeps the shared connection usable: tests it before queries, and reconnects, to the other server when needed.
#pragma once

#include <string>

#include "component/session/session.h"

namespace quenta::session {

// The form that a caller works for, as the keeper changes it while it works.
class WorkingForm {
 public:
  virtual ~WorkingForm() = default;
  virtual int MousePointer() = 0;  // 0 default, 11 hourglass
  virtual void SetMousePointer(int pointer) = 0;
  virtual void SetWindowState(int state) = 0;  // 0 normal, 1 minimised
  virtual void Refresh() = 0;
  // For the calls on the error-reporting object.
  virtual controls::Form* Form() = 0;
};

struct ConnectionCheck {
  WorkingForm* form = nullptr;              // may be null
  ports::Connection* connection = nullptr;  // null takes the shared connection, which is stored here at the end
  bool transaction_shortcut = false;        // answer at once when a transaction is open
  bool reconnect = false;                   // try to reconnect when the connection is not usable
  bool silent = false;                      // leave the error-reporting object, and the form's state at the end, alone
  bool minimise = false;                    // refresh and minimise the form while reconnecting
};

// Answers empty text when the connection is usable, or usable again; "..." when no master connection string is kept
// (no SQLConnect has run) or the wait was cancelled; otherwise a text that says why it is not. Never reports, never
// throws a data-access error. Each open ends after 10 seconds by the desktop's clock, whatever the provider makes of
// the timeout that it is given.
std::string SQLConnectionCheck(Session& session, ConnectionCheck& check);

// Whether statements run on the shared connection: the keeper's test, without its remedies.
bool ConnectionAnswers(Session& session);

// What routines of the component do before their queries: asks the keeper, lets it reconnect (never while a
// transaction of ours is open: it would go on outside of it), and throws its text as an error when the shared
// connection is not usable. A session without a master string (Login) counts as usable while it is open. The form whose
// work it is (null for none) shows the hourglass meanwhile, and the reconnect is shown over it.
void EnsureConnection(Session& session, WorkingForm* form);

// The same before what a form has to do to be able to go: it also opens a dead line anew that a Login left, which the
// keeper knows no string for.
void RestoreConnection(Session& session, WorkingForm* form);

}  // namespace quenta::session
