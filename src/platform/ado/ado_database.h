// The machine's registered ADO as a Database: late bound, results read whole and in blocks.
#pragma once

#include <memory>

#include "ports/database.h"

namespace quenta::platform {

struct AdoMembers;

// Connections are new objects of the class registered as ADODB.Connection. Belongs, with its connections, to the thread
// that created it, which must have joined an apartment. The connections may outlive it.
class AdoDatabase final : public ports::Database {
 public:
  AdoDatabase();

  // Throws base::Error when the machine has no such class.
  std::unique_ptr<ports::Connection> CreateConnection() override;

 private:
  std::shared_ptr<AdoMembers> members_;
};

}  // namespace quenta::platform
