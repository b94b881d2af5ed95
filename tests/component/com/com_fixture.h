// What the tests of the COM layer stand on: an apartment, a server on a recorded world, and small automation objects.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "component/com/recording_composition.h"
#include "platform/automation/com_object.h"
#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"
#include "platform/com/quenta_produtos.h"
#include "platform/com/server.h"

namespace quenta::tests {

using platform::Bstr;
using platform::ComPtr;
using platform::Variant;

class Apartment {
 public:
  explicit Apartment(DWORD model = COINIT_APARTMENTTHREADED) : result_(CoInitializeEx(nullptr, model)) {}
  ~Apartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  HRESULT result_;
};

// A test with a server of its own, in a single-threaded apartment of its own.
class ComTest : public testing::Test {
 protected:
  // What was recorded may hold the last references to objects of the server.
  void TearDown() override { world.requests.clear(); }

  ComPtr<IClassFactory> Factory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(server.GetClassObject(__uuidof(::General), IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    return factory;
  }
  ComPtr<_General> NewGeneral() {
    ComPtr<_General> general;
    EXPECT_EQ(Factory()->CreateInstance(nullptr, __uuidof(_General), general.ReceiveVoid()), S_OK);
    return general;
  }
  // A General whose session is open.
  ComPtr<_General> ConnectedGeneral() {
    auto general = NewGeneral();
    world.database.users = {{"sa", ""}, {"ana", ""}};
    Bstr user("ana"), database_user("sa"), server_name("srv"), nothing("");
    BSTR empty = nothing.Get(), name = server_name.Get(), who = user.Get(), account = database_user.Get();
    LONG flags = 0;
    VARIANT_BOOL connected = VARIANT_FALSE;
    EXPECT_EQ(general->SQLConnect(&who, &empty, &account, &empty, &empty, &name, &name, &flags, &connected), S_OK);
    EXPECT_EQ(connected, VARIANT_TRUE);
    return general;
  }

  Apartment apartment;
  World world;
  // The type library is that of the test's own program.
  platform::Server server{GetModuleHandleW(nullptr), ComposeOn(world)};
};

inline ULONG References(IUnknown& object) {
  object.AddRef();
  return object.Release();
}

// An automation object whose every member answers as told.
class ScriptObject final : public platform::ComObject<IDispatch> {
 public:
  using Answer = std::function<HRESULT(const std::wstring& member, DISPPARAMS& parameters, VARIANT* result)>;
  explicit ScriptObject(Answer answer) : answer_(std::move(answer)) {}
  static ComPtr<IDispatch> Make(Answer answer) { return ComPtr<IDispatch>::Adopt(new ScriptObject(std::move(answer))); }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* member) noexcept override {
    members_.push_back(names[0]);
    *member = static_cast<DISPID>(members_.size());
    return S_OK;
  }
  // Deliberately not noexcept: it stands for a host that throws.
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO*, UINT*) override {
    const std::wstring name = member == DISPID_VALUE ? L"" : members_[static_cast<std::size_t>(member - 1)];
    return answer_(name, *parameters, result);
  }

 private:
  Answer answer_;
  std::vector<std::wstring> members_;
};

// Calls a member late-bound with arguments in the order of their declaration, the last ones by name if names are given.
struct LateCall {
  Variant result;
  EXCEPINFO exception{};
  UINT bad_argument = 999;
  HRESULT outcome = S_OK;

  LateCall(IDispatch& object, const wchar_t* member, std::vector<VARIANT> arguments,
           const std::vector<std::wstring>& names = {}) {
    std::vector<std::wstring> spelled{member};
    spelled.insert(spelled.end(), names.begin(), names.end());
    std::vector<wchar_t*> pointers;
    for (std::wstring& name : spelled) pointers.push_back(name.data());
    std::vector<DISPID> identifiers(pointers.size());
    outcome =
        object.GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()), 0, identifiers.data());
    if (FAILED(outcome)) return;
    std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
    std::vector<DISPID> named(identifiers.rbegin(), identifiers.rend() - 1);
    DISPPARAMS parameters{reversed.data(), named.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(named.size())};
    outcome = object.Invoke(identifiers[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                            result.Receive(), &exception, &bad_argument);
  }
  ~LateCall() {
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
  }
  LateCall(const LateCall&) = delete;
  LateCall& operator=(const LateCall&) = delete;
};

// Variants as a script passes them; strings and objects stay the owner's.
inline VARIANT Number(LONG value) {
  VARIANT variant{};
  variant.vt = VT_I4;
  variant.lVal = value;
  return variant;
}
inline VARIANT Typed(VARTYPE type) {
  VARIANT variant{};
  variant.vt = type;
  return variant;
}
inline VARIANT Text(const Bstr& text) {
  VARIANT variant{};
  variant.vt = VT_BSTR;
  variant.bstrVal = text.Get();
  return variant;
}
inline VARIANT Object(IDispatch* object) {
  VARIANT variant{};
  variant.vt = VT_DISPATCH;
  variant.pdispVal = object;
  return variant;
}
inline VARIANT Variable(Variant& variable) {
  VARIANT variant{};
  variant.vt = VT_BYREF | VT_VARIANT;
  variant.pvarVal = &variable.Get();
  return variant;
}
inline VARIANT Reference(VARTYPE type, void* where) {
  VARIANT variant{};
  variant.vt = static_cast<VARTYPE>(type | VT_BYREF);
  variant.byref = where;
  return variant;
}

}  // namespace quenta::tests
