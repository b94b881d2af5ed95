#include "platform/com/argument_normaliser.h"

#include "component/com/com_fixture.h"
#include "support/locales.h"

namespace quenta::tests {
namespace {

using platform::CallNormalised;

// Stands for a class with one method of each kind of parameter; shows what arrived and writes on demand.
struct Method {
  HRESULT STDMETHODCALLTYPE Take(BSTR* text, LONG* number, VARIANT* any, IDispatch** object, _Recordset** recordset,
                                 VARIANT_BOOL* success) noexcept {
    seen_text = platform::FromBstr(*text);
    seen_number = *number;
    seen_type = any->vt;
    seen_object = *object;
    seen_recordset = *recordset != nullptr;
    if (write) write(text, number, any, object);
    *success = VARIANT_TRUE;
    return answer;
  }

  HRESULT Call(std::vector<VARIANT> arguments, std::vector<DISPID> named = {}) {
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    std::vector<DISPID> names(named.rbegin(), named.rend());
    DISPPARAMS parameters{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
    return CallNormalised(*this, &Method::Take, parameters, PortugueseLocale(), result.Receive(), &bad_argument);
  }

  std::string seen_text = "?";
  LONG seen_number = -1;
  VARTYPE seen_type = VT_ILLEGAL;
  IDispatch* seen_object = nullptr;
  bool seen_recordset = false;
  std::function<void(BSTR*, LONG*, VARIANT*, IDispatch**)> write;
  HRESULT answer = S_OK;
  Variant result;
  UINT bad_argument = 999;
};

VARIANT Missing() {
  VARIANT variant = Typed(VT_ERROR);
  variant.scode = DISP_E_PARAMNOTFOUND;
  return variant;
}

VARIANT Real(double value) {
  VARIANT variant = Typed(VT_R8);
  variant.dblVal = value;
  return variant;
}

TEST(ArgumentNormaliserTest, TakesWhatScriptsPass) {
  const Bstr digits("123"), decimal("1.234,50"), words("abc");
  Variant held_text(std::string_view("45"));
  Variant held_number(std::int32_t{6});
  Variant nested;
  nested.Get() = Variable(held_number);
  BSTR typed_text = words.Get();
  LONG typed_number = 77;
  short small = -5;
  const auto field = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT* value) {
    *value = Number(41);
    return S_OK;
  });

  struct Case {
    const char* what;
    VARIANT text;
    VARIANT number;
    std::string seen_text;
    LONG seen_number;
  };
  const Case cases[] = {
      {"their own types", Text(words), Number(5), "abc", 5},
      {"each other's types", Number(123), Text(digits), "123", 123},
      {"formatted and fractional numbers", Real(1.5), Text(decimal), "1,5", 1234},
      {"halves round to even", Text(words), Real(2.5), "abc", 2},
      {"variables", Variable(held_text), Variable(held_number), "45", 6},
      {"variables of the other type", Variable(held_number), Variable(held_text), "6", 45},
      {"a variable that is a reference again", Variable(nested), Variable(nested), "6", 6},
      {"typed references", Reference(VT_BSTR, &typed_text), Reference(VT_I4, &typed_number), "abc", 77},
      {"a short reference", Reference(VT_I2, &small), Reference(VT_I2, &small), "-5", -5},
      {"objects with a default property", Object(field.Get()), Object(field.Get()), "41", 41},
      {"Empty", Typed(VT_EMPTY), Typed(VT_EMPTY), "", 0},
      {"Null", Typed(VT_NULL), Typed(VT_NULL), "", 0},
      {"left out", Missing(), Missing(), "", 0},
  };
  for (const Case& given : cases) {
    SCOPED_TRACE(given.what);
    Method method;
    EXPECT_EQ(method.Call({given.text, given.number, Number(1), Typed(VT_EMPTY), Typed(VT_EMPTY)}), S_OK);
    EXPECT_EQ(method.seen_text, given.seen_text);
    EXPECT_EQ(method.seen_number, given.seen_number);
    EXPECT_EQ(method.result.Get().boolVal, VARIANT_TRUE);
  }
}

TEST(ArgumentNormaliserTest, LeftOutArgumentsNamesAndObjectsFindTheirPlace) {
  const Bstr text("x");
  Method method;
  EXPECT_EQ(method.Call({}), S_OK);
  EXPECT_EQ(method.seen_text, "");
  EXPECT_EQ(method.seen_type, VT_ERROR) << "a variant parameter can tell that it was left out";
  EXPECT_EQ(method.Call({Text(text), Number(8), Number(7)}, {2, 1}), S_OK) << "the last two by name";
  EXPECT_EQ(method.seen_text, "x");
  EXPECT_EQ(method.seen_number, 7);
  EXPECT_EQ(method.seen_type, VT_I4);
  EXPECT_EQ(method.Call({Text(text), Number(8)}, {0}), DISP_E_PARAMNOTFOUND) << "the first one twice";
  EXPECT_EQ(method.Call({Number(8)}, {17}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(method.Call({Number(8)}, {DISPID_PROPERTYPUT}), DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(method.Call(std::vector<VARIANT>(6, Number(0))), DISP_E_BADPARAMCOUNT);

  const auto object = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) { return E_FAIL; });
  Variant variable(object.Get());
  Variant nothing(static_cast<IDispatch*>(nullptr));
  for (const VARIANT& given : {Object(object.Get()), Variable(variable), Variable(nothing), Typed(VT_NULL)}) {
    EXPECT_EQ(method.Call({Typed(VT_EMPTY), Number(0), Number(0), given, given}), S_OK);
    const bool is_object = given.vt == VT_DISPATCH || given.pvarVal == &variable.Get();
    EXPECT_EQ(method.seen_object, is_object ? object.Get() : nullptr);
    EXPECT_FALSE(method.seen_recordset) << "an object that is no recordset is not passed off as one";
  }
  EXPECT_EQ(References(*object.Get()), 2U) << "the test's and the variable's";
}

TEST(ArgumentNormaliserTest, RefusalsNameTheArgument) {
  const Bstr words("abc");
  const auto broken = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) { return E_FAIL; });
  VARIANT array = Typed(VT_ARRAY | VT_UI1);
  array.parray = SafeArrayCreateVector(VT_UI1, 0, 3);
  struct Case {
    const char* what;
    std::size_t parameter;
    VARIANT given;
    HRESULT outcome;
  };
  const Case cases[] = {
      {"words for a number", 1, Text(words), DISP_E_TYPEMISMATCH},
      {"too large a number", 1, Real(3e9), DISP_E_OVERFLOW},
      {"Nothing for a text", 0, Object(nullptr), DISP_E_TYPEMISMATCH},
      {"an object without a default property", 0, Object(broken.Get()), DISP_E_TYPEMISMATCH},
      {"an array for a text", 0, array, DISP_E_TYPEMISMATCH},
      {"a text for an object", 3, Text(words), DISP_E_TYPEMISMATCH},
      {"a number for a recordset", 4, Number(1), DISP_E_TYPEMISMATCH},
      {"a reference to nowhere", 1, Reference(VT_I4, nullptr), DISP_E_TYPEMISMATCH},
  };
  for (const Case& refused : cases) {
    SCOPED_TRACE(refused.what);
    std::vector<VARIANT> arguments{Typed(VT_EMPTY), Number(0), Number(0), Typed(VT_EMPTY), Typed(VT_EMPTY)};
    arguments[refused.parameter] = refused.given;
    Method method;
    EXPECT_EQ(method.Call(arguments), refused.outcome);
    EXPECT_EQ(method.bad_argument, arguments.size() - 1 - refused.parameter) << "counted from the last argument";
    EXPECT_EQ(method.seen_text, "?") << "the method must not run";
    EXPECT_EQ(method.result.Type(), VT_EMPTY);
  }
  SafeArrayDestroy(array.parray);
}

