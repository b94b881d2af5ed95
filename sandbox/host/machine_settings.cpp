#include "sandbox/host/machine_settings.h"

#include <windows.h>

#include <string>

#include "sandbox/host/automation.h"

namespace quenta::sandbox::host {
namespace {

std::optional<std::string> ReadText(const std::wstring& subkey, const wchar_t* name) {
  // A 32-bit suite's settings lie in a view of their own that a 64-bit process has to ask for.
  for (const DWORD view : {DWORD{0}, DWORD{RRF_SUBKEY_WOW6432KEY}}) {
    wchar_t text[512];
    DWORD bytes = sizeof(text);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, subkey.c_str(), name, RRF_RT_REG_SZ | view, nullptr, text, &bytes) ==
        ERROR_SUCCESS) {
      return FromWide(text);
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<Server> ReadMachineServer() {
  const std::wstring root = L"SOFTWARE\\Ambrell\\";
  const std::optional<std::string> application = ReadText(root + L"Shared\\OUT", L"DataServer");
  if (!application) return std::nullopt;
  const std::wstring key = root + ToWide(*application);
  const std::optional<std::string> security_info = ReadText(key, L"dtSecurityInfo");
  const std::optional<std::string> user = ReadText(key, L"dtUser");
  const std::optional<std::string> password = ReadText(key, L"dtPassword");
  const std::optional<std::string> catalog = ReadText(key, L"dtInitialCatalog");
  const std::optional<std::string> data_source = ReadText(key, L"dtDataSource");
  if (!security_info || !user || !password || !catalog || !data_source) return std::nullopt;
  Server server;
  server.name = "Definições deste computador";
  server.data_source = *data_source;
  server.initial_catalog = *catalog;
  server.user = *user;
  server.password = *password;
  server.security_info = *security_info;
  server.from_machine = true;
  return server;
}

}  // namespace quenta::sandbox::host
