// A reference to an object of the host, held and handed on but never looked into.
#pragma once

#include <memory>

namespace quenta::ports {

// Keeps the host's object alive as long as it is referred to. Platforms derive from it.
class HostObject {
 public:
  virtual ~HostObject() = default;
};

// Null where the host passed nothing.
using HostObjectRef = std::shared_ptr<HostObject>;

}  // namespace quenta::ports
