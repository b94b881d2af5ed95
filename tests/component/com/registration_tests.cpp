#include "platform/com/registration.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

#include "component/com/registry_snapshot.h"

namespace quenta::tests {
namespace {

using platform::RegistrationEntries;
using platform::RegistryEntry;
using platform::RegistryPlace;

constexpr wchar_t kPath[] = L"C:\\Aplicações ação\\Quenta\\Quenta_Produtos.dll";
constexpr wchar_t kClass[] = L"CLSID\\{4A92C481-A5C5-4BB8-93F7-8AE17CA463E4}";
constexpr wchar_t kInterface[] = L"Interface\\{920E8948-751F-44A5-A439-286270191513}";
constexpr wchar_t kLibrary[] = L"TypeLib\\{76ECBA44-EE2E-4F96-81AE-B933BC2300FD}";

// Each test works below a key of its own, which goes with it.
class RegistrationTest : public testing::Test {
 protected:
  ~RegistrationTest() override { RegDeleteTreeW(HKEY_CURRENT_USER, place.key.c_str()); }

  RegistrySnapshot Snapshot() const { return TakeSnapshot(place.root, place.key); }
  void Write(const std::wstring& key, const std::wstring& name, const std::wstring& text, DWORD options = 0) {
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyExW(place.root, (place.key + L"\\" + key).c_str(), 0, nullptr, options, KEY_ALL_ACCESS,
                              nullptr, &opened, nullptr),
              ERROR_SUCCESS);
    RegSetValueExW(opened, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
  }

