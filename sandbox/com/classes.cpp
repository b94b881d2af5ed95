#include "sandbox/com/classes.h"

#include <new>

#include "base/error.h"
#include "sandbox/com/ado_connection.h"
#include "sandbox/com/ado_errors.h"
#include "sandbox/com/error_reporting.h"
#include "sandbox/com/module.h"

namespace quenta::sandbox::com {
namespace {

template <typename Class>
IDispatch* Create() {
  return new Class;
}

class ClassFactory final : public platform::ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const CreatableClass& made) : class_(made) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      return ComPtr<IDispatch>::Adopt(class_.create())->QueryInterface(iid, object);
    } catch (const base::Error& error) {
      return ResultOf(error.number());
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_UNEXPECTED;
    }
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
    LockModule(lock != FALSE);
    return S_OK;
  }

 private:
  ModuleUse use_;
  const CreatableClass& class_;
};

}  // namespace

std::span<const CreatableClass> CreatableClasses() noexcept {
  static constexpr CreatableClass kClasses[] = {
      {{0x00000514, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}},
       L"{00000514-0000-0010-8000-00AA006D2EA4}",
       L"ADODB.Connection",
       L"Connection",
       &Create<ConnectionObject>},
      {{0xACABFA9B, 0xF364, 0x4F42, {0xB7, 0x44, 0xFC, 0x05, 0xD7, 0x55, 0xFE, 0xAA}},
       L"{ACABFA9B-F364-4F42-B744-FC05D755FEAA}",
       L"ErrorReporting.General",
       L"Error reporting (sandbox)",
       &Create<ErrorReportingObject>},
  };
  return kClasses;
}

HRESULT GetClassObject(REFCLSID identifier, REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const CreatableClass& made : CreatableClasses()) {
    if (!IsEqualCLSID(made.identifier, identifier)) continue;
    const auto factory = ComPtr<IClassFactory>::Adopt(new (std::nothrow) ClassFactory(made));
    return factory ? factory->QueryInterface(iid, object) : E_OUTOFMEMORY;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace quenta::sandbox::com
