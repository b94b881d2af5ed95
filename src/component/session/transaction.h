// Transactions that know who began them.
#pragma once

#include "component/session/session.h"

namespace quenta::session {

// Whether a transaction is open on the shared connection; false without a query when that is closed.
bool InTransaction(Session& session);

// One operation's share in a transaction on the shared connection. When none was open, the operation begins one and
// owns it: whatever way the operation ends, an owned transaction that was not committed is rolled back. A transaction
// that somebody else opened (the host) is joined, and left as it is unless Commit is called.
class Transaction {
 public:
  // Begins when none is open (so the server says). Throws when the begin fails, and while another operation of ours has
  // one: nobody may join it.
  explicit Transaction(Session& session);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  // Commits when the server says that a transaction is open, whoever opened it. Throws when the commit fails, or when
  // the transaction that this operation owns is gone: what it wrote is then not there.
  void Commit();

 private:
  void RollBack() noexcept;

  Session& session_;
  bool owned_ = false;
};

}  // namespace quenta::session
