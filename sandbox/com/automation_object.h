// The late-bound half of a COM class: members found by name in a table, arguments unpacked, errors handed to the
// caller.
#pragma once

#include <ole2.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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

// A method, or a property with the function that reads it and, when it can be set, the one that stores it.
template <typename Class>
struct Member {
  const wchar_t* name;
  DISPID identifier;
  Variant (Class::*call)(const Arguments&);
  void (Class::*put)(const Arguments&) = nullptr;
};

// IDispatch without a type library, as far as scripts and late-bound hosts use it. Errors leave as EXCEPINFO.
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
  // False when there is no such member, or it cannot be set.
  virtual bool Call(DISPID identifier, bool put, const Arguments& arguments, Variant& result) = 0;
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

  bool Call(DISPID identifier, bool put, const Arguments& arguments, Variant& result) override {
    auto& self = static_cast<Class&>(*this);
    for (const Member<Class>& member : Class::Members()) {
      if (member.identifier != identifier) continue;
      if (!put) {
        result = (self.*member.call)(arguments);
        return true;
      }
      if (member.put == nullptr) return false;
      (self.*member.put)(arguments);
      return true;
    }
    return false;
  }
};

// A new reference as a result; null is Nothing.
template <typename Class>
Variant ObjectResult(const ComPtr<Class>& object) {
  return Variant(static_cast<IDispatch*>(object.Get()));
}

Variant BooleanResult(bool value) noexcept;

// An object that For Each walks over, with these elements.
Variant EnumeratorResult(std::vector<Variant> elements);

}  // namespace quenta::sandbox::com
