#include "platform/automation/dispatch.h"

#include <string>
#include <vector>

#include "base/error.h"
#include "platform/automation/com_error.h"

namespace quenta::platform {
namespace {

// The strings of an EXCEPINFO belong to whoever called.
struct ExceptionInformation {
  EXCEPINFO info{};
  ExceptionInformation() = default;
  ~ExceptionInformation() {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
  }
  ExceptionInformation(const ExceptionInformation&) = delete;
  ExceptionInformation& operator=(const ExceptionInformation&) = delete;

  [[noreturn]] void Throw() {
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    const HRESULT result = info.scode != 0 ? info.scode : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, info.wCode);
    const std::string description = FromBstr(info.bstrDescription);
    throw base::Error(ErrorNumber(result), description.empty() ? SystemText(result) : description);
  }
};

Variant Invoke(IDispatch& object, const wchar_t* name, WORD kind, std::initializer_list<const Variant*> arguments) {
  DISPID member = DISPID_UNKNOWN;
  std::wstring spelled(name);
  wchar_t* names = spelled.data();
  ThrowIfFailed(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member), "GetIDsOfNames");

  // Automation takes arguments last to first. These are plain copies: the owners stay with the caller.
  std::vector<VARIANT> reversed;
  reversed.reserve(arguments.size());
  for (auto argument = std::rbegin(arguments); argument != std::rend(arguments); ++argument) {
    reversed.push_back((*argument)->Get());
  }
  DISPPARAMS parameters{.rgvarg = reversed.data(),
                        .rgdispidNamedArgs = nullptr,
                        .cArgs = static_cast<UINT>(reversed.size()),
                        .cNamedArgs = 0};
  Variant answer;
  ExceptionInformation exception;
  const HRESULT result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, answer.Receive(),
                                       &exception.info, nullptr);
  if (result == DISP_E_EXCEPTION) exception.Throw();
  ThrowIfFailed(result, "Invoke");
  return answer;
}

}  // namespace

ComPtr<IDispatch> CreateObject(const wchar_t* prog_id) {
  CLSID class_id{};
  ThrowIfFailed(CLSIDFromProgID(prog_id, &class_id), "CLSIDFromProgID");
  ComPtr<IDispatch> object;
  ThrowIfFailed(CoCreateInstance(class_id, nullptr, CLSCTX_ALL, IID_IDispatch, object.ReceiveVoid()),
                "CoCreateInstance");
  return object;
}

Variant CallMethod(IDispatch& object, const wchar_t* name, std::initializer_list<const Variant*> arguments) {
  return Invoke(object, name, DISPATCH_METHOD, arguments);
}

Variant GetProperty(IDispatch& object, const wchar_t* name) {
  // Some objects expose a property as a method only.
  return Invoke(object, name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {});
}

}  // namespace quenta::platform
