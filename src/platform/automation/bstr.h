// Owner of an automation string, and the step between UTF-16 of the outside and UTF-8 of the inside.
#pragma once

#include <ole2.h>

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace quenta::platform {

// Windows' wide characters as the UTF-16 units they are.
inline std::u16string_view Utf16View(const wchar_t* text, std::size_t length) noexcept {
  return {reinterpret_cast<const char16_t*>(text), length};
}

// UTF-8 of an automation string. Null is the empty string; null characters inside stay.
inline std::string FromBstr(BSTR text) {
  return text == nullptr ? std::string() : base::FromUtf16(Utf16View(text, SysStringLen(text)));
}

// UTF-8 of a null-terminated wide string; null is the empty string.
inline std::string FromWide(const wchar_t* text) {
  return text == nullptr ? std::string() : base::FromUtf16(reinterpret_cast<const char16_t*>(text));
}

inline std::wstring ToWide(std::string_view text) {
  const std::u16string wide = base::ToUtf16(text);
  return {reinterpret_cast<const wchar_t*>(wide.data()), wide.size()};
}

class Bstr {
 public:
  Bstr() = default;
  // Throws std::bad_alloc. An empty text becomes an empty string, not null.
  explicit Bstr(std::string_view text) {
    const std::u16string wide = base::ToUtf16(text);
    text_ = SysAllocStringLen(reinterpret_cast<const wchar_t*>(wide.data()), static_cast<UINT>(wide.size()));
    if (text_ == nullptr) throw std::bad_alloc();
  }
  ~Bstr() { SysFreeString(text_); }
  Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR Get() const noexcept { return text_; }
  std::string Text() const { return FromBstr(text_); }

  // Where a call stores a string of which we become the owner. What was held is freed first.
  BSTR* Receive() noexcept {
    SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }
  // Hands the string over to the caller.
  BSTR Detach() noexcept { return std::exchange(text_, nullptr); }

 private:
  BSTR text_ = nullptr;
};

}  // namespace quenta::platform
