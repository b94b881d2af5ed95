// Late-bound COM as a host uses it: owners for BSTR and VARIANT, and objects that are called by the names of their
// methods.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenta::sandbox::host {

// UTF-8 from and to the wide text of Windows.
std::string FromWide(std::wstring_view text);
std::wstring ToWide(std::string_view text);

// A failed COM call: the description that the object gave, else the system's text for the code. UTF-8.
class ComError : public std::runtime_error {
 public:
  ComError(HRESULT code, const std::string& text) : std::runtime_error(text), code_(code) {}
  HRESULT code() const noexcept { return code_; }

 private:
  HRESULT code_;
};

// Throws ComError with the system's text when the code is a failure.
void ThrowIfFailed(HRESULT code);

// COM on this thread, as a single-threaded apartment.
class ComApartment {
 public:
  ComApartment();
  ~ComApartment() { CoUninitialize(); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
};

// Owns one VARIANT.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  explicit Variant(std::string_view text);
  explicit Variant(std::int32_t number);
  explicit Variant(IDispatch* object);  // adds a reference; null is Nothing
  ~Variant() { VariantClear(&value_); }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  Variant& operator=(Variant&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  const VARIANT& get() const noexcept { return value_; }
  VARIANT* out() {
    VariantClear(&value_);
    return &value_;
  }
  bool is_null() const noexcept { return value_.vt == VT_NULL || value_.vt == VT_EMPTY; }

  // The address of what the variant holds, as an argument passed by reference.
  VARIANT ByReference();

 private:
  VARIANT value_;
};

// What a VARIANT of any kind holds; Null and Empty give the default. Throw ComError when it does not convert.
std::string TextOf(const VARIANT& value);
std::int32_t LongOf(const VARIANT& value);
double DoubleOf(const VARIANT& value);
bool BoolOf(const VARIANT& value);

// A reference to an object that is called by name.
class Object {
 public:
  Object() = default;
  // Throws ComError when the class is not registered or cannot be created.
  static Object Create(const wchar_t* prog_id);
  // Takes the object out of a result; throws ComError when it holds none.
  static Object From(const Variant& value);
  ~Object() { Reset(); }
  Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Object& operator=(Object&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  explicit operator bool() const noexcept { return object_ != nullptr; }
  void Reset() noexcept;

  Variant Get(const wchar_t* property) const;
  void Put(const wchar_t* property, Variant value) const;
  // Arguments in their order, by value.
  Variant Call(const wchar_t* method, std::vector<Variant> arguments = {}) const;
  // Arguments by reference, as hosts written in older languages pass them; the caller's values may change.
  Variant CallByReference(const wchar_t* method, std::vector<Variant>& arguments) const;

 private:
  Variant Invoke(const wchar_t* name, WORD kind, std::vector<VARIANT> arguments) const;

  IDispatch* object_ = nullptr;
};

}  // namespace quenta::sandbox::host
