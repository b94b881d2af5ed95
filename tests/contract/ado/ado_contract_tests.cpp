// The contract on the ADO adapter: over the sandbox's classes under Wine, or over the real ones on a Windows machine.
#include "sandbox_source.h"

#include <gtest/gtest.h>

#include "ado_description.h"
#include "base/error.h"
#include "database_contract.h"
#include "platform/ado/ado_database.h"
#include "platform/ado/late_bound.h"
#include "platform/automation/dispatch.h"
#include "platform/automation/variant.h"

namespace quenta::contract {
namespace {

using platform::ComPtr;
using platform::ObjectIn;
using platform::Variant;

// The contract also connects from threads of its own; each is an apartment with connections of its own. All that the
// adapter calls is held to ADO's description.
class DatabaseOnAnyThread final : public ports::Database {
 public:
  std::unique_ptr<ports::Connection> CreateConnection() override {
    // Not the database, too: mingw frees a thread's own variables before it destroys them, which only an object without
    // members survives.
    thread_local const Apartment apartment;
    int held = 0;
    const ReplacedConnections replaced([&held](ComPtr<IDispatch> connection) {
      ++held;
      return HeldToDescription(std::move(connection), L"_Connection");
    });
    auto connection = platform::AdoDatabase().CreateConnection();
    EXPECT_EQ(held, 1);
    return connection;
  }
};

class AdoBackend final : public Backend {
 public:
  std::unique_ptr<ports::Database> Create() override { return std::make_unique<DatabaseOnAnyThread>(); }
  std::string Good() override { return server_.ConnectionString(); }
  std::string WrongPassword() override {
    Server other = server_;
    other.password = "other";
    return other.ConnectionString();
  }
  std::string UnknownUser() override {
    Server other = server_;
    other.user = "nobody";
    return other.ConnectionString();
  }
  std::string UnknownSource() override {
    Server other = server_;
    other.source = "nowhere";
    return other.ConnectionString();
  }
  std::string WrongCatalogue() override {
    Server other = server_;
    other.catalogue = "Other";
    return other.ConnectionString();
  }
  std::string SilentSource() override {
    Server other = server_;
    other.source = other.silent;
    return other.ConnectionString();
  }
  bool HasNoSilentSource() override { return server_.silent.empty(); }
  bool HasNoParallelThreads() override { return true; }

