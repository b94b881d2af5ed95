#include "platform/win32/settings.h"

#include <algorithm>

#include <windows.h>

#include <shlobj.h>

#include "base/error.h"
#include "base/text.h"
#include "platform/win32/activation_context.h"
#include "platform/win32/files.h"
#include "platform/win32/handles.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

constexpr std::size_t kMostCharacters = 3500;

// The process's own view of the registry first; a 64-bit process then looks where a 32-bit suite has written.
constexpr REGSAM kViews[] = {KEY_READ, KEY_READ | KEY_WOW64_32KEY};
static_assert(KEY_READ == 0x20019);

OwnedKey OpenKey(ports::RootKey root, const std::wstring& subkey, REGSAM access) noexcept {
  if (root == 0) return {};
  // The predefined keys are numbers of 32 bits, extended by their sign.
  const auto predefined = reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(root)));
  HKEY key = nullptr;
  if (RegOpenKeyExW(predefined, subkey.c_str(), 0, access, &key) != ERROR_SUCCESS) return {};
  return OwnedKey(key);
}

std::optional<std::wstring> ReadText(HKEY key, const std::wstring& name) {
  std::wstring text(256, L'\0');
  while (true) {
    DWORD type = 0;
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status =
        RegQueryValueExW(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
    // Another process may have made the value longer between two questions.
    if (status == ERROR_MORE_DATA) {
      text.resize(size / sizeof(wchar_t) + 1);
      continue;
    }
    if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return std::nullopt;
    text.resize(std::min<std::size_t>(size / sizeof(wchar_t), text.size()));
    text.resize(std::min(text.find(L'\0'), text.size()));
    if (text.size() > kMostCharacters) text.resize(kMostCharacters);
    return text;
  }
}

std::string LocaleText(LCTYPE what) {
  wchar_t text[80];  // the longest of all locale texts
  const int length = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, what, text, static_cast<int>(std::size(text)));
  return length > 1 ? Narrow({text, static_cast<std::size_t>(length) - 1}) : std::string();
}

// Folders are handed on without the backslash that Windows puts behind some of them.
std::string FolderText(std::wstring_view path) {
  if (path.ends_with(L'\\')) path.remove_suffix(1);
  return Narrow(path);
}

// Windows' pattern letters are those of the suite's formats in another case; quotes around fixed text fall away.
std::string DatePattern(const std::string& pattern) {
  std::string result;
  for (const char letter : pattern) {
    if (letter == '\'') continue;
    result += letter == 'M' ? 'm' : letter;
  }
  return result;
}

}  // namespace

std::optional<std::string> Settings::ReadRegistryText(ports::RootKey root, const std::string& subkey,
                                                      const std::string& value_name) {
  const std::wstring wide_subkey = Wide(subkey);
  const std::wstring wide_name = Wide(value_name);
  for (const REGSAM access : kViews) {
    const OwnedKey key = OpenKey(root, wide_subkey, access);
    if (!key) continue;
    if (const auto text = ReadText(key.get(), wide_name)) return Narrow(*text);
  }
  return std::nullopt;
}

std::vector<std::string> Settings::EnumerateSubkeys(ports::RootKey root, const std::string& subkey) {
  std::vector<std::string> names;
  const std::wstring wide_subkey = Wide(subkey);
  for (const REGSAM access : kViews) {
    const OwnedKey key = OpenKey(root, wide_subkey, access);
    if (!key) continue;
    wchar_t name[256];  // a key's name has at most 255 characters
    for (DWORD index = 0;; ++index) {
      auto length = static_cast<DWORD>(std::size(name));
      if (RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
      names.push_back(Narrow({name, length}));
    }
    break;
  }
  return names;
}

std::string Settings::SpecialFolder(int number) {
  PIDLIST_ABSOLUTE items = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, number, &items))) return {};
  wchar_t path[MAX_PATH] = L"";
  const BOOL found = SHGetPathFromIDListW(items, path);
  CoTaskMemFree(items);
  return found ? FolderText(path) : std::string();
}

std::string Settings::TempFolder() {
  wchar_t path[MAX_PATH + 1];
  const DWORD length = GetTempPathW(static_cast<DWORD>(std::size(path)), path);
  return length < std::size(path) ? FolderText({path, length}) : std::string();
}

std::optional<std::string> Settings::ReadFile(const std::string& path) {
  return ReadWholeFile(Wide(path));
}

bool Settings::ReplaceContents(const std::string& path, const std::string& work_path, const std::string& bytes) {
  return ReplaceWholeFile(Wide(path), Wide(work_path), bytes);
}

std::string Settings::InstallationFolder() {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      break;
    }
    path.resize(path.size() * 2);
  }
  const std::size_t end = path.rfind(L'\\');
  return end == std::wstring::npos ? std::string() : Narrow(path.substr(0, end));
}

bool Settings::AppendFile(const std::string& path, const std::string& bytes) {
  return AppendToFile(Wide(path), bytes);
}

void Settings::WriteFile(const std::string& path, const std::string& bytes) {
  if (WriteWholeFile(Wide(path), bytes)) return;
  const DWORD reason = GetLastError();
  switch (reason) {
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      throw base::Error(base::error_number::kPermissionDenied, "Permission denied: " + path);
    case ERROR_PATH_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:  // of a file that is created: its drive
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
      throw base::Error(base::error_number::kPathNotFound, "Path not found: " + path);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      throw base::Error(base::error_number::kDiskFull, "Disk full: " + path);
    default:
      throw base::Error(base::error_number::kDeviceError,
                        "Device error " + base::DecimalText(static_cast<long long>(reason)) + ": " + path);
  }
}

base::Locale Settings::UserLocale() {
  base::Locale locale;
  const auto take = [](std::string& into, const std::string& text) {
    if (!text.empty()) into = text;
  };
  take(locale.decimal, LocaleText(LOCALE_SDECIMAL));
  take(locale.thousands, LocaleText(LOCALE_STHOUSAND));
  take(locale.short_date, DatePattern(LocaleText(LOCALE_SSHORTDATE)));
  for (std::size_t i = 0; i < locale.month_names.size(); ++i) {
    take(locale.month_names[i], LocaleText(LOCALE_SMONTHNAME1 + static_cast<LCTYPE>(i)));
  }
  return locale;
}

}  // namespace quenta::platform
