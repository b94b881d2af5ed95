#include "platform/ado/late_bound.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/error.h"
#include "platform/automation/bstr.h"
#include "platform/automation/com_error.h"

namespace quenta::platform {
namespace {

constexpr std::int32_t kObjectNotSet = 91;
constexpr std::size_t kMaximumArguments = 4;

// What an object tells about a failure; the strings belong to whoever called.
class FailureDetails {
 public:
  FailureDetails() = default;
  ~FailureDetails() {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrHelpFile);
  }
  FailureDetails(const FailureDetails&) = delete;
  FailureDetails& operator=(const FailureDetails&) = delete;

  EXCEPINFO* Receive() noexcept { return &info_; }

  [[noreturn]] void Throw() {
    if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
    const HRESULT result = info_.scode != 0 ? info_.scode : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, info_.wCode);
    const std::string description = FromBstr(info_.bstrDescription);
    throw base::Error(ErrorNumber(result), description.empty() ? SystemText(result) : description);
  }

 private:
  EXCEPINFO info_{};
};

}  // namespace

DISPID MemberIdentifiers::Of(IDispatch& object, std::size_t member) {
  DISPID& identifier = identifiers_[member];
  if (identifier == kUnknown) {
    std::wstring name(names_[member]);
    wchar_t* names = name.data();
    ThrowIfFailed(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &identifier), "GetIDsOfNames");
  }
  return identifier;
}

Variant Invoke(IDispatch& object, DISPID member, WORD kind, std::initializer_list<VARIANT> arguments) {
  if (arguments.size() > kMaximumArguments) throw base::Error(base::error_number::kInternal, "too many arguments");
  // Automation takes arguments last to first.
  std::array<VARIANT, kMaximumArguments> reversed;
  std::reverse_copy(arguments.begin(), arguments.end(), reversed.begin());

  DISPID put = DISPID_PROPERTYPUT;
  const bool is_put = (kind & DISPATCH_PROPERTYPUT) != 0;
  DISPPARAMS parameters{.rgvarg = reversed.data(),
                        .rgdispidNamedArgs = is_put ? &put : nullptr,
                        .cArgs = static_cast<UINT>(arguments.size()),
                        .cNamedArgs = is_put ? 1U : 0U};
  Variant answer;
  FailureDetails details;
  const HRESULT result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                       is_put ? nullptr : answer.Receive(), details.Receive(), nullptr);
  if (result == DISP_E_EXCEPTION) details.Throw();
  ThrowIfFailed(result, "Invoke");
  return answer;
}

ComPtr<IDispatch> ObjectIn(const Variant& variant) {
  ComPtr<IDispatch> object;
  const VARIANT& content = variant.Get();
  if (content.vt == VT_DISPATCH) {
    object = ComPtr<IDispatch>(content.pdispVal);
  } else if (content.vt == VT_UNKNOWN) {
    object = ComPtr<IUnknown>(content.punkVal).As<IDispatch>();
  }
  if (!object) throw base::Error(kObjectNotSet, "Object variable not set");
  return object;
}

}  // namespace quenta::platform
