// Owner of a reference to a COM object.
#pragma once

#include <unknwn.h>

#include <utility>

namespace quenta::platform {

template <typename Interface>
class ComPtr {
 public:
  ComPtr() = default;
  // Adds a reference of its own; null is allowed.
  explicit ComPtr(Interface* object) noexcept : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ~ComPtr() { Reset(); }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  // Takes over a reference that the caller already holds.
  static ComPtr Adopt(Interface* object) noexcept {
    ComPtr pointer;
    pointer.object_ = object;
    return pointer;
  }

  Interface* Get() const noexcept { return object_; }
  Interface* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // Null before the release, so that what the release calls back never meets a dying object.
  void Reset() noexcept {
    if (Interface* object = std::exchange(object_, nullptr)) object->Release();
  }
  // Where a call stores a reference of which we become the owner. What was held is released first.
  Interface** Receive() noexcept {
    Reset();
    return &object_;
  }
  void** ReceiveVoid() noexcept { return reinterpret_cast<void**>(Receive()); }
  // Hands the reference over to the caller.
  Interface* Detach() noexcept { return std::exchange(object_, nullptr); }

  // Another interface of the object; null when it has none, or when this is null.
  template <typename Other>
  ComPtr<Other> As() const noexcept {
    ComPtr<Other> other;
    if (object_ != nullptr) object_->QueryInterface(__uuidof(Other), other.ReceiveVoid());
    return other;
  }

 private:
  Interface* object_ = nullptr;
};

}  // namespace quenta::platform