TEST(ArgumentNormaliserTest, ChangesAreWrittenBackInTheVariablesOwnType) {
  const auto object = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) { return E_FAIL; });
  Method method;
  method.write = [&](BSTR* text, LONG* number, VARIANT* any, IDispatch** caller) {
    SysReAllocString(text, L"12");
    *number = 34;
    any->vt = VT_I4;
    any->lVal = 56;
    if (*caller != nullptr) (*caller)->Release();
    *caller = nullptr;
  };

  Variant text(std::string_view("old")), number(std::string_view("1")), any, caller(object.Get());
  EXPECT_EQ(method.Call({Variable(text), Variable(number), Variable(any), Variable(caller)}), S_OK);
  EXPECT_EQ(platform::FromBstr(text.Get().bstrVal), "12");
  EXPECT_EQ(number.Type(), VT_I4);
  EXPECT_EQ(number.Get().lVal, 34);
  EXPECT_EQ(any.Get().lVal, 56);
  EXPECT_EQ(caller.Get().pdispVal, nullptr);

  Bstr typed_text("old");
  BSTR owned = typed_text.Detach();
  double real = 0;
  short small = 0;
  IDispatch* reference = object.Get();
  reference->AddRef();
  EXPECT_EQ(method.Call({Reference(VT_BSTR, &owned), Reference(VT_R8, &real), Reference(VT_I2, &small),
                         Reference(VT_DISPATCH, &reference)}),
            S_OK);
  EXPECT_EQ(platform::FromBstr(owned), "12");
  EXPECT_EQ(real, 34.0);
  EXPECT_EQ(small, 56);
  EXPECT_EQ(reference, nullptr);
  SysFreeString(owned);

  Variant shared(std::string_view("9"));
  EXPECT_EQ(method.Call({Variable(shared), Variable(shared)}), S_OK) << "one variable for two arguments";
  EXPECT_EQ(shared.Get().lVal, 34) << "the later parameter's value stays";

  const Bstr literal("literal");
  EXPECT_EQ(method.Call({Text(literal), Number(1)}), S_OK);
  EXPECT_EQ(literal.Text(), "literal") << "what did not come by reference is not the method's to change";
}

TEST(ArgumentNormaliserTest, WhatDidNotChangeIsNotTouched) {
  Variant number_as_text(std::string_view("123")), text_as_number(std::int32_t{7}), null;
  null.Get() = Typed(VT_NULL);
  BSTR before = number_as_text.Get().bstrVal;
  Method method;
  EXPECT_EQ(method.Call({Variable(text_as_number), Variable(number_as_text), Variable(null)}), S_OK);
  EXPECT_EQ(number_as_text.Get().bstrVal, before) << "not even reallocated";
  EXPECT_EQ(text_as_number.Get().lVal, 7);
  EXPECT_EQ(null.Type(), VT_NULL);

  method.write = [](BSTR* text, LONG*, VARIANT*, IDispatch**) { SysReAllocString(text, L"changed"); };
  method.answer = E_FAIL;
  Variant text(std::string_view("kept"));
  EXPECT_EQ(method.Call({Variable(text)}), E_FAIL);
  EXPECT_EQ(platform::FromBstr(text.Get().bstrVal), "kept") << "a failed call changes nothing";
}

}  // namespace
}  // namespace quenta::tests
