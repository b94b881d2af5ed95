// The part that every COM class of ours has in common: reference count and QueryInterface.
#pragma once

#include <ole2.h>

#include <atomic>
#include <type_traits>

namespace quenta::platform {

// Implements IUnknown over the interfaces listed; the first one is the object's identity. An interface that derives
// from IDispatch answers for IDispatch too. The object is created with one reference and deletes itself with the last;
// it cannot be part of an aggregate.
#pragma GCC diagnostic push
// COM's interfaces have no destructor on purpose: their layout is fixed, and nobody deletes through them.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
template <typename First, typename... Rest>
class ComObject : public First, public Rest... {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (IsEqualIID(iid, IID_IUnknown)) {
      *object = static_cast<First*>(this);
    } else if (!Offer<First>(iid, object)) {
      (void)(Offer<Rest>(iid, object) || ...);
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }

  ULONG STDMETHODCALLTYPE Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) {
      // What the destructor calls may take and drop a reference for a moment: it must not delete a second time.
      references_ = kDying;
      delete this;
    }
    return left;
  }

 protected:
  virtual ~ComObject() = default;

 private:
  static constexpr ULONG kDying = 0x40000000;

  template <typename Interface>
  bool Offer(REFIID iid, void** object) noexcept {
    bool offered = IsEqualIID(iid, __uuidof(Interface));
    if constexpr (std::is_base_of_v<IDispatch, Interface>) offered = offered || IsEqualIID(iid, IID_IDispatch);
    if (offered) *object = static_cast<Interface*>(this);
    return offered;
  }

  std::atomic<ULONG> references_{1};
};
#pragma GCC diagnostic pop

}  // namespace quenta::platform
