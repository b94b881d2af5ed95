// Direct access to the elements of an automation array while it is locked.
#pragma once

#include <ole2.h>

#include <cstddef>
#include <span>

#include "platform/automation/com_error.h"

namespace quenta::platform {

// Elements lie in the array's own order: the first dimension varies fastest.
// Throws base::Error when the array is null, cannot be locked, or has elements of another size.
template <typename Element>
class SafeArrayAccess {
 public:
  explicit SafeArrayAccess(SAFEARRAY* array) : array_(array) {
    if (array == nullptr || SafeArrayGetElemsize(array) != sizeof(Element)) ThrowIfFailed(DISP_E_TYPEMISMATCH, "array");
    ThrowIfFailed(SafeArrayAccessData(array, &data_), "SafeArrayAccessData");
  }
  ~SafeArrayAccess() { SafeArrayUnaccessData(array_); }
  SafeArrayAccess(const SafeArrayAccess&) = delete;
  SafeArrayAccess& operator=(const SafeArrayAccess&) = delete;

  // Number of elements of a dimension, counted from 1; 0 when there is no such dimension.
  std::size_t Extent(unsigned dimension) const noexcept {
    LONG lower = 0;
    LONG upper = -1;
    if (FAILED(SafeArrayGetLBound(array_, dimension, &lower)) ||
        FAILED(SafeArrayGetUBound(array_, dimension, &upper))) {
      return 0;
    }
    return upper < lower ? 0 : static_cast<std::size_t>(upper - lower) + 1;
  }

  std::span<Element> Elements() const noexcept {
    std::size_t count = 1;
    for (unsigned dimension = 1; dimension <= SafeArrayGetDim(array_); ++dimension) count *= Extent(dimension);
    return {static_cast<Element*>(data_), count};
  }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

}  // namespace quenta::platform
