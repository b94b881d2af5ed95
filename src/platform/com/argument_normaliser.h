// Brings the arguments of a late-bound call into the exact shape that a method declares, and writes back afterwards
// what the method changed. Scripts pass variables by reference, literals, numbers as text and text as numbers, Nothing,
// arguments by name, or leave some out; automation's own dispatcher refuses most of these for "by reference" arguments.
#pragma once

#include <ole2.h>

#include <array>
#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/locale.h"
#include "platform/automation/variant.h"
#include "platform/com/quenta_produtos.h"

namespace quenta::platform {

// What a method declares, always by reference. Empty, Null and arguments left out become "", 0 or Nothing; a variant
// takes everything as it comes.
enum class ParameterKind { kText, kLong, kVariant, kObject, kRecordset };

// The arguments of one call, held apart from the caller's variables: those may change or vanish while the method lets
// the host process messages.
class NormalisedArguments {
 public:
  // Converts all arguments. Numbers and text convert by the suite's rules in the given locale. Failures:
  // DISP_E_BADPARAMCOUNT; DISP_E_PARAMNOTFOUND for a name that is not the method's or an argument given twice;
  // DISP_E_TYPEMISMATCH and DISP_E_OVERFLOW with the argument's position in rgvarg in bad_argument (may be null).
  HRESULT Take(DISPPARAMS& parameters, std::span<const ParameterKind> kinds, const base::Locale& locale,
               UINT* bad_argument) noexcept;

  // Puts what the method changed into the caller's variables, keeping a typed variable's type. What did not change is
  // not touched, so a variable that holds "123" still does.
  HRESULT WriteBack(UINT* bad_argument) noexcept;

  // Where the method finds its argument. The type must be the parameter's.
  template <typename Pointer>
  Pointer At(std::size_t index) noexcept {
    VARIANT& content = arguments_[index].current.Get();
    if constexpr (std::is_same_v<Pointer, BSTR*>) return &content.bstrVal;
    if constexpr (std::is_same_v<Pointer, LONG*>) return &content.lVal;
    if constexpr (std::is_same_v<Pointer, VARIANT*>) return &content;
    if constexpr (std::is_same_v<Pointer, IDispatch**>) return &content.pdispVal;
    // Only ever filled with a pointer to that very interface, see Take.
    if constexpr (std::is_same_v<Pointer, _Recordset**>) return reinterpret_cast<_Recordset**>(&content.byref);
  }

 private:
  struct Argument {
    explicit Argument(ParameterKind parameter_kind) noexcept : kind(parameter_kind) {}

    ParameterKind kind;
    VARIANT* given = nullptr;  // the caller's, null when left out
    UINT position = 0;         // of the caller's argument in rgvarg
    Variant current;           // what the method sees
    Variant before;            // the same before the call
  };

  HRESULT Assign(DISPPARAMS& parameters, UINT* bad_argument) noexcept;

  std::vector<Argument> arguments_;
};

// The kind of a parameter by its type.
template <typename Pointer>
constexpr ParameterKind KindOf() noexcept {
  if constexpr (std::is_same_v<Pointer, BSTR*>) return ParameterKind::kText;
  if constexpr (std::is_same_v<Pointer, LONG*>) return ParameterKind::kLong;
  if constexpr (std::is_same_v<Pointer, VARIANT*>) return ParameterKind::kVariant;
  if constexpr (std::is_same_v<Pointer, IDispatch**>) return ParameterKind::kObject;
  return ParameterKind::kRecordset;
}

// Calls a method of a dual interface with what a late-bound call passed; the kinds of the parameters follow from the
// method's declaration. A last parameter of type VARIANT_BOOL* is the method's result, stored into result (may be
// null). bad_argument may be null. Answers what Take, the method or WriteBack answer.
template <typename Object, typename... Parameters>
HRESULT CallNormalised(Object& object, HRESULT (STDMETHODCALLTYPE Object::*method)(Parameters...),
                       DISPPARAMS& parameters, const base::Locale& locale, VARIANT* result,
                       UINT* bad_argument) noexcept {
  constexpr bool kHasResult = (std::is_same_v<Parameters, VARIANT_BOOL*> || ...);
  constexpr std::array kKinds{KindOf<Parameters>()...};

  NormalisedArguments arguments;
  HRESULT outcome =
      arguments.Take(parameters, std::span(kKinds).first(kKinds.size() - (kHasResult ? 1 : 0)), locale, bad_argument);
  if (FAILED(outcome)) return outcome;

  VARIANT_BOOL answer = VARIANT_FALSE;
  const auto call = [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return (object.*method)([&]() -> Parameters {
      if constexpr (std::is_same_v<Parameters, VARIANT_BOOL*>)
        return &answer;
      else
        return arguments.At<Parameters>(Index);
    }()...);
  };
  outcome = call(std::index_sequence_for<Parameters...>{});
  if (FAILED(outcome)) return outcome;

  if (kHasResult && result != nullptr) {
    result->vt = VT_BOOL;
    result->boolVal = answer;
  }
  const HRESULT written = arguments.WriteBack(bad_argument);
  return FAILED(written) ? written : outcome;
}

}  // namespace quenta::platform
