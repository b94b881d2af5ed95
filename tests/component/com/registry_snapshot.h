// A readable copy of a part of the registry, for comparing before and after.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

namespace quenta::tests {

// "key", and "key:value name" with the value's text, for everything below a key. Keys in the order of their names.
using RegistrySnapshot = std::map<std::wstring, std::wstring>;

inline void AddToSnapshot(HKEY root, const std::wstring& key, RegistrySnapshot& snapshot) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return;
  snapshot[key] = L"";
  std::vector<wchar_t> name(16384);
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    if (RegEnumValueW(opened, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    std::vector<wchar_t> text(2048);
    DWORD bytes = static_cast<DWORD>((text.size() - 1) * sizeof(wchar_t));
    RegQueryValueExW(opened, name.data(), nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
    snapshot[key + L":" + name.data()] = text.data();
  }
  for (DWORD index = 0;; ++index) {
    DWORD length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(opened, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    AddToSnapshot(root, key + L"\\" + name.data(), snapshot);
  }
  RegCloseKey(opened);
}

inline RegistrySnapshot TakeSnapshot(HKEY root, const std::wstring& key) {
  RegistrySnapshot snapshot;
  AddToSnapshot(root, key, snapshot);
  return snapshot;
}

}  // namespace quenta::tests
