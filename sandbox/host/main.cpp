// QuentaHost.exe: a small program that finds products and opens them through the component, as the suite does.
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include "sandbox/host/automation.h"
#include "sandbox/host/command_line.h"
#include "sandbox/host/main_window.h"

namespace {

std::vector<std::string> Arguments() {
  int count = 0;
  wchar_t** const texts = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(quenta::sandbox::host::FromWide(texts[i]));
  LocalFree(texts);
  return arguments;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
  using namespace quenta::sandbox::host;
  try {
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    const ComApartment apartment;
    return MainWindow(ParseCommandLine(Arguments())).Run();
  } catch (const std::exception& error) {
    MessageBoxW(nullptr, ToWide(error.what()).c_str(), L"Catálogo de produtos", MB_OK | MB_ICONERROR);
    return 2;
  }
}
