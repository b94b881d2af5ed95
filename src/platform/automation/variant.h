// Owner of an automation variant.
#pragma once

#include <ole2.h>

#include <string_view>
#include <utility>

#include "platform/automation/bstr.h"

namespace quenta::platform {

class Variant {
 public:
  Variant() noexcept { VariantInit(&value_); }
  explicit Variant(std::int32_t number) noexcept : Variant() {
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  explicit Variant(std::string_view text) : Variant() {
    value_.bstrVal = Bstr(text).Detach();
    value_.vt = VT_BSTR;
  }
  // Adds a reference of its own; null is the variant "Nothing".
  explicit Variant(IDispatch* object) noexcept : Variant() {
    if (object != nullptr) object->AddRef();
    value_.vt = VT_DISPATCH;
    value_.pdispVal = object;
  }
  ~Variant() { VariantClear(&value_); }
  Variant(Variant&& other) noexcept : value_(other.Detach()) {}
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  // An argument that was left out, as automation passes it.
  static Variant Missing() noexcept {
    Variant variant;
    variant.value_.vt = VT_ERROR;
    variant.value_.scode = DISP_E_PARAMNOTFOUND;
    return variant;
  }

  const VARIANT& Get() const noexcept { return value_; }
  VARIANT& Get() noexcept { return value_; }
  VARTYPE Type() const noexcept { return value_.vt; }

  // Where a call stores a value of which we become the owner. What was held is cleared first.
  VARIANT* Receive() noexcept {
    VariantClear(&value_);
    return &value_;
  }
  // Hands the content over to the caller.
  VARIANT Detach() noexcept {
    VARIANT content = value_;
    VariantInit(&value_);
    return content;
  }

 private:
  VARIANT value_;
};

}  // namespace quenta::platform
