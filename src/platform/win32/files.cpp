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

bool Exists(const std::wstring& path) noexcept {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool Move(const std::wstring& from, const std::wstring& to) noexcept {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE;
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

unsigned long ReplaceByTheSystem(const std::wstring& path, const std::wstring& work,
                                 const std::wstring& backup) noexcept {
  return ::ReplaceFileW(path.c_str(), work.c_str(), backup.c_str(), REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr)
             ? ERROR_SUCCESS
             : GetLastError();
}

bool ReplaceWholeFile(const std::wstring& path, const std::wstring& work, std::string_view bytes, ReplaceCall replace) {
  if (!Exists(path)) return false;
  // Not beside the file's own name, where somebody may keep a copy.
  const std::wstring backup = work + L".old";
  bool replaced = WriteWholeFile(work, bytes) && replace(path, work, backup) == ERROR_SUCCESS;
  // The system may have moved the old file away and then failed to move the new one: back to the old one, or else on to
  // the new one, whichever can be moved.
  if (!replaced && !Exists(path) && !Move(backup, path)) replaced = Move(work, path);
  if (!Exists(path)) return false;
  DeleteFileW(backup.c_str());
  DeleteFileW(work.c_str());
  return replaced;
}

bool AppendToFile(const std::wstring& path, std::string_view bytes) noexcept {
  const OwnedFile file = Open(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS);
  return file && WriteAll(file.get(), bytes);
}

}  // namespace quenta::platform
