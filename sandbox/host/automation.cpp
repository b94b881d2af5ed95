#include "sandbox/host/automation.h"

#include <algorithm>

#include "base/text.h"

namespace quenta::sandbox::host {
namespace {

std::string SystemText(HRESULT code) {
  wchar_t buffer[512];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                      static_cast<DWORD>(code), 0, buffer, ARRAYSIZE(buffer), nullptr);
  std::wstring_view text(buffer, length);
  while (!text.empty() && text.back() <= L' ') text.remove_suffix(1);
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string number = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) number += kDigits[static_cast<DWORD>(code) >> shift & 15];
  return text.empty() ? "Erro " + number : FromWide(text) + " (" + number + ")";
}

// The three texts that an object fills in when it raises an error.
class ExceptionInfo : public EXCEPINFO {
 public:
  ExceptionInfo() : EXCEPINFO{} {}
  ~ExceptionInfo() {
    SysFreeString(bstrSource);
    SysFreeString(bstrDescription);
    SysFreeString(bstrHelpFile);
  }
  ExceptionInfo(const ExceptionInfo&) = delete;
  ExceptionInfo& operator=(const ExceptionInfo&) = delete;
};

Variant Converted(const VARIANT& value, VARTYPE type) {
  Variant converted;
  if (value.vt == VT_NULL || value.vt == VT_EMPTY) return converted;
  // Numbers in texts are written by programs here, not by people: they are read as such, whatever the user's locale.
  ThrowIfFailed(VariantChangeTypeEx(converted.out(), const_cast<VARIANT*>(&value), LOCALE_INVARIANT, 0, type));
  return converted;
}

}  // namespace

std::string FromWide(std::wstring_view text) {
  return base::FromUtf16(std::u16string(text.begin(), text.end()));
}

std::wstring ToWide(std::string_view text) {
  const std::u16string units = base::ToUtf16(text);
  return std::wstring(units.begin(), units.end());
}

void ThrowIfFailed(HRESULT code) {
  if (FAILED(code)) throw ComError(code, SystemText(code));
}

ComApartment::ComApartment() {
  ThrowIfFailed(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
}

Variant::Variant(std::string_view text) {
  VariantInit(&value_);
  const std::wstring wide = ToWide(text);
  value_.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (value_.bstrVal == nullptr) throw std::bad_alloc();
  value_.vt = VT_BSTR;
}

Variant::Variant(std::int32_t number) {
  VariantInit(&value_);
  value_.vt = VT_I4;
  value_.lVal = number;
}

Variant::Variant(IDispatch* object) {
  VariantInit(&value_);
  value_.vt = VT_DISPATCH;
  value_.pdispVal = object;
  if (object != nullptr) object->AddRef();
}

VARIANT Variant::ByReference() {
  VARIANT reference;
  VariantInit(&reference);
  if (value_.vt == VT_EMPTY) {
    reference.vt = VT_VARIANT | VT_BYREF;
    reference.pvarVal = &value_;
  } else {
    reference.vt = static_cast<VARTYPE>(value_.vt | VT_BYREF);
    reference.byref = &value_.lVal;
  }
  return reference;
}

std::string TextOf(const VARIANT& value) {
  const Variant text = Converted(value, VT_BSTR);
  if (text.is_null()) return "";
  return FromWide(std::wstring_view(text.get().bstrVal, SysStringLen(text.get().bstrVal)));
}

std::int32_t LongOf(const VARIANT& value) {
  const Variant number = Converted(value, VT_I4);
  return number.is_null() ? 0 : number.get().lVal;
}

double DoubleOf(const VARIANT& value) {
  const Variant number = Converted(value, VT_R8);
  return number.is_null() ? 0 : number.get().dblVal;
}

bool BoolOf(const VARIANT& value) {
  const Variant flag = Converted(value, VT_BOOL);
  return !flag.is_null() && flag.get().boolVal != VARIANT_FALSE;
}

Object Object::Create(const wchar_t* prog_id) {
  CLSID class_id;
  if (const HRESULT code = CLSIDFromProgID(prog_id, &class_id); FAILED(code)) {
    throw ComError(code, "A classe " + FromWide(prog_id) + " não está registada neste computador.");
  }
  Object object;
  ThrowIfFailed(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                 reinterpret_cast<void**>(&object.object_)));
  return object;
}

Object Object::From(const Variant& value) {
  const VARIANT& held = value.get();
  if (held.vt != VT_DISPATCH || held.pdispVal == nullptr) ThrowIfFailed(DISP_E_TYPEMISMATCH);
  Object object;
  object.object_ = held.pdispVal;
  object.object_->AddRef();
  return object;
}

void Object::Reset() noexcept {
  if (IDispatch* object = std::exchange(object_, nullptr)) object->Release();
}

Variant Object::Get(const wchar_t* property) const {
  return Invoke(property, DISPATCH_PROPERTYGET, {});
}

void Object::Put(const wchar_t* property, Variant value) const {
  Invoke(property, DISPATCH_PROPERTYPUT, {value.get()});
}

Variant Object::Call(const wchar_t* method, std::vector<Variant> arguments) const {
  std::vector<VARIANT> values;
  for (const Variant& argument : arguments) values.push_back(argument.get());
  return Invoke(method, DISPATCH_METHOD, std::move(values));
}

Variant Object::CallByReference(const wchar_t* method, std::vector<Variant>& arguments) const {
  std::vector<VARIANT> references;
  for (Variant& argument : arguments) references.push_back(argument.ByReference());
  return Invoke(method, DISPATCH_METHOD, std::move(references));
}

Variant Object::Invoke(const wchar_t* name, WORD kind, std::vector<VARIANT> arguments) const {
  LPOLESTR names = const_cast<LPOLESTR>(name);
  DISPID id = DISPID_UNKNOWN;
  ThrowIfFailed(object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));
  std::reverse(arguments.begin(), arguments.end());  // the call takes the last argument first
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{};
  parameters.rgvarg = arguments.data();
  parameters.cArgs = static_cast<UINT>(arguments.size());
  if (kind == DISPATCH_PROPERTYPUT) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  Variant result;
  ExceptionInfo exception;
  const HRESULT code =
      object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, result.out(), &exception, nullptr);
  if (code == DISP_E_EXCEPTION) {
    if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
    const HRESULT raised = exception.scode != 0 ? exception.scode : code;
    const std::string text = exception.bstrDescription != nullptr ? FromWide(exception.bstrDescription) : "";
    throw ComError(raised, text.empty() ? SystemText(raised) : text);
  }
  ThrowIfFailed(code);
  return result;
}

}  // namespace quenta::sandbox::host
