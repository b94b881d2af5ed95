// The COM class General: takes automation's arguments apart and hands them to the component.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <memory>

#include "component/general.h"
#include "platform/automation/com_object.h"
#include "platform/automation/com_ptr.h"
#include "platform/com/composition.h"
#include "platform/com/quenta_produtos.h"
#include "platform/com/server.h"

namespace quenta::platform {

// Every call from a thread other than the owning one gives RPC_E_WRONG_THREAD, and a null pointer for an argument
// E_POINTER, with error information. No other error leaves the component: a procedure that fails reports it elsewhere
// and ends normally. The caller's arguments are read and never replaced.
class GeneralObject final : public ComObject<_General, ISupportErrorInfo, IProvideClassInfo> {
 public:
  // Throws std::bad_alloc.
  GeneralObject(Server& server, std::shared_ptr<Composition> composition);

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* members) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) noexcept override;

  HRESULT STDMETHODCALLTYPE SQLConnect(BSTR* User, BSTR* Password, BSTR* cnUser, BSTR* cnPassword,
                                       BSTR* cnInitialCatalog, BSTR* cnDataSource, BSTR* cnDataSourceSecondary,
                                       LONG* oFlags, VARIANT_BOOL* Result) noexcept override;
  HRESULT STDMETHODCALLTYPE Login(BSTR* User, BSTR* Password, VARIANT_BOOL* Result) noexcept override;
  HRESULT STDMETHODCALLTYPE ObjectOpen(_Recordset** Rs, VARIANT* PKey, BSTR* Tabela, BSTR* StrWhere, IDispatch** Caller,
                                       LONG* clCurrentIndex, VARIANT* clCurrentObject,
                                       LONG* clLast_Related_ID) noexcept override;
  HRESULT STDMETHODCALLTYPE Registo(_Recordset** Rs, VARIANT* PKey, BSTR* Tabela, BSTR* StrWhere,
                                    IDispatch** Caller) noexcept override;
  HRESULT STDMETHODCALLTYPE ObjectNew(_Recordset** Rs, BSTR* Table, BSTR* StrWhere, IDispatch** Caller,
                                      LONG* clCurrentIndex, VARIANT* clCurrentObject,
                                      LONG* clLast_Related_ID) noexcept override;
  HRESULT STDMETHODCALLTYPE NovoRegisto(_Recordset** Rs, BSTR* Tabela, VARIANT* Contacto_ID,
                                        IDispatch** Caller) noexcept override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override;
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** information) noexcept override;

 private:
  ports::ProductRequest Request(IDispatch* caller);
  ports::ProductRequest Request(IDispatch* caller, LONG current_index, VARIANT& current_object, LONG last_related_id);
  template <typename Body>
  HRESULT Answer(bool arguments_complete, Body&& body) noexcept;
  template <typename Body>
  HRESULT AnswerRecord(const char* procedure, bool arguments_complete, Body&& body) noexcept;
  HRESULT InvokeMember(DISPID member, DISPPARAMS& parameters, VARIANT* result, UINT* bad_argument) noexcept;

  const ServerUse use_;
  // Kept even when COM ends before the last reference to this object: what is called then finds no session.
  const std::shared_ptr<Composition> composition_;
  component::General general_;
};

}  // namespace quenta::platform
