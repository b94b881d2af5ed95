#include "component/session/transaction.h"

#include "base/convert.h"
#include "base/error.h"

namespace quenta::session {

bool InTransaction(Session& session) {
  if (session.SharedConnection().State() != ports::ConnectionState::kOpen) return false;
  const ports::RowSet rows = session.Query("SELECT @@TRANCOUNT as valor");
  return !rows.empty() && base::IsNonZero(rows.front()["valor"]);
}

Transaction::Transaction(Session& session) : session_(session) {
  if (session_.transaction_held) {
    throw base::Error(base::error_number::kInvalidCall, "Another operation has a transaction open.");
  }
  if (InTransaction(session_)) return;
  session_.DoubtLine();
  session_.SharedConnection().BeginTransaction();
  owned_ = true;
  session_.transaction_held = true;
}

Transaction::~Transaction() {
  if (owned_) RollBack();
}

void Transaction::Commit() {
  if (!InTransaction(session_)) {
    if (!owned_) return;
    RollBack();
    throw base::Error(base::error_number::kDataAccess, "The transaction was ended by the server.");
  }
  session_.SharedConnection().CommitTransaction();
  if (owned_) session_.transaction_held = false;
  owned_ = false;
}

void Transaction::RollBack() noexcept {
  owned_ = false;
  session_.transaction_held = false;
  try {
    session_.SharedConnection().RollbackTransaction();
  } catch (...) {
    // Mostly the line is gone, and the server has rolled back by itself. Were it not so, the next operation would take
    // what is still open for the host's and go on in it: with its connection it ends for certain.
    session_.DropConnection();
  }
}

}  // namespace quenta::session
