#include "platform/com/host_objects.h"

#include <oleidl.h>

#include <cstdint>

#include "platform/automation/com_error.h"
#include "platform/automation/dispatch.h"
#include "platform/automation/variant_value.h"

namespace quenta::platform {
namespace {

class HeldObject final : public ports::HostObject {
 public:
  explicit HeldObject(IUnknown* object) noexcept : object_(object) {}

 private:
  ComPtr<IUnknown> object_;
};

class HeldVariant final : public ports::HostObject {
 public:
  explicit HeldVariant(Variant variant) noexcept : variant_(std::move(variant)) {}

 private:
  Variant variant_;
};

// A window handle as a property gives it: a Long or, from a 64-bit host, a 64-bit integer. Handles have 32 bits that
// count, and extend by their sign.
HWND WindowOf(const base::Value& value) noexcept {
  std::intptr_t handle = 0;
  if (value.kind() == base::ValueKind::kLong) handle = value.get<std::int32_t>();
  if (value.kind() == base::ValueKind::kInt64) handle = static_cast<std::intptr_t>(value.get<std::int64_t>());
  return reinterpret_cast<HWND>(handle);
}

class Caller final : public HostWindowObject {
 public:
  explicit Caller(IDispatch* object) noexcept : object_(object) {}

  HWND Window() const noexcept override {
    // Held here: asking may let the host drop the reference that we stand on.
    const ComPtr<IDispatch> object = object_;
    const HWND window = WindowProperty(*object.Get());
    return window != nullptr ? window : OleWindow(object);
  }

 private:
  // A host may throw through its methods; nothing it does may end here.
  static HWND WindowProperty(IDispatch& object) noexcept {
    try {
      return Checked(WindowOf(ToValue(GetProperty(object, L"hWnd").Get())));
    } catch (...) {
      return nullptr;
    }
  }

  static HWND OleWindow(const ComPtr<IDispatch>& object) noexcept {
    try {
      HWND window = nullptr;
      const auto site = object.As<IOleWindow>();
      return site && SUCCEEDED(site->GetWindow(&window)) ? Checked(window) : nullptr;
    } catch (...) {
      return nullptr;
    }
  }

  static HWND Checked(HWND window) noexcept { return IsWindow(window) ? window : nullptr; }

  ComPtr<IDispatch> object_;
};

bool HoldsNothing(const VARIANT& variant) noexcept {
  switch (variant.vt) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR:
      return true;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return variant.punkVal == nullptr;
    default:
      return false;
  }
}

}  // namespace

ports::HostObjectRef MakeCaller(IDispatch* caller) {
  return caller == nullptr ? nullptr : std::make_shared<Caller>(caller);
}

ports::HostObjectRef MakeReference(IUnknown* object) {
  return object == nullptr ? nullptr : std::make_shared<HeldObject>(object);
}

ports::HostObjectRef MakeHeldVariant(VARIANT& variant) {
  Variant content;
  ThrowIfFailed(VariantCopyInd(content.Receive(), &variant), "VariantCopyInd");
  if (HoldsNothing(content.Get())) return nullptr;
  return std::make_shared<HeldVariant>(std::move(content));
}

}  // namespace quenta::platform