 private:
  const Server& server_ = TestedServer();
};

std::unique_ptr<Backend> MakeAdoBackend() {
  return std::make_unique<AdoBackend>();
}

// Probes an object of ADO with every member of its interface: those that it offers are the described ones, are called
// in no other way than described, and give what is described. (Methods that give something are held as the adapter
// calls them.)
void ExpectAsDescribed(const ComPtr<IDispatch>& object, const std::wstring& interface_name) {
  constexpr WORD kKinds[] = {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF};
  const AdoInterface& described = DescribedInterface(interface_name);
  const auto invoke = [&](DISPID identifier, WORD kind, std::size_t count, Variant& answer) {
    std::vector<VARIANT> arguments(count, Variant::Missing().Get());
    DISPID put = DISPID_PROPERTYPUT;
    const bool is_put = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters{arguments.data(), is_put ? &put : nullptr, static_cast<UINT>(count), is_put ? 1U : 0U};
    return object->Invoke(identifier, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, answer.Receive(), nullptr,
                          nullptr);
  };
  int offered = 0;
  for (const AdoMember& member : described.members) {
    SCOPED_TRACE(platform::FromWide((interface_name + L"." + member.name).c_str()));
    std::wstring spelled = member.name;
    wchar_t* name = spelled.data();
    DISPID identifier = DISPID_UNKNOWN;
    if (FAILED(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &identifier))) continue;
    ++offered;
    EXPECT_EQ(identifier, member.identifier);
    Variant answer;
    for (const WORD kind : kKinds) {
      if (described.Find(identifier, kind) != nullptr) continue;
      const std::size_t count = kind == DISPATCH_METHOD || kind == DISPATCH_PROPERTYGET ? member.parameters : 1;
      EXPECT_EQ(invoke(identifier, kind, count, answer), DISP_E_MEMBERNOTFOUND) << "called as " << kind;
    }
    if (member.kind != DISPATCH_METHOD && member.kind != DISPATCH_PROPERTYGET) continue;
    // An object takes more arguments for its default member.
    if (member.answer != VT_DISPATCH || member.parameters > 0) {
      EXPECT_EQ(invoke(identifier, member.kind, member.parameters + 1, answer), DISP_E_BADPARAMCOUNT);
    }
    if (member.required > 0) {
      EXPECT_NE(invoke(identifier, member.kind, member.required - 1, answer), S_OK);
    } else if (member.kind == DISPATCH_PROPERTYGET) {
      const HRESULT read = invoke(identifier, member.kind, 0, answer);
      if (read == DISP_E_EXCEPTION) continue;  // not in this state
      EXPECT_EQ(read, S_OK);
      if (member.answer != VT_VARIANT) {
        EXPECT_EQ(answer.Type(), member.answer);
      }
    }
  }
  EXPECT_GT(offered, 0);
}

TEST(AdoTypeLibrary, WhatIsOfferedIsWhatItDescribes) {
  const Apartment apartment;
  const auto connection = platform::CreateObject(L"ADODB.Connection");
  const auto call = [](const ComPtr<IDispatch>& object, DISPID member, std::initializer_list<VARIANT> arguments) {
    return platform::Invoke(*object.Get(), member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
  };
  constexpr DISPID kExecute = 6;
  constexpr DISPID kOpen = 10;
  constexpr DISPID kErrors = 11;
  const Variant string(TestedServer().ConnectionString());
  const Variant good(std::string_view("SELECT 1 AS um"));
  const Variant bad(std::string_view("SELECT um FROM contract_nothing"));
  const Variant first(std::int32_t{0});
  call(connection, kOpen, {string.Get()});
  EXPECT_THROW(call(connection, kExecute, {bad.Get()}), base::Error);
  const auto errors = ObjectIn(call(connection, kErrors, {}));
  const auto error = ObjectIn(call(errors, DISPID_VALUE, {first.Get()}));
  const auto recordset = ObjectIn(call(connection, kExecute, {good.Get()}));
  const auto fields = ObjectIn(call(recordset, DISPID_VALUE, {}));
  const auto field = ObjectIn(call(fields, DISPID_VALUE, {first.Get()}));

  ExpectAsDescribed(connection, L"_Connection");
  ExpectAsDescribed(errors, L"Errors");
  ExpectAsDescribed(error, L"Error");
  ExpectAsDescribed(recordset, L"_Recordset");
  ExpectAsDescribed(fields, L"Fields");
  ExpectAsDescribed(field, L"Field");
}

// Every property of it reads as one value.
class OneValue final : public platform::ComObject<IDispatch> {
 public:
  explicit OneValue(const VARIANT& value) : value_(value) {}
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* identifier) noexcept override {
    *identifier = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) noexcept override {
    if (result != nullptr) *result = value_;
    return S_OK;
  }

 private:
  VARIANT value_;
};

TEST(AdoAdapter, ReadsNumbersOfEveryIntegerType) {
  const Apartment apartment;
  const auto typed = [](VARTYPE type, std::int64_t number) {
    VARIANT variant{};
    variant.vt = type;
    variant.llVal = number;
    return variant;
  };
  struct Case {
    VARIANT answer;
    std::int64_t expected;
    std::int32_t error = 0;
  };
  constexpr std::int64_t kBeyond = std::int64_t{1} << 31;
  for (const Case& c : {
           Case{typed(VT_I1, 0xFE), -2},
           Case{typed(VT_UI1, 0xFE), 254},
           Case{typed(VT_I2, 0xFFFE), -2},
           Case{typed(VT_UI2, 0xFFFE), 65534},
           Case{typed(VT_I4, -2), -2},
           Case{typed(VT_INT, -2), -2},
           Case{typed(VT_UI4, 2), 2},
           Case{typed(VT_UINT, 2), 2},
           Case{typed(VT_I8, -2), -2},
           Case{typed(VT_I8, -kBeyond), -kBeyond},
           Case{typed(VT_UI8, kBeyond - 1), kBeyond - 1},
           Case{typed(VT_BOOL, VARIANT_TRUE), -1},
           Case{typed(VT_I8, kBeyond), 0, 6},
           Case{typed(VT_I8, -kBeyond - 1), 0, 6},
           Case{typed(VT_I8, kBeyond * 2 + 5), 0, 6},
           Case{typed(VT_UI4, kBeyond), 0, 6},
           Case{typed(VT_UI8, -1), 0, 6},
           Case{typed(VT_NULL, 0), 0, 13},
           Case{typed(VT_DATE, 0), 0, 13},
       }) {
    const ReplacedConnections replaced(
        [&c](const ComPtr<IDispatch>&) { return ComPtr<IDispatch>::Adopt(new OneValue(c.answer)); });
    const auto connection = platform::AdoDatabase().CreateConnection();
    std::int32_t error = 0;
    std::int64_t number = 0;
    try {
      number = connection->ConnectionTimeout();
    } catch (const base::Error& failure) {
      error = failure.number();
    }
    EXPECT_EQ(error, c.error) << "type " << c.answer.vt << ", " << c.answer.llVal;
    EXPECT_EQ(number, c.expected) << "type " << c.answer.vt << ", " << c.answer.llVal;
  }
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Ado, DatabaseContract, testing::Values(&MakeAdoBackend),
                         [](const auto&) { return std::string("registered"); });

}  // namespace quenta::contract

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new quenta::contract::ServerEnvironment);
  return RUN_ALL_TESTS();
}
