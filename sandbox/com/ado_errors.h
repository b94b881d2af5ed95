// ADO's own errors and texts, and the Errors collection of a connection.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "sandbox/com/automation_object.h"

namespace quenta::sandbox::com {

inline constexpr std::wstring_view kProviderName = L"Microsoft OLE DB Provider for SQL Server";

// ADO's numbers are those of the automation range and positive here; a provider's are HRESULTs, and negative.
inline bool IsProviderError(const base::Error& error) {
  return error.number() < 0;
}
inline HRESULT ResultOf(std::int32_t number) {
  return number < 0 ? static_cast<HRESULT>(number) : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
}

// Each throws base::Error with ADO's number and text.
[[noreturn]] void RaiseInvalidArgument();  // 3001
[[noreturn]] void RaiseNoCurrentRecord();  // 3021
[[noreturn]] void RaiseNotSupported();     // 3251
[[noreturn]] void RaiseItemNotFound();     // 3265
[[noreturn]] void RaiseObjectClosed();     // 3704
[[noreturn]] void RaiseObjectOpen();       // 3705
[[noreturn]] void RaiseStillConnecting();  // 3713

// The position that a name or a number gives in a collection; 3265 when there is none.
template <typename FindByName>
std::size_t PositionOf(const VARIANT& key, std::size_t count, FindByName find) {
  if (key.vt == VT_BSTR || key.vt == (VT_BYREF | VT_BSTR)) {
    const std::optional<std::size_t> found = find(TextOf(key));
    if (!found) RaiseItemNotFound();
    return *found;
  }
  const std::int32_t index = LongOf(key);
  if (index < 0 || static_cast<std::size_t>(index) >= count) RaiseItemNotFound();
  return static_cast<std::size_t>(index);
}

// Connection.Errors: what the provider said about the last operation that failed. ADO's own errors do not enter.
class ErrorList final : public Automation<ErrorList> {
 public:
  static std::span<const Member<ErrorList>> Members();

  // Replaces what is held, if it is the provider's.
  void Record(const base::Error& error);

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Errors"; }

 private:
  // An element by its position; errors have no names.
  Variant Item(const Arguments& arguments);
  Variant Count(const Arguments&);

  std::optional<base::Error> error_;
};

}  // namespace quenta::sandbox::com
