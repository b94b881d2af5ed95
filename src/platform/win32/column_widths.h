// The part of a list's window that outlives it: how wide the user has made the columns.
#pragma once

#include <vector>

namespace quenta::platform {

// In 1/96 inch, so that they fit on a monitor of any resolution.
class ColumnWidths {
 public:
  virtual ~ColumnWidths() = default;
  virtual std::vector<int> Widths() const = 0;
  // Ignored when the number of columns is another.
  virtual void SetWidths(const std::vector<int>& widths) = 0;
};

}  // namespace quenta::platform
