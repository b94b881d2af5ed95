#include "platform/automation/variant_value.h"

#include "base/error.h"
#include "component/com/com_fixture.h"

namespace quenta::tests {
namespace {

using base::Value;
using platform::ToValue;
using platform::ToVariant;

TEST(VariantValueTest, EveryKindSurvivesTheWayThere_AndBack) {
  const Value values[] = {
      Value(),
      Value::Null(),
      true,
      false,
      std::int32_t{-2147483647 - 1},
      std::int64_t{9007199254740993},
      1.5F,
      -0.1,
      base::Currency{-922337203685477580},
      base::Decimal{.low = 0xFFFFFFFF, .middle = 2, .high = 0x80000000, .scale = 28, .negative = true},
      base::Date{-1.25},
      "",
      "ção €",
      std::string("a\0b", 3),
      "\xF0\x9F\x98\x80 beyond the basic plane",
      "\xED\xA0\x80 a lone surrogate",
  };
  for (const Value& value : values) {
    const Variant variant = ToVariant(value);
    EXPECT_EQ(ToValue(variant.Get()), value) << static_cast<int>(value.kind());
  }
  EXPECT_EQ(ToVariant(true).Get().boolVal, VARIANT_TRUE);
}

TEST(VariantValueTest, OtherTypesAndReferencesAreRead) {
  BYTE byte = 200;
  signed char tiny = -3;
  double real = 2.5;
  DECIMAL decimal{};
  decimal.Lo32 = 7;
  decimal.scale = 1;
  VARIANT unsigned_long = Typed(VT_UI4), unsigned_huge = Typed(VT_UI8), null_text = Typed(VT_BSTR);
  unsigned_long.ulVal = 4000000000;
  unsigned_huge.ullVal = 18446744073709551615ULL;
  Variant inner(std::string_view("dentro"));
  Variant outer;
  outer.Get() = Variable(inner);
  const auto field = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT* value) {
    *value = Number(8);
    return S_OK;
  });

  EXPECT_EQ(ToValue(Reference(VT_UI1, &byte)), Value(std::int32_t{200}));
  EXPECT_EQ(ToValue(Reference(VT_I1, &tiny)), Value(std::int32_t{-3}));
  EXPECT_EQ(ToValue(Reference(VT_R8, &real)), Value(2.5));
  EXPECT_EQ(ToValue(Reference(VT_DECIMAL, &decimal)), Value(base::Decimal{.low = 7, .scale = 1}));
  EXPECT_EQ(ToValue(unsigned_long), Value(std::int64_t{4000000000}));
  EXPECT_EQ(ToValue(unsigned_huge), Value(base::Decimal{.low = 0xFFFFFFFF, .middle = 0xFFFFFFFF}));
  EXPECT_EQ(ToValue(null_text), Value(""));
  EXPECT_EQ(ToValue(Variable(outer)), Value("dentro"));
  EXPECT_EQ(ToValue(Object(field.Get())), Value(std::int32_t{8}));
  EXPECT_EQ(ToValue(Variant::Missing().Get()), Value());
}

TEST(VariantValueTest, WhatIsNoValueIsRefused) {
  VARIANT error = Typed(VT_ERROR);
  error.scode = E_FAIL;
  ComPtr<IDispatch> itself;
  itself = ScriptObject::Make([&](const std::wstring&, DISPPARAMS&, VARIANT* value) {
    *value = Object(itself.Get());
    itself->AddRef();
    return S_OK;
  });
  Variant ring;
  ring.Get() = Variable(ring);
  for (const VARIANT& variant : {error, Object(nullptr), Object(itself.Get()), ring.Get(), Typed(VT_ARRAY | VT_UI1),
                                 Reference(VT_I4, nullptr), Typed(VT_RECORD)}) {
    EXPECT_THROW(ToValue(variant), base::Error) << variant.vt;
  }
}

}  // namespace
}  // namespace quenta::tests
