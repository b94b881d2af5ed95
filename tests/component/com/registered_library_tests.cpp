// The library as the machine knows it: registered, found by its ProgID, removed again.
// Run on a machine, or a Wine prefix, where it may be registered already: that registration is there again afterwards.
#include <windows.h>

#include <ole2.h>

#include <cwchar>
#include <string>

#include <gtest/gtest.h>

#include "base/text.h"
#include "component/com/com_fixture.h"
#include "component/com/registry_snapshot.h"

namespace quenta::tests {
namespace {

constexpr wchar_t kServerKey[] = L"Software\\Classes\\CLSID\\{4A92C481-A5C5-4BB8-93F7-8AE17CA463E4}\\InprocServer32";

// A path of the build's own file system, as a program under Wine reaches it.
std::wstring BuildPath(const char* path) {
  const std::wstring wide = platform::ToWide(path);
  return path[0] == '/' ? L"Z:" + wide : wide;
}

class LoadedLibrary {
 public:
  explicit LoadedLibrary(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {
    EXPECT_NE(module_, nullptr) << base::FromUtf16(platform::Utf16View(path.data(), path.size()));
  }
  ~LoadedLibrary() { FreeLibrary(module_); }
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  // Calls one of the exports that take nothing.
  HRESULT Call(const char* name) const {
    const FARPROC address = GetProcAddress(module_, name);
    if (address == nullptr) return E_NOTIMPL;
    return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(address))();
  }

 private:
  HMODULE module_;
};

RegistrySnapshot Everything() {
  RegistrySnapshot all = TakeSnapshot(HKEY_LOCAL_MACHINE, L"Software\\Classes");
  for (const auto& [key, text] : TakeSnapshot(HKEY_CURRENT_USER, L"Software\\Classes")) all[L"HKCU\\" + key] = text;
  return all;
}

// What stands in the one and not in the other, for a failure's message.
std::string Difference(const RegistrySnapshot& before, const RegistrySnapshot& after) {
  std::string lines;
  const auto add = [&](const char* sign, const RegistrySnapshot& from, const RegistrySnapshot& other) {
    for (const auto& [key, text] : from) {
      const auto found = other.find(key);
      if (found == other.end() || found->second != text) {
        lines += sign + platform::FromWide(key.c_str()) + " = " + platform::FromWide(text.c_str()) + "\n";
      }
    }
  };
  add("- ", before, after);
  add("+ ", after, before);
  return lines;
}

// A copy of the library in a folder that no code page can spell, with no registration to begin with.
class RegisteredLibraryTest : public testing::Test {
 protected:
  void SetUp() override {
    wchar_t path[1024]{};
    DWORD size = sizeof(path);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kServerKey, nullptr, RRF_RT_REG_SZ, nullptr, path, &size) == ERROR_SUCCESS) {
      // Of a library that is gone only its keys are left; they go, too.
      if (GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES) previous = path;
    }
    GetTempPathW(1024, path);
    folder = path + std::wstring(L"Aplicações 漢字 ") + std::to_wstring(GetCurrentProcessId()) + L"-" +
             std::to_wstring(GetTickCount64());
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    library = folder + L"\\Quenta_Produtos.dll";
    ASSERT_TRUE(CopyFileW(BuildPath(QUENTA_LIBRARY).c_str(), library.c_str(), TRUE));
    ASSERT_EQ(LoadedLibrary(library).Call("DllUnregisterServer"), S_OK);
  }
  void TearDown() override {
    DeleteFileW(library.c_str());
    RemoveDirectoryW(folder.c_str());
    if (!previous.empty()) {
      EXPECT_EQ(LoadedLibrary(previous).Call("DllRegisterServer"), S_OK);
    }
  }

  std::wstring previous;
  std::wstring folder;
  std::wstring library;
};

TEST_F(RegisteredLibraryTest, RegistersAndRemovesExactlyItsOwn) {
  const LoadedLibrary loaded(library);
  const RegistrySnapshot before = Everything();
  ASSERT_EQ(loaded.Call("DllRegisterServer"), S_OK);
  const RegistrySnapshot registered = Everything();
  EXPECT_GT(registered.size(), before.size());
  EXPECT_EQ(registered.at(kServerKey + std::wstring(L":")), library);
  EXPECT_EQ(loaded.Call("DllRegisterServer"), S_OK) << "a second time";
  EXPECT_EQ(Difference(registered, Everything()), "");
  EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(Difference(before, Everything()), "");
  EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK) << "a second time";
}

TEST_F(RegisteredLibraryTest, LivesAndEndsWithCom) {
  const LoadedLibrary loaded(library);
  ASSERT_EQ(loaded.Call("DllRegisterServer"), S_OK);
  for (int life = 0; life < 2; ++life) {
    const Apartment apartment;
    CLSID class_id{};
    ASSERT_EQ(CLSIDFromProgID(L"Quenta_Produtos.General", &class_id), S_OK);
    ComPtr<_General> general;
    ASSERT_EQ(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_General), general.ReceiveVoid()),
              S_OK);
    EXPECT_EQ(loaded.Call("DllCanUnloadNow"), S_FALSE);
    EXPECT_EQ(LateCall(*general.Get(), L"Registo", {Typed(VT_EMPTY), Number(1)}).outcome, S_OK) << "without a session";

    ComPtr<ITypeLib> registered;
    const GUID library_id{0x76ECBA44, 0xEE2E, 0x4F96, {0x81, 0xAE, 0xB9, 0x33, 0xBC, 0x23, 0x00, 0xFD}};
    EXPECT_EQ(LoadRegTypeLib(library_id, 1, 0, 0, registered.Receive()), S_OK);
    Bstr name;
    if (registered) registered->GetDocumentation(-1, name.Receive(), nullptr, nullptr, nullptr);
    EXPECT_EQ(name.Text(), "Quenta_Produtos");

    if (life == 1) {
      general.Reset();
      EXPECT_EQ(loaded.Call("DllCanUnloadNow"), S_OK);
    }
  }
  EXPECT_EQ(loaded.Call("DllCanUnloadNow"), S_OK) << "COM has ended";
  EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK);
}

TEST_F(RegisteredLibraryTest, LeavesNothingBehindWhenItIsUnloadedBeforeComEnds) {
  const Apartment apartment;
  {
    const LoadedLibrary loaded(library);
    ASSERT_EQ(loaded.Call("DllRegisterServer"), S_OK);
    CLSID class_id{};
    ASSERT_EQ(CLSIDFromProgID(L"Quenta_Produtos.General", &class_id), S_OK);
    ComPtr<IUnknown> general;
    ASSERT_EQ(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, general.ReceiveVoid()), S_OK);
    general.Reset();
    EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK);
  }
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(library.c_str()), nullptr);
  // What the library had left with COM would be called now, and is no longer there.
}

}  // namespace
}  // namespace quenta::tests
