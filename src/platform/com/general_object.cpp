#include "platform/com/general_object.h"

#include <oleauto.h>

#include <array>
#include <new>
#include <utility>

#include "base/error.h"
#include "platform/automation/bstr.h"
#include "platform/automation/com_error.h"
#include "platform/automation/variant_value.h"
#include "platform/com/argument_normaliser.h"
#include "platform/com/host_objects.h"
#include "platform/com/type_information.h"

namespace quenta::platform {
namespace {

// The members by their identifiers in the type library.
enum Member : DISPID {
  kSQLConnect = 0x60030000,
  kLogin,
  kObjectOpen,
  kRegisto,
  kObjectNew,
  kNovoRegisto,
};

constexpr wchar_t kProgId[] = L"Quenta_Produtos.General";

template <typename... Pointers>
bool AllGiven(Pointers*... pointers) noexcept {
  return ((pointers != nullptr) && ...);
}

// Leaves the failure's text as the thread's error information.
HRESULT Fail(HRESULT failure) noexcept {
  try {
    ComPtr<ICreateErrorInfo> error;
    if (FAILED(CreateErrorInfo(error.Receive()))) return failure;
    std::wstring source(kProgId);
    std::wstring text = ToWide(SystemText(failure));
    error->SetGUID(__uuidof(_General));
    error->SetSource(source.data());
    error->SetDescription(text.data());
    SetErrorInfo(0, error.As<IErrorInfo>().Get());
  } catch (const std::bad_alloc&) {
    // The code alone says it, too.
  }
  return failure;
}

// Moves the thread's error information into the exception of a late-bound call.
HRESULT RaiseException(HRESULT failure, EXCEPINFO* exception) noexcept {
  ComPtr<IErrorInfo> error;
  if (GetErrorInfo(0, error.Receive()) == S_OK && exception != nullptr) {
    *exception = EXCEPINFO{};
    error->GetSource(&exception->bstrSource);
    error->GetDescription(&exception->bstrDescription);
    exception->scode = failure;
  }
  return exception == nullptr ? failure : DISP_E_EXCEPTION;
}

// A key that is no value at all (an array, Nothing, an object that answers with an error or throws) reaches the
// component as a text that is no number, which it reports as the type mismatch that it is.
base::Value KeyOf(const VARIANT& key) {
  try {
    return ToValue(key);
  } catch (...) {
    return base::Value("");
  }
}

}  // namespace

GeneralObject::GeneralObject(Server& server, std::shared_ptr<Composition> composition)
    : use_(server), composition_(std::move(composition)), general_(composition_->Component()) {}

// Runs a method's work. The object stays alive meanwhile even if the host lets go of it from a message.
template <typename Body>
HRESULT GeneralObject::Answer(bool arguments_complete, Body&& body) noexcept {
  if (!use_.Get().OnOwningThread()) return Fail(RPC_E_WRONG_THREAD);
  if (!arguments_complete) return Fail(E_POINTER);
  const ComPtr<_General> self(this);
  try {
    body();
    return S_OK;
  } catch (const std::bad_alloc&) {
    return Fail(E_OUTOFMEMORY);
  } catch (...) {
    // Anything: an object among the arguments may throw through its methods.
    return Fail(E_UNEXPECTED);
  }
}

// The same for a record operation: an argument that cannot be taken is reported under its name.
template <typename Body>
HRESULT GeneralObject::AnswerRecord(const char* procedure, bool arguments_complete, Body&& body) noexcept {
  return Answer(arguments_complete, [&] {
    try {
      body();
    } catch (const base::Error& error) {
      general_.Refuse(procedure, error);
    }
  });
}

HRESULT GeneralObject::SQLConnect(BSTR* User, BSTR* Password, BSTR* cnUser, BSTR* cnPassword, BSTR* cnInitialCatalog,
                                  BSTR* cnDataSource, BSTR* cnDataSourceSecondary, LONG* oFlags,
                                  VARIANT_BOOL* Result) noexcept {
  if (Result != nullptr) *Result = VARIANT_FALSE;
  const bool complete = AllGiven(User, Password, cnUser, cnPassword, cnInitialCatalog, cnDataSource,
                                 cnDataSourceSecondary, oFlags, Result);
  return Answer(complete, [&] {
    const component::SQLConnectArguments arguments{.User = FromBstr(*User),
                                                   .Password = FromBstr(*Password),
                                                   .cnUser = FromBstr(*cnUser),
                                                   .cnPassword = FromBstr(*cnPassword),
                                                   .cnInitialCatalog = FromBstr(*cnInitialCatalog),
                                                   .cnDataSource = FromBstr(*cnDataSource),
                                                   .cnDataSourceSecondary = FromBstr(*cnDataSourceSecondary),
                                                   .oFlags = static_cast<std::int32_t>(*oFlags)};
    *Result = general_.SQLConnect(arguments) ? VARIANT_TRUE : VARIANT_FALSE;
  });
}

HRESULT GeneralObject::Login(BSTR* User, BSTR* Password, VARIANT_BOOL* Result) noexcept {
  if (Result != nullptr) *Result = VARIANT_FALSE;
  return Answer(AllGiven(User, Password, Result),
                [&] { *Result = general_.Login(FromBstr(*User), FromBstr(*Password)) ? VARIANT_TRUE : VARIANT_FALSE; });
}

ports::ProductRequest GeneralObject::Request(IDispatch* caller) {
  ports::ProductRequest request;
  request.owner = MakeReference(static_cast<_General*>(this));
  request.caller = MakeCaller(caller);
  return request;
}

ports::ProductRequest GeneralObject::Request(IDispatch* caller, LONG current_index, VARIANT& current_object,
                                             LONG last_related_id) {
  ports::ProductRequest request = Request(caller);
  request.current_index = static_cast<std::int32_t>(current_index);
  request.current_object = MakeHeldVariant(current_object);
  request.last_related_id = static_cast<std::int32_t>(last_related_id);
  return request;
}

HRESULT GeneralObject::ObjectOpen(_Recordset** Rs, VARIANT* PKey, BSTR* Tabela, BSTR* StrWhere, IDispatch** Caller,
                                  LONG* clCurrentIndex, VARIANT* clCurrentObject, LONG* clLast_Related_ID) noexcept {
  const bool complete =
      AllGiven(Rs, PKey, Tabela, StrWhere, Caller, clCurrentIndex, clCurrentObject, clLast_Related_ID);
  return AnswerRecord("ObjectOpen", complete, [&] {
    general_.ObjectOpen(KeyOf(*PKey), Request(*Caller, *clCurrentIndex, *clCurrentObject, *clLast_Related_ID));
  });
}

HRESULT GeneralObject::Registo(_Recordset** Rs, VARIANT* PKey, BSTR* Tabela, BSTR* StrWhere,
                               IDispatch** Caller) noexcept {
  return AnswerRecord("Registo", AllGiven(Rs, PKey, Tabela, StrWhere, Caller),
                      [&] { general_.Registo(KeyOf(*PKey), Request(*Caller)); });
}

HRESULT GeneralObject::ObjectNew(_Recordset** Rs, BSTR* Table, BSTR* StrWhere, IDispatch** Caller, LONG* clCurrentIndex,
                                 VARIANT* clCurrentObject, LONG* clLast_Related_ID) noexcept {
  const bool complete = AllGiven(Rs, Table, StrWhere, Caller, clCurrentIndex, clCurrentObject, clLast_Related_ID);
  return AnswerRecord("ObjectNew", complete, [&] {
    general_.ObjectNew(Request(*Caller, *clCurrentIndex, *clCurrentObject, *clLast_Related_ID));
  });
}

HRESULT GeneralObject::NovoRegisto(_Recordset** Rs, BSTR* Tabela, VARIANT* Contacto_ID, IDispatch** Caller) noexcept {
  return AnswerRecord("NovoRegisto", AllGiven(Rs, Tabela, Contacto_ID, Caller),
                      [&] { general_.NovoRegisto(Request(*Caller)); });
}

HRESULT GeneralObject::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT GeneralObject::GetTypeInfo(UINT index, LCID, ITypeInfo** information) noexcept {
  if (information == nullptr) return E_POINTER;
  *information = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return LoadTypeInformation(use_.Get().Module(), __uuidof(_General), information);
}

HRESULT GeneralObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* members) noexcept {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || members == nullptr) return E_POINTER;
  for (UINT index = 0; index < count; ++index) members[index] = DISPID_UNKNOWN;
  ComPtr<ITypeInfo> information;
  const HRESULT loaded = GetTypeInfo(0, LOCALE_NEUTRAL, information.Receive());
  return FAILED(loaded) ? loaded : DispGetIDsOfNames(information.Get(), names, count, members);
}

