// The file in which the windows' places are kept for each user.
#pragma once

#include <string>

#include "platform/win32/window_memory.h"

namespace quenta::platform {

// "Torvik Software\Quenta_Produtos\windows.ini" in the user's application data; empty when there is no such folder.
std::string DefaultWindowMemoryPath();

class WindowMemoryFile {
 public:
  // An empty path remembers nothing.
  explicit WindowMemoryFile(std::string path) : path_(std::move(path)) {}

  // Neither fails: a missing, damaged or locked file is as good as an empty one. Remembering keeps what other
  // processes have written about other forms meanwhile.
  RememberedForm Recall(const std::string& form) const noexcept;
  void Remember(const std::string& form, const RememberedForm& record) const noexcept;

 private:
  std::string path_;
};

}  // namespace quenta::platform
