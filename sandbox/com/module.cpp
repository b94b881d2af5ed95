#include "sandbox/com/module.h"

#include <atomic>

#include "sandbox/odbc/odbc_database.h"

namespace quenta::sandbox::com {
namespace {

std::atomic<long> uses{0};

}  // namespace

ModuleUse::ModuleUse() noexcept {
  ++uses;
}
ModuleUse::~ModuleUse() {
  --uses;
}

void LockModule(bool lock) noexcept {
  uses += lock ? 1 : -1;
}

bool CanUnload() noexcept {
  return uses == 0 && OdbcDatabase::ConnectingThreads() == 0;
}

void StayLoaded() noexcept {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<const wchar_t*>(&uses), &module);
}

std::wstring ModulePath() {
  HMODULE module = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<const wchar_t*>(&uses), &module) == 0) {
    return {};
  }
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace quenta::sandbox::com
