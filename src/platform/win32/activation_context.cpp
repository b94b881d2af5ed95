#include "platform/win32/activation_context.h"

#include "base/error.h"

namespace quenta::platform {
namespace {

// Found by the loader's address search: any object of this module will do.
const char kAddressInThisModule = 0;

constexpr WORD kManifestResource = 2;

template <typename Function>
void LookUp(HMODULE library, const char* name, Function& function) {
  // The detour over void* is the conversion of function pointers that the compilers accept without a warning.
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  if (function == nullptr) {
    throw base::Error(base::error_number::kInternal, std::string("comctl32.dll has no ") + name);
  }
}

}  // namespace

HMODULE ThisModule() noexcept {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&kAddressInThisModule), &module);
  return module;
}

ActivationContext::ActivationContext() noexcept {
  ACTCTXW request{};
  request.cbSize = sizeof(request);
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.hModule = ThisModule();
  request.lpResourceName = MAKEINTRESOURCEW(kManifestResource);
  context_ = CreateActCtxW(&request);
}

ActivationContext::~ActivationContext() {
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

ActivationContext::Scope::Scope(const ActivationContext& context) noexcept
    : active_(context.context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context.context_, &cookie_)) {}

ActivationContext::Scope::~Scope() {
  if (active_) DeactivateActCtx(0, cookie_);
}

CommonControls::CommonControls(const ActivationContext& context) {
  const ActivationContext::Scope scope(context);
  library_ = OwnedLibrary(LoadLibraryW(L"comctl32.dll"));
  if (!library_) throw base::Error(base::error_number::kInternal, "comctl32.dll cannot be loaded");
  decltype(&::InitCommonControlsEx) initialize = nullptr;
  LookUp(library_.get(), "InitCommonControlsEx", initialize);
  LookUp(library_.get(), "SetWindowSubclass", SetWindowSubclass);
  LookUp(library_.get(), "RemoveWindowSubclass", RemoveWindowSubclass);
  LookUp(library_.get(), "DefSubclassProc", DefSubclassProc);
  LookUp(library_.get(), "ImageList_Create", ImageList_Create);
  LookUp(library_.get(), "ImageList_Destroy", ImageList_Destroy);
  LookUp(library_.get(), "ImageList_Add", ImageList_Add);
  const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES | ICC_DATE_CLASSES |
                                                          ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_TAB_CLASSES |
                                                          ICC_BAR_CLASSES};
  initialize(&classes);
}

}  // namespace quenta::platform
