// Which call of the outside goes wrong, and how: one plan, shared by whatever stands in for the outside.
#pragma once

#include <chrono>
#include <vector>

#include "base/error.h"

namespace quenta::tests {

enum class Fault {
  kFails,         // the call fails, and the next one works again
  kFailsForGood,  // so do all later ones
  // The line is gone: the server has rolled back, this and all later statements fail, and the connection goes on saying
  // that it is open until it is closed and opened again.
  kLineDrops,
  kAnswerIsLost,  // the same, after the server has done what it was asked
  kIsLate,        // the call takes longer
  kOtherColumns,  // a query's result has other columns than the ones asked for
  kAllNull,       // a query's result has Null wherever there was a value
};

// Where a call goes. Those to a connection pass nothing on to the server.
enum class CallTo { kConnection, kOpen, kQuery, kWrite, kSettings, kDesktop, kReporting, kFormHost };

class FaultPlan {
 public:
  int fail_at = -1;  // position, from 0, of the call that goes wrong; -1 for none
  Fault fault = Fault::kFails;
  std::chrono::milliseconds late{20};  // how much longer a late call takes
  int calls = 0;                       // made so far
  // Of a database, counts every call, and not only opens, statements and transactions. Those that pass nothing on to
  // the server know one way to go wrong: they fail.
  bool every_call = false;
  std::vector<CallTo> made{};  // where each call went

  // Counts one more call; true when it is the one to go wrong.
  bool Strikes(CallTo to) noexcept {
    made.push_back(to);
    const int position = calls++;
    return fail_at >= 0 && (position == fail_at || (fault == Fault::kFailsForGood && position > fail_at));
  }

  // A call of a database that passes nothing on to the server.
  void Pass() {
    if (!every_call || !Strikes(CallTo::kConnection)) return;
    if (fault == Fault::kFails || fault == Fault::kFailsForGood) {
      throw base::Error(base::error_number::kDataAccess, "Injected failure");
    }
  }
};

}  // namespace quenta::tests
