#include "platform/com/type_information.h"

#include <new>
#include <string>

namespace quenta::platform {

std::wstring ModulePath(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

HRESULT LoadTypeInformation(HMODULE module, REFGUID identifier, ITypeInfo** information) noexcept {
  if (information == nullptr) return E_POINTER;
  *information = nullptr;
  try {
    ComPtr<ITypeLib> library;
    const HRESULT loaded = LoadTypeLibEx(ModulePath(module).c_str(), REGKIND_NONE, library.Receive());
    return FAILED(loaded) ? loaded : library->GetTypeInfoOfGuid(identifier, information);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace quenta::platform
