// The late-bound half of a COM class: members found by name in a table, arguments unpacked, errors handed to the
// caller.
#pragma once

#include <ole2.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/automation/com_object.h"
#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"
#include "sandbox/com/module.h"

namespace quenta::sandbox::com {

using platform::ComPtr;
using platform::Variant;

// What a variant holds, converted as automation does it. Throw base::Error 13 where that fails.
std::string TextOf(const VARIANT& variant);
std::int32_t LongOf(const VARIANT& variant);

// The arguments of one call, in the order of their declaration. Conversions throw as above.
class Arguments {
 public:
  explicit Arguments(const DISPPARAMS& parameters) : parameters_(parameters) {}

  std::size_t count() const noexcept { return parameters_.cArgs; }
  // Passed at all, and neither left out nor Empty.
  bool Has(std::size_t index) const noexcept;
  // The argument through a reference to a variant. Only for those that were passed.
  const VARIANT& At(std::size_t index) const noexcept;

  std::string Text(std::size_t index, std::string_view otherwise = {}) const;
  std::int32_t Long(std::size_t index, std::int32_t otherwise) const;
  // Null when the argument is none or no object.
  ComPtr<IDispatch> Object(std::size_t index) const noexcept;

  // Stores a number where the caller passed a variable by reference; anything else is left alone.
  void StoreLong(std::size_t index, std::int32_t number) const noexcept;

 private:
  const VARIANT& Raw(std::size_t index) const noexcept { return parameters_.rgvarg[parameters_.cArgs - 1 - index]; }

  const DISPPARAMS& parameters_;
};

// How many arguments a call takes, and how many of them, the first ones, it must have.
struct Parameters {
  std::size_t count = 0;
  std::size_t required = 0;
};

inline constexpr WORD kMethod = DISPATCH_METHOD;
inline constexpr WORD kProperty = DISPATCH_PROPERTYGET;

// A method, or a property with the function that reads it and, when it can be set, the one that stores it.
template <typename Class>
struct Member {
  const wchar_t* name;
  DISPID identifier;
  WORD kind;  // kMethod, kProperty
  Parameters parameters;
  Variant (Class::*call)(const Arguments&);
  void (Class::*put)(const Arguments&) = nullptr;
};

// IDispatch without a type library, as far as scripts and late-bound hosts use it. It is as strict as the dispatch of a
// type library is: a member is called in its own way and with its own number of arguments, or the call is refused.
// Errors leave as EXCEPINFO.
class AutomationObject : public platform::ComObject<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* identifiers) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID identifier, REFIID iid, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override;

 protected:
  // DISPID_UNKNOWN when there is no such member; names match without regard to case.
  virtual DISPID FindMember(std::wstring_view name) const noexcept = 0;
  // S_OK, or why the member cannot be called in this way: DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT.
  virtual HRESULT Call(DISPID identifier, WORD kind, const Arguments& arguments, Variant& result) = 0;
  // Where an error of the class itself comes from, such as "ADODB.Connection".
  virtual std::wstring_view Source() const noexcept = 0;

 private:
  ModuleUse use_;
};

bool SameName(std::wstring_view a, std::wstring_view b) noexcept;

// Class has a static function Members() with its table.
template <typename Class>
class Automation : public AutomationObject {
 protected:
  DISPID FindMember(std::wstring_view name) const noexcept override {
    for (const Member<Class>& member : Class::Members()) {
      if (SameName(member.name, name)) return member.identifier;
    }
    return DISPID_UNKNOWN;
  }

  HRESULT Call(DISPID identifier, WORD kind, const Arguments& arguments, Variant& result) override {
    auto& self = static_cast<Class&>(*this);
    for (const Member<Class>& member : Class::Members()) {
      if (member.identifier != identifier) continue;
      if ((kind & DISPATCH_PROPERTYPUT) != 0) {
        if (member.put == nullptr) return DISP_E_MEMBERNOTFOUND;
        if (arguments.count() != 1) return DISP_E_BADPARAMCOUNT;
        (self.*member.put)(arguments);
        return S_OK;
      }
      if ((kind & member.kind) == 0) return DISP_E_MEMBERNOTFOUND;
      if (arguments.count() > member.parameters.count || arguments.count() < member.parameters.required) {
        return DISP_E_BADPARAMCOUNT;
      }
      result = (self.*member.call)(arguments);
      return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  }
};

// A new reference as a result; null is Nothing.
template <typename Class>
Variant ObjectResult(const ComPtr<Class>& object) {
  return Variant(static_cast<IDispatch*>(object.Get()));
}

Variant BooleanResult(bool value) noexcept;

// A number of the type ADO_LONGPTR, which is as wide as the process's pointers.
Variant LongPointerResult(std::intptr_t number) noexcept;

}  // namespace quenta::sandbox::com
