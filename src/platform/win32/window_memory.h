// What the windows remember between two runs: place and size of each form, and of its lists the widths of the columns
// and the order of the rows. The text of the file, and no file access.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/list_view.h"

namespace quenta::platform {

struct RememberedList {
  std::vector<int> widths;  // of the columns, in 1/96 inch
  controls::ListSort sort;  // in lists that can be sorted
  bool operator==(const RememberedList&) const = default;
};

struct RememberedForm {
  struct Place {
    int left = 0;  // physical pixels of the desktop
    int top = 0;
    int width = 0;  // in 1/96 inch, so that it fits on a monitor of any resolution
    int height = 0;
    bool operator==(const Place&) const = default;
  };
  std::optional<Place> place;
  std::map<std::string, RememberedList> lists;  // by name
  bool operator==(const RememberedForm&) const = default;
};

class WindowMemory {
 public:
  // Takes what it understands and leaves the rest: a damaged file costs a remembered place, never an error.
  static WindowMemory Parse(std::string_view text);
  std::string Serialise() const;

  // An empty record when the form is not known.
  const RememberedForm& Find(const std::string& form) const;
  void Remember(const std::string& form, RememberedForm record) { forms_[form] = std::move(record); }

  bool operator==(const WindowMemory&) const = default;

 private:
  std::map<std::string, RememberedForm> forms_;
};

}  // namespace quenta::platform