HRESULT GeneralObject::InvokeMember(DISPID member, DISPPARAMS& parameters, VARIANT* result,
                                    UINT* bad_argument) noexcept {
  base::Locale locale;
  try {
    locale = composition_->Component().session().locale();
  } catch (...) {
    // Numbers written as text are then read by the defaults.
  }
  const auto call = [&](auto method) {
    return CallNormalised(*this, method, parameters, locale, result, bad_argument);
  };
  switch (member) {
    case kSQLConnect:
      return call(&GeneralObject::SQLConnect);
    case kLogin:
      return call(&GeneralObject::Login);
    case kObjectOpen:
      return call(&GeneralObject::ObjectOpen);
    case kRegisto:
      return call(&GeneralObject::Registo);
    case kObjectNew:
      return call(&GeneralObject::ObjectNew);
    case kNovoRegisto:
      return call(&GeneralObject::NovoRegisto);
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
}

HRESULT GeneralObject::Invoke(DISPID member, REFIID reserved, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                              EXCEPINFO* exception, UINT* bad_argument) noexcept {
  if (result != nullptr) VariantInit(result);
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_POINTER;
  if ((kind & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (!use_.Get().OnOwningThread()) return RPC_E_WRONG_THREAD;
  SetErrorInfo(0, nullptr);
  const ComPtr<_General> self(this);
  const HRESULT outcome = InvokeMember(member, *parameters, result, bad_argument);
  if (SUCCEEDED(outcome) || HRESULT_FACILITY(outcome) == FACILITY_DISPATCH) return outcome;
  return RaiseException(outcome, exception);
}

HRESULT GeneralObject::InterfaceSupportsErrorInfo(REFIID iid) noexcept {
  return IsEqualIID(iid, __uuidof(_General)) ? S_OK : S_FALSE;
}

HRESULT GeneralObject::GetClassInfo(ITypeInfo** information) noexcept {
  return LoadTypeInformation(use_.Get().Module(), __uuidof(::General), information);
}

}  // namespace quenta::platform
