#include "platform/win32/files.h"

#include <algorithm>

#include <windows.h>

#include "platform/win32/handles.h"

namespace quenta::platform {
namespace {

OwnedFile Open(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation) noexcept {
  const HANDLE file = CreateFileW(path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
  return OwnedFile(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

bool WriteAll(HANDLE file, std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    constexpr std::size_t kBlock = 1 << 20;
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kBlock));
    if (!::WriteFile(file, bytes.data(), size, &written, nullptr) || written == 0) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

}  // namespace

std::optional<std::string> ReadWholeFile(const std::wstring& path) {
  const OwnedFile file =
      Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING);
  if (!file) return std::nullopt;
  std::string bytes;
  char block[16384];
  DWORD read = 0;
  do {
    if (!::ReadFile(file.get(), block, sizeof(block), &read, nullptr)) return std::nullopt;
    bytes.append(block, read);
  } while (read != 0);
  return bytes;
}

bool WriteWholeFile(const std::wstring& path, std::string_view bytes) noexcept {
  const OwnedFile file = Open(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
  return file && WriteAll(file.get(), bytes) && FlushFileBuffers(file.get());
}

bool AppendToFile(const std::wstring& path, std::string_view bytes) noexcept {
  const OwnedFile file = Open(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS);
  return file && WriteAll(file.get(), bytes);
}

}  // namespace quenta::platform
