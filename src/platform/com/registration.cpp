#include "platform/com/registration.h"

#include <ole2.h>

#include <array>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include "platform/com/quenta_produtos.h"
#include "platform/com/type_information.h"

namespace quenta::platform {
namespace {

constexpr wchar_t kProgId[] = L"Quenta_Produtos.General";
constexpr wchar_t kLibraryName[] = L"Quenta_Produtos";
constexpr wchar_t kVersion[] = L"1.0";
// OLE's own marshaller, which works from the type library.
constexpr wchar_t kAutomationMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";
constexpr const wchar_t* kOtherPlatform = sizeof(void*) == 8 ? L"win32" : L"win64";

struct KeyCloser {
  void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using OpenKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

std::wstring GuidText(REFGUID guid) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring FolderOf(const std::wstring& path) {
  return path.substr(0, path.find_last_of(L"\\/"));
}

std::wstring Join(const std::wstring& parent, const std::wstring& child) {
  if (parent.empty() || child.empty()) return parent + child;
  return parent + L'\\' + child;
}

LSTATUS Open(const RegistryPlace& place, const std::wstring& key, REGSAM access, OpenKey& opened) {
  HKEY handle = nullptr;
  const LSTATUS status = RegOpenKeyExW(place.root, Join(place.key, key).c_str(), 0, access, &handle);
  opened.reset(handle);
  return status;
}

// Any value's bytes with their type, so that a failed registration can put back what it overwrote.
struct RawValue {
  DWORD type = REG_NONE;
  std::vector<BYTE> bytes;
};

std::optional<RawValue> ReadValue(HKEY key, const std::wstring& name) {
  RawValue value;
  DWORD size = 0;
  if (RegQueryValueExW(key, name.c_str(), nullptr, &value.type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
  value.bytes.resize(size);
  if (RegQueryValueExW(key, name.c_str(), nullptr, &value.type, value.bytes.data(), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return value;
}

LSTATUS WriteText(HKEY key, const std::wstring& name, const std::wstring& text) {
  return RegSetValueExW(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

// Adds the key and the keys above it, except the first level below the place: those belong to everybody.
void AddWithParents(std::wstring key, std::set<std::wstring>& keys) {
  keys.insert(key);
  for (std::size_t slash = key.rfind(L'\\'); slash != std::wstring::npos && key.find(L'\\') != slash;
       slash = key.rfind(L'\\')) {
    key.resize(slash);
    keys.insert(key);
  }
}

bool IsUnused(HKEY key) {
  DWORD subkeys = 0;
  DWORD values = 0;
  return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr, nullptr,
                          nullptr, nullptr) == ERROR_SUCCESS &&
         subkeys == 0 && values == 0;
}

LSTATUS RemoveKeyIfUnused(const RegistryPlace& place, const std::wstring& key) {
  OpenKey opened;
  const LSTATUS found = Open(place, key, KEY_READ, opened);
  if (found == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (found != ERROR_SUCCESS) return found;
  if (!IsUnused(opened.get())) return ERROR_SUCCESS;
  opened.reset();
  return RegDeleteKeyW(place.root, Join(place.key, key).c_str());
}

// Takes back what a registration has written so far, unless it was completed.
class Rollback {
 public:
  explicit Rollback(const RegistryPlace& place) : place_(place) {}
  ~Rollback() {
    if (completed_) return;
    try {
      for (auto step = steps_.rbegin(); step != steps_.rend(); ++step) Undo(*step);
    } catch (const std::bad_alloc&) {
      // Without memory for the key's name there is nothing left to try.
    }
  }
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;

  void KeyCreated(const std::wstring& key) { steps_.push_back({key, {}, {}, true}); }
  void ValueWritten(const RegistryEntry& entry, std::optional<RawValue> before) {
    steps_.push_back({entry.key, entry.name, std::move(before), false});
  }
  void Complete() noexcept { completed_ = true; }

 private:
  struct Step {
    std::wstring key;
    std::wstring name;
    std::optional<RawValue> before;
    bool created_key;
  };

  void Undo(const Step& step) const {
    if (step.created_key) {
      RemoveKeyIfUnused(place_, step.key);
      return;
    }
    OpenKey key;
    if (Open(place_, step.key, KEY_SET_VALUE, key) != ERROR_SUCCESS) return;
    if (step.before) {
      RegSetValueExW(key.get(), step.name.c_str(), 0, step.before->type, step.before->bytes.data(),
                     static_cast<DWORD>(step.before->bytes.size()));
    } else {
      RegDeleteValueW(key.get(), step.name.c_str());
    }
  }

  const RegistryPlace& place_;
  std::vector<Step> steps_;
  bool completed_ = false;
};

// Opens the key, creating what is missing of it level by level, so that each created key can be taken back.
LSTATUS Create(const RegistryPlace& place, const std::wstring& path, Rollback& rollback, OpenKey& opened) {
  for (std::size_t end = path.find(L'\\');; end = path.find(L'\\', end + 1)) {
    const std::wstring key = path.substr(0, end);
    HKEY handle = nullptr;
    DWORD disposition = 0;
    const LSTATUS status =
        RegCreateKeyExW(place.root, Join(place.key, key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_READ | KEY_SET_VALUE, nullptr, &handle, &disposition);
    if (status != ERROR_SUCCESS) return status;
    opened.reset(handle);
    if (disposition == REG_CREATED_NEW_KEY) rollback.KeyCreated(key);
    if (end == std::wstring::npos) return ERROR_SUCCESS;
  }
}

RegistryPlace Machine() {
  return {HKEY_LOCAL_MACHINE, L"Software\\Classes"};
}
RegistryPlace User() {
  return {HKEY_CURRENT_USER, L"Software\\Classes"};
}

HRESULT ResultOf(LSTATUS status) noexcept {
  return status == ERROR_SUCCESS ? S_OK : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

}  // namespace

std::vector<RegistryEntry> RegistrationEntries(const std::wstring& library_path) {
  const std::wstring class_id = GuidText(__uuidof(::General));
  const std::wstring library_id = GuidText(LIBID_Quenta_Produtos);
  const std::wstring class_key = L"CLSID\\" + class_id;
  const std::wstring interface_key = L"Interface\\" + GuidText(__uuidof(_General));
  const std::wstring library_key = L"TypeLib\\" + library_id + L"\\" + kVersion;
  return {
      {class_key, L"", kProgId},
      {class_key + L"\\InprocServer32", L"", library_path},
      {class_key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {class_key + L"\\ProgID", L"", kProgId},
      {class_key + L"\\TypeLib", L"", library_id},
      {class_key + L"\\Version", L"", kVersion},
      {interface_key, L"", L"_General"},
      {interface_key + L"\\ProxyStubClsid32", L"", kAutomationMarshaller},
      {interface_key + L"\\TypeLib", L"", library_id},
      {interface_key + L"\\TypeLib", L"Version", kVersion},
      {library_key + L"\\0\\" + kPlatform, L"", library_path},
      {kProgId, L"", kProgId, true},
      {std::wstring(kProgId) + L"\\CLSID", L"", class_id, true},
      {library_key, L"", kLibraryName, true},
      {library_key + L"\\FLAGS", L"", L"0", true},
      {library_key + L"\\HELPDIR", L"", FolderOf(library_path), true},
  };
}

LSTATUS WriteEntries(const RegistryPlace& place, const std::vector<RegistryEntry>& entries) {
  Rollback rollback(place);
  for (const RegistryEntry& entry : entries) {
    OpenKey key;
    LSTATUS status = Create(place, entry.key, rollback, key);
    if (status != ERROR_SUCCESS) return status;
    rollback.ValueWritten(entry, ReadValue(key.get(), entry.name));
    status = WriteText(key.get(), entry.name, entry.text);
    if (status != ERROR_SUCCESS) return status;
  }
  rollback.Complete();
  return ERROR_SUCCESS;
}

LSTATUS RemoveEntries(const RegistryPlace& place, const std::vector<RegistryEntry>& entries) {
  LSTATUS first_failure = ERROR_SUCCESS;
  const auto note = [&](LSTATUS status) {
    if (first_failure == ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) first_failure = status;
  };
  std::set<std::wstring> keys;
  for (const RegistryEntry& entry : entries) {
    AddWithParents(entry.key, keys);
    OpenKey key;
    const LSTATUS found = Open(place, entry.key, KEY_SET_VALUE, key);
    note(found == ERROR_SUCCESS ? RegDeleteValueW(key.get(), entry.name.c_str()) : found);
  }
  // A key sorts before the keys below it, so the reverse order goes from the innermost outwards.
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) note(RemoveKeyIfUnused(place, *key));
  return first_failure;
}

std::vector<RegistryEntry> EntriesToRemove(const RegistryPlace& place, std::vector<RegistryEntry> entries) {
  const std::wstring other =
      L"TypeLib\\" + GuidText(LIBID_Quenta_Produtos) + L"\\" + kVersion + L"\\0\\" + kOtherPlatform;
  OpenKey key;
  if (Open(place, other, KEY_READ, key) == ERROR_SUCCESS) {
    std::erase_if(entries, [](const RegistryEntry& entry) { return entry.shared_by_widths; });
  }
  return entries;
}

HRESULT Register(HMODULE module) noexcept {
  try {
    const std::vector<RegistryEntry> entries = RegistrationEntries(ModulePath(module));
    const LSTATUS status = WriteEntries(Machine(), entries);
    return ResultOf(status == ERROR_ACCESS_DENIED ? WriteEntries(User(), entries) : status);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT Unregister(HMODULE module) noexcept {
  try {
    const std::vector<RegistryEntry> entries = RegistrationEntries(ModulePath(module));
    const LSTATUS user = RemoveEntries(User(), EntriesToRemove(User(), entries));
    const LSTATUS machine = RemoveEntries(Machine(), EntriesToRemove(Machine(), entries));
    return ResultOf(user != ERROR_SUCCESS ? user : machine);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace quenta::platform
