// Dialogs in the user's own message font, on which their units and with them all their sizes depend.
#pragma once

#include <windows.h>

#include <cstddef>
#include <vector>

namespace quenta::sandbox::host {

// A dialog template of the program's resources with the system's message font in place of its own.
class DialogTemplate {
 public:
  explicit DialogTemplate(int resource_id);
  const DLGTEMPLATE* get() const noexcept { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

 private:
  std::vector<DWORD> words_;  // templates stand on 4-byte boundaries
};

}  // namespace quenta::sandbox::host
