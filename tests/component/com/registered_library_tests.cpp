// The library as the machine knows it: registered, found by its ProgID, used by a script host, removed again.
// Run on a machine, or a Wine prefix, where it may be registered already: that registration is there again afterwards.
#include <windows.h>

#include <ole2.h>

#include <cwchar>
#include <fstream>
#include <sstream>
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

std::string FileText(const std::wstring& path) {
  std::ifstream file(path.c_str(), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return base::ReplaceAll(text.str(), "\r", "");
}

// A copy of the library in a folder that no code page can spell, with no registration to begin with.
class RegisteredLibraryTest : public testing::TestWithParam<const char*> {
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
    ASSERT_TRUE(CopyFileW(BuildPath(GetParam()).c_str(), library.c_str(), TRUE));
    ASSERT_EQ(LoadedLibrary(library).Call("DllUnregisterServer"), S_OK);
  }
  void TearDown() override {
    DeleteFileW((folder + L"\\forms.txt").c_str());
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

TEST_P(RegisteredLibraryTest, RegistersAndRemovesExactlyItsOwn) {
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

TEST_P(RegisteredLibraryTest, LivesAndEndsWithCom) {
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

// Counts the windows that this thread makes, and makes none of the dialogs: a message box then ends at once.
class WindowWatch {
 public:
  WindowWatch() : hook_(SetWindowsHookExW(WH_CBT, &WindowWatch::Look, nullptr, GetCurrentThreadId())) { windows = 0; }
  ~WindowWatch() { UnhookWindowsHookEx(hook_); }
  WindowWatch(const WindowWatch&) = delete;
  WindowWatch& operator=(const WindowWatch&) = delete;

  inline static int windows = 0;

 private:
  static LRESULT CALLBACK Look(int code, WPARAM wparam, LPARAM lparam) noexcept {
    constexpr WORD kDialogClass = 0x8002;
    if (code == HCBT_CREATEWND) {
      const CREATESTRUCTW& made = *reinterpret_cast<const CBT_CREATEWNDW*>(lparam)->lpcs;
      if (made.hwndParent != HWND_MESSAGE) ++windows;
      if (GetClassWord(reinterpret_cast<HWND>(wparam), GCW_ATOM) == kDialogClass) return 1;
    }
    return CallNextHookEx(nullptr, code, wparam, lparam);
  }

  HHOOK hook_;
};

TEST_P(RegisteredLibraryTest, CreatingGeneralShowsNothingWhateverTheSettingsSay) {
  const LoadedLibrary loaded(library);
  ASSERT_EQ(loaded.Call("DllRegisterServer"), S_OK);
  constexpr wchar_t kShared[] = L"SOFTWARE\\Ambrell\\Shared\\OUT";
  wchar_t before[1024]{};
  DWORD size = sizeof(before);
  const bool was_there =
      RegGetValueW(HKEY_LOCAL_MACHINE, kShared, L"DataServer", RRF_RT_REG_SZ, nullptr, before, &size) == ERROR_SUCCESS;
  for (const wchar_t* server : {L"", L"\\", L"Contabilidade\\", L"SREF=", L"SREF=nowhere\\"}) {
    SCOPED_TRACE(platform::FromWide(server));
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kShared, L"DataServer", REG_SZ, server,
                    static_cast<DWORD>((std::wcslen(server) + 1) * sizeof(wchar_t)));
    const Apartment apartment;
    const WindowWatch watch;
    CLSID class_id{};
    ComPtr<IUnknown> general;
    ASSERT_EQ(CLSIDFromProgID(L"Quenta_Produtos.General", &class_id), S_OK);
    EXPECT_EQ(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, general.ReceiveVoid()), S_OK);
    general.Reset();
    EXPECT_EQ(loaded.Call("DllCanUnloadNow"), S_OK);
    EXPECT_EQ(watch.windows, 0);
  }
  if (was_there) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kShared, L"DataServer", REG_SZ, before, size);
  } else {
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kShared, L"DataServer");
  }
  EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK);
}

TEST_P(RegisteredLibraryTest, LeavesNothingBehindWhenItIsUnloadedBeforeComEnds) {
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

INSTANTIATE_TEST_SUITE_P(Libraries, RegisteredLibraryTest,
                         testing::ValuesIn(std::vector<const char*>{QUENTA_LIBRARIES}), [](const auto& parameter) {
                           return std::string(parameter.index == 0 ? "Standin" : "Shipped");
                         });

using ScriptHostTest = RegisteredLibraryTest;

TEST_P(ScriptHostTest, ScriptsPassArgumentsInEveryWay) {
  const LoadedLibrary loaded(library);
  ASSERT_EQ(loaded.Call("DllRegisterServer"), S_OK);
  const std::wstring forms = folder + L"\\forms.txt";
  const std::wstring output = folder + L"\\output.txt";
  SetEnvironmentVariableW(L"QUENTA_TEST_LOG", forms.c_str());

  SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
  const HANDLE file =
      CreateFileW(output.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = file;
  start.hStdError = file;
  PROCESS_INFORMATION process{};
  std::wstring command = L"cscript.exe //nologo \"" + BuildPath(QUENTA_TEST_SOURCE "/late_bound.vbs") + L"\"";
  ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process));
  EXPECT_EQ(WaitForSingleObject(process.hProcess, 60'000), WAIT_OBJECT_0);
  DWORD code = 999;
  GetExitCodeProcess(process.hProcess, &code);
  for (const HANDLE handle : {process.hThread, process.hProcess, file}) CloseHandle(handle);

  EXPECT_EQ(code, 0U) << "the library must also survive the end of its host";
  EXPECT_EQ(FileText(output).substr(0, 2), "OK") << FileText(output);
  EXPECT_EQ(FileText(forms), FileText(BuildPath(QUENTA_TEST_SOURCE "/late_bound_expected.txt")));
  DeleteFileW(output.c_str());
  EXPECT_EQ(loaded.Call("DllUnregisterServer"), S_OK);
}

INSTANTIATE_TEST_SUITE_P(Standin, ScriptHostTest, testing::Values(QUENTA_STANDIN));

}  // namespace
}  // namespace quenta::tests
