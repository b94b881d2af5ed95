// The part of a list's window that outlives it: what the user has made of its columns and of the order of its rows.
#pragma once

#include "platform/win32/window_memory.h"

namespace quenta::platform {

class ListMemory {
 public:
  virtual ~ListMemory() = default;
  virtual RememberedList Remembered() const = 0;
  // What does not fit the list, remembered by another version, is ignored. Rows that are there already are sorted.
  virtual void Restore(const RememberedList& remembered) = 0;
};

}  // namespace quenta::platform
