// Objects called by name without a lookup for each call: the identifiers of a class's members are asked for once.
#pragma once

#include <ole2.h>

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"

namespace quenta::platform {

// The members of one automation class, in an order that its user fixes in an enumeration.
class MemberIdentifiers {
 public:
  MemberIdentifiers(std::initializer_list<const wchar_t*> names)
      : names_(names), identifiers_(names.size(), kUnknown) {}

  // The identifier of a member, asked of the object when it is wanted for the first time. Throws base::Error.
  DISPID Of(IDispatch& object, std::size_t member);

 private:
  static constexpr DISPID kUnknown = DISPID_UNKNOWN;

  std::vector<const wchar_t*> names_;
  std::vector<DISPID> identifiers_;
};

// A reference to an object whose members are those of Member, an enumeration that counts from 0 in the order of the
// identifiers. Calls throw base::Error with the object's own number and description where it left any.
template <typename Member>
class LateBound {
 public:
  LateBound(ComPtr<IDispatch> object, MemberIdentifiers& identifiers)
      : object_(std::move(object)), identifiers_(&identifiers) {}

  // Arguments in the order of their declaration; they stay the caller's.
  Variant Call(Member member, std::initializer_list<VARIANT> arguments = {}) const;
  Variant Get(Member property) const;
  void Put(Member property, const Variant& value) const;

  // Where a result or a property must be an object. Throws base::Error 91 when it is none.
  ComPtr<IDispatch> CallForObject(Member member, std::initializer_list<VARIANT> arguments = {}) const;

 private:
  DISPID Identifier(Member member) const { return identifiers_->Of(*object_.Get(), static_cast<std::size_t>(member)); }

  ComPtr<IDispatch> object_;
  MemberIdentifiers* identifiers_;
};

// One call by identifier; the arguments stay the caller's. Throws as LateBound does.
Variant Invoke(IDispatch& object, DISPID member, WORD kind, std::initializer_list<VARIANT> arguments);

// The object that a variant holds. Throws base::Error 91 when it holds none.
ComPtr<IDispatch> ObjectIn(const Variant& variant);

template <typename Member>
Variant LateBound<Member>::Call(Member member, std::initializer_list<VARIANT> arguments) const {
  // A collection's Item is a property with an argument, which callers without a type library ask for in both ways.
  return Invoke(*object_.Get(), Identifier(member), DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
}

template <typename Member>
Variant LateBound<Member>::Get(Member property) const {
  return Invoke(*object_.Get(), Identifier(property), DISPATCH_PROPERTYGET, {});
}

template <typename Member>
void LateBound<Member>::Put(Member property, const Variant& value) const {
  Invoke(*object_.Get(), Identifier(property), DISPATCH_PROPERTYPUT, {value.Get()});
}

template <typename Member>
ComPtr<IDispatch> LateBound<Member>::CallForObject(Member member, std::initializer_list<VARIANT> arguments) const {
  return ObjectIn(Call(member, arguments));
}

}  // namespace quenta::platform
