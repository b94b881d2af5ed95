// Self-registration: exactly the registry keys that this library owns, written and removed as one.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace quenta::platform {

// One value of a key below Software\Classes.
struct RegistryEntry {
  std::wstring key;
  std::wstring name;  // empty: the key's default value
  std::wstring text;
  // The 32-bit and the 64-bit library write this one alike, into a key that Windows keeps once for both.
  bool shared_by_widths = false;
  bool operator==(const RegistryEntry&) const = default;
};

// Everything that makes the library at this path known: class, ProgID, type library and interface.
std::vector<RegistryEntry> RegistrationEntries(const std::wstring& library_path);

// Where keys are written: a key of the registry below which the entries' keys stand.
struct RegistryPlace {
  HKEY root;
  std::wstring key;
};

// Writes all entries, or none: on failure what was there before is there again. Gives a Windows error code.
LSTATUS WriteEntries(const RegistryPlace& place, const std::vector<RegistryEntry>& entries);

// Removes the entries' values and then the keys, from the innermost outwards, that nothing else uses. The keys directly
// below the place (CLSID, Interface, TypeLib), which all programs share, stay. What is missing already is no failure.
LSTATUS RemoveEntries(const RegistryPlace& place, const std::vector<RegistryEntry>& entries);

// The entries without those that the library of the other width still needs.
std::vector<RegistryEntry> EntriesToRemove(const RegistryPlace& place, std::vector<RegistryEntry> entries);

// DllRegisterServer: for the machine, or for the user when the machine's registry is closed to the user.
HRESULT Register(HMODULE module) noexcept;

// DllUnregisterServer: removes the registration for the user and for the machine, as far as there is one.
HRESULT Unregister(HMODULE module) noexcept;

}  // namespace quenta::platform
