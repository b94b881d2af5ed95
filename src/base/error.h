// The one exception type of the component: an error number and its description.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quenta::base {

// Error numbers the component itself raises or treats specially. They are the automation runtime's numbers;
// data-access errors keep theirs (3000 to 3999).
namespace error_number {
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInternal = 51;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kDeviceError = 57;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kInvalidNull = 94;
inline constexpr std::int32_t kItemNotFound = 3265;       // no such column in a result
inline constexpr std::int32_t kClosedConnection = 3709;   // operation on a closed or invalid connection
inline constexpr std::int32_t kDataAccess = -2147467259;  // 0x80004005: the provider's own text says what happened
}  // namespace error_number

// An error with the number and the description that a report shows. Never leaves the component.
class Error : public std::runtime_error {
 public:
  Error(std::int32_t number, const std::string& description) : std::runtime_error(description), number_(number) {}

  std::int32_t number() const noexcept { return number_; }
  std::string description() const { return what(); }

 private:
  std::int32_t number_;
};

[[noreturn]] inline void RaiseOverflow() {
  throw Error(error_number::kOverflow, "Overflow");
}
[[noreturn]] inline void RaiseTypeMismatch() {
  throw Error(error_number::kTypeMismatch, "Type mismatch");
}
[[noreturn]] inline void RaiseInvalidNull() {
  throw Error(error_number::kInvalidNull, "Invalid use of Null");
}

}  // namespace quenta::base
