#include "platform/win32/window_memory_file.h"

#include <windows.h>

#include <shlobj.h>

#include "platform/win32/files.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {

std::string DefaultWindowMemoryPath() {
  wchar_t folder[MAX_PATH];
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return {};
  return Narrow(folder) + "\\Torvik Software\\Quenta_Produtos\\windows.ini";
}

RememberedForm WindowMemoryFile::Recall(const std::string& form) const noexcept {
  try {
    if (const auto text = path_.empty() ? std::nullopt : ReadWholeFile(Wide(path_))) {
      return WindowMemory::Parse(*text).Find(form);
    }
  } catch (...) {  // a form opens where it would open the first time
  }
  return {};
}

void WindowMemoryFile::Remember(const std::string& form, const RememberedForm& record) const noexcept {
  if (path_.empty()) return;
  try {
    const std::wstring path = Wide(path_);
    // Each folder of the path that is missing; one that is there already is no error.
    for (std::size_t end = path.find(L'\\', 3); end != std::wstring::npos; end = path.find(L'\\', end + 1)) {
      CreateDirectoryW(path.substr(0, end).c_str(), nullptr);
    }
    WindowMemory memory = WindowMemory::Parse(ReadWholeFile(path).value_or(""));
    memory.Remember(form, record);
    const std::wstring work = path + L".tmp";
    if (!WriteWholeFile(work, memory.Serialise()) ||
        !MoveFileExW(work.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
      DeleteFileW(work.c_str());
    }
  } catch (...) {  // only the comfort of a remembered place is lost
  }
}

}  // namespace quenta::platform
