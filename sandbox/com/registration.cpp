#include "sandbox/com/registration.h"

#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>

#include "sandbox/com/classes.h"
#include "sandbox/com/module.h"

namespace quenta::sandbox::com {
namespace {

constexpr const wchar_t* kClassesKey = L"Software\\Classes\\";
// The server that a class had before the sandbox came.
constexpr const wchar_t* kFormerServer = L"QuentaSandboxFormerServer";
// On a class that nobody served before.
constexpr const wchar_t* kOwnMark = L"QuentaSandbox";

struct KeyCloser {
  void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

bool IsWine() noexcept {
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
}

Key OpenKey(const std::wstring& path, bool create) noexcept {
  HKEY key = nullptr;
  const std::wstring full = kClassesKey + path;
  const LSTATUS status = create ? RegCreateKeyExW(HKEY_LOCAL_MACHINE, full.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE,
                                                  nullptr, &key, nullptr)
                                : RegOpenKeyExW(HKEY_LOCAL_MACHINE, full.c_str(), 0, KEY_READ | KEY_WRITE, &key);
  return Key(status == ERROR_SUCCESS ? key : nullptr);
}

std::optional<std::wstring> ReadText(HKEY key, const wchar_t* name) {
  DWORD bytes = 0;
  if (RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS) return std::nullopt;
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  text.resize(bytes / sizeof(wchar_t) - 1);
  return text;
}

bool WriteText(HKEY key, const wchar_t* name, const std::wstring& text) noexcept {
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes) == ERROR_SUCCESS;
}

bool WriteDefault(const std::wstring& path, const std::wstring& text) noexcept {
  const Key key = OpenKey(path, true);
  return key != nullptr && WriteText(key.get(), nullptr, text);
}

std::wstring ClassPath(const CreatableClass& made) {
  return std::wstring(L"CLSID\\") + made.identifier_text;
}

bool RegisterClass(const CreatableClass& made, const std::wstring& server) {
  const std::wstring path = ClassPath(made);
  const Key key = OpenKey(path + L"\\InprocServer32", true);
  if (key == nullptr) return false;
  bool is_foreign = ReadText(key.get(), kFormerServer).has_value();
  if (const auto present = ReadText(key.get(), nullptr); !is_foreign && present && *present != server) {
    // A copy of this DLL that lay somewhere else has nothing to be given back to.
    is_foreign = ReadText(key.get(), kOwnMark) == std::nullopt;
    if (is_foreign && !WriteText(key.get(), kFormerServer, *present)) return false;
  }
  if (!WriteText(key.get(), nullptr, server)) return false;
  if (is_foreign) return true;  // its other entries are right already
  return WriteText(key.get(), kOwnMark, L"") && WriteText(key.get(), L"ThreadingModel", L"Apartment") &&
         WriteDefault(path, made.title) && WriteDefault(path + L"\\ProgID", made.prog_id) &&
         WriteDefault(made.prog_id, made.title) &&
         WriteDefault(std::wstring(made.prog_id) + L"\\CLSID", made.identifier_text);
}

void DeleteTree(const std::wstring& path) noexcept {
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClassesKey + path).c_str());
}

bool UnregisterClass(const CreatableClass& made) {
  const std::wstring path = ClassPath(made);
  if (const Key key = OpenKey(path + L"\\InprocServer32", false)) {
    if (const std::optional<std::wstring> former = ReadText(key.get(), kFormerServer)) {
      return WriteText(key.get(), nullptr, *former) && RegDeleteValueW(key.get(), kFormerServer) == ERROR_SUCCESS;
    }
  }
  DeleteTree(path);
  DeleteTree(made.prog_id);
  return true;
}

}  // namespace

HRESULT Register() noexcept {
  if (!IsWine()) return E_ACCESSDENIED;
  try {
    const std::wstring server = ModulePath();
    if (server.empty()) return E_UNEXPECTED;
    for (const CreatableClass& made : CreatableClasses()) {
      if (RegisterClass(made, server)) continue;
      Unregister();
      return E_FAIL;
    }
    return S_OK;
  } catch (const std::bad_alloc&) {
    Unregister();
    return E_OUTOFMEMORY;
  }
}

HRESULT Unregister() noexcept {
  if (!IsWine()) return E_ACCESSDENIED;
  try {
    bool complete = true;
    for (const CreatableClass& made : CreatableClasses()) complete = UnregisterClass(made) && complete;
    return complete ? S_OK : E_FAIL;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace quenta::sandbox::com