  const RegistryPlace place{HKEY_CURRENT_USER, L"Software\\QuentaTests\\" + std::to_wstring(GetCurrentProcessId())};
  const std::vector<RegistryEntry> entries = RegistrationEntries(kPath);
};

TEST_F(RegistrationTest, WritesExactlyItsOwnKeys) {
  ASSERT_EQ(WriteEntries(place, entries), ERROR_SUCCESS);
  const std::wstring platform = sizeof(void*) == 8 ? L"win64" : L"win32";
  const std::wstring class_key = kClass, interface_key = kInterface, library_key = kLibrary;
  const RegistrySnapshot expected_below = {
      {L"CLSID", L""},
      {class_key, L""},
      {class_key + L":", L"Quenta_Produtos.General"},
      {class_key + L"\\InprocServer32", L""},
      {class_key + L"\\InprocServer32:", kPath},
      {class_key + L"\\InprocServer32:ThreadingModel", L"Apartment"},
      {class_key + L"\\ProgID", L""},
      {class_key + L"\\ProgID:", L"Quenta_Produtos.General"},
      {class_key + L"\\TypeLib", L""},
      {class_key + L"\\TypeLib:", L"{76ECBA44-EE2E-4F96-81AE-B933BC2300FD}"},
      {class_key + L"\\Version", L""},
      {class_key + L"\\Version:", L"1.0"},
      {L"Interface", L""},
      {interface_key, L""},
      {interface_key + L":", L"_General"},
      {interface_key + L"\\ProxyStubClsid32", L""},
      {interface_key + L"\\ProxyStubClsid32:", L"{00020424-0000-0000-C000-000000000046}"},
      {interface_key + L"\\TypeLib", L""},
      {interface_key + L"\\TypeLib:", L"{76ECBA44-EE2E-4F96-81AE-B933BC2300FD}"},
      {interface_key + L"\\TypeLib:Version", L"1.0"},
      {L"Quenta_Produtos.General", L""},
      {L"Quenta_Produtos.General:", L"Quenta_Produtos.General"},
      {L"Quenta_Produtos.General\\CLSID", L""},
      {L"Quenta_Produtos.General\\CLSID:", L"{4A92C481-A5C5-4BB8-93F7-8AE17CA463E4}"},
      {L"TypeLib", L""},
      {library_key, L""},
      {library_key + L"\\1.0", L""},
      {library_key + L"\\1.0:", L"Quenta_Produtos"},
      {library_key + L"\\1.0\\0", L""},
      {library_key + L"\\1.0\\0\\" + platform, L""},
      {library_key + L"\\1.0\\0\\" + platform + L":", kPath},
      {library_key + L"\\1.0\\FLAGS", L""},
      {library_key + L"\\1.0\\FLAGS:", L"0"},
      {library_key + L"\\1.0\\HELPDIR", L""},
      {library_key + L"\\1.0\\HELPDIR:", L"C:\\Aplicações ação\\Quenta"},
  };
  RegistrySnapshot expected{{place.key, L""}};
  for (const auto& [key, text] : expected_below) expected[place.key + L"\\" + key] = text;
  EXPECT_EQ(Snapshot(), expected);

  ASSERT_EQ(WriteEntries(place, entries), ERROR_SUCCESS) << "a second time";
  EXPECT_EQ(Snapshot(), expected);
}

TEST_F(RegistrationTest, RemovesItsOwnKeysAndNothingElse) {
  for (const wchar_t* shared : {L"CLSID", L"Interface", L"TypeLib"}) Write(shared, L"", L"");
  Write(L"CLSID\\{00000000-0000-0000-0000-000000000001}", L"", L"somebody else's");
  const RegistrySnapshot before = Snapshot();
  ASSERT_EQ(WriteEntries(place, entries), ERROR_SUCCESS);
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(RemoveEntries(place, entries), ERROR_SUCCESS) << "nothing left to remove is no failure";
    EXPECT_EQ(Snapshot(), before);
  }
  ASSERT_EQ(WriteEntries(place, entries), ERROR_SUCCESS);
  Write(std::wstring(kClass) + L"\\Implemented Categories", L"", L"added by a tool");
  ASSERT_EQ(RemoveEntries(place, entries), ERROR_SUCCESS);
  EXPECT_EQ(Snapshot().count(place.key + L"\\" + kClass + L"\\Implemented Categories:"), 1U);
  EXPECT_EQ(Snapshot().count(place.key + L"\\" + kClass + L"\\InprocServer32"), 0U);
}

TEST_F(RegistrationTest, AFailureHalfWayRestoresWhatWasThere) {
  Write(std::wstring(kClass) + L"\\InprocServer32", L"", L"C:\\earlier version.dll");
  Write(L"Interface", L"", L"");
  RegDeleteTreeW(place.root, (place.key + L"\\Interface").c_str());
  // Below a key that lasts only until the next start, a lasting key cannot be made.
  Write(L"TypeLib", L"", L"", REG_OPTION_VOLATILE);
  const RegistrySnapshot before = Snapshot();
  EXPECT_NE(WriteEntries(place, entries), ERROR_SUCCESS);
  RegistrySnapshot after = Snapshot();
  // Shared first levels stay when they are needed by nobody: they were made for us, so they go too.
  EXPECT_EQ(after, before);
}

TEST_F(RegistrationTest, TheOtherWidthKeepsWhatItShares) {
  ASSERT_EQ(WriteEntries(place, entries), ERROR_SUCCESS);
  const std::wstring other = sizeof(void*) == 8 ? L"win32" : L"win64";
  Write(std::wstring(kLibrary) + L"\\1.0\\0\\" + other, L"", L"C:\\other width.dll");
  ASSERT_EQ(RemoveEntries(place, EntriesToRemove(place, entries)), ERROR_SUCCESS);
  const RegistrySnapshot after = Snapshot();
  EXPECT_EQ(after.count(place.key + L"\\Quenta_Produtos.General\\CLSID:"), 1U);
  EXPECT_EQ(after.count(place.key + L"\\" + kLibrary + L"\\1.0\\HELPDIR:"), 1U);
  EXPECT_EQ(after.count(place.key + L"\\" + kClass), 0U);
  RegDeleteTreeW(place.root, (place.key + L"\\" + kLibrary + L"\\1.0\\0\\" + other).c_str());
  ASSERT_EQ(RemoveEntries(place, EntriesToRemove(place, entries)), ERROR_SUCCESS);
  EXPECT_EQ(Snapshot().count(place.key + L"\\Quenta_Produtos.General"), 0U) << "the last one takes it all";
}

}  // namespace
}  // namespace quenta::tests
