#include "platform/com/error_reporting.h"

#include "component/com/com_fixture.h"
#include "controls/form.h"
#include "platform/automation/dispatch.h"
#include "platform/com/registration.h"

namespace quenta::tests {
namespace {

using platform::AutomationErrorReporting;

// A class object that hands out one automation object.
class OneObjectFactory final : public platform::ComObject<IClassFactory> {
 public:
  explicit OneObjectFactory(ComPtr<IDispatch> object) : object_(std::move(object)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) noexcept override {
    ++created;
    return object_->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) noexcept override { return S_OK; }
  int created = 0;

 private:
  ComPtr<IDispatch> object_;
};

// Makes the ProgID name a class of this process for the time of a test; what it named before comes back.
class ReportingClass {
 public:
  explicit ReportingClass(ComPtr<IDispatch> object)
      : factory(ComPtr<OneObjectFactory>::Adopt(new OneObjectFactory(std::move(object)))) {
    wchar_t text[64]{};
    LONG size = sizeof(text);
    had_before_ = RegQueryValueW(HKEY_CLASSES_ROOT, kKey, text, &size) == ERROR_SUCCESS;
    before_ = text;
    CLSID identifier{};
    CoCreateGuid(&identifier);
    StringFromGUID2(identifier, text, 64);
    Write(text);
    EXPECT_EQ(CoRegisterClassObject(identifier, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_),
              S_OK);
  }
  ~ReportingClass() {
    CoRevokeClassObject(cookie_);
    if (had_before_)
      Write(before_);
    else
      RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\ErrorReporting.General");
  }

  ComPtr<OneObjectFactory> factory;

 private:
  static constexpr wchar_t kKey[] = L"ErrorReporting.General\\CLSID";
  static void Write(const std::wstring& class_id) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, (std::wstring(L"Software\\Classes\\") + kKey).c_str(), nullptr, REG_SZ,
                    class_id.c_str(), static_cast<DWORD>((class_id.size() + 1) * sizeof(wchar_t)));
  }
  DWORD cookie_ = 0;
  bool had_before_ = false;
  std::wstring before_;
};

class EmptyForm final : public controls::Form {
 public:
  explicit EmptyForm(ports::FormHost& host) : Form(host, "frmTeste") { set_caption("Produto nº 7"); }
};

TEST(ErrorReportingTest, ReportPassesFiveTextsInOrder) {
  const Apartment apartment;
  std::string seen;
  const ReportingClass reporting(ScriptObject::Make([&](const std::wstring& member, DISPPARAMS& parameters, VARIANT*) {
    seen = platform::FromWide(member.c_str());
    for (UINT index = parameters.cArgs; index-- > 0;) {
      EXPECT_EQ(parameters.rgvarg[index].vt, VT_BSTR);
      seen += "|" + platform::FromBstr(parameters.rgvarg[index].bstrVal);
    }
    return S_OK;
  }));
  AutomationErrorReporting adapter([](controls::Form&) -> HWND { return nullptr; });
  EXPECT_TRUE(adapter.Report({"Programa de Contabilidade", "Quenta_Produtos", "General", "Login", "descrição"}));
  EXPECT_EQ(seen, "Report|Programa de Contabilidade|Quenta_Produtos|General|Login|descrição");
}

TEST(ErrorReportingTest, ReconnectUsesOneObjectLetsItGoAndHandsOverTheForm) {
  const Apartment apartment;
  std::vector<std::string> seen;
  ComPtr<IDispatch> kept;
  const HWND window = GetDesktopWindow();
  const auto object = ScriptObject::Make([&](const std::wstring& member, DISPPARAMS& parameters, VARIANT*) {
    seen.push_back(platform::FromWide(member.c_str()));
    EXPECT_EQ(parameters.cArgs, 1U);
    EXPECT_EQ(parameters.rgvarg[0].vt, VT_DISPATCH);
    if (parameters.rgvarg[0].pdispVal != nullptr) kept = ComPtr<IDispatch>(parameters.rgvarg[0].pdispVal);
    return E_FAIL;
  });
  const auto references = [&] { return object->AddRef(), object->Release(); };
  const ReportingClass reporting(object);
  const ULONG before = references();
  AutomationErrorReporting adapter([&](controls::Form&) { return window; });
  FakeFormHost host;
  {
    const auto form = std::make_shared<EmptyForm>(host);
    adapter.SQLReconnectShow(form.get());
    adapter.SQLReconnectShutdown(nullptr);
    adapter.SQLReconnectShowBad(form.get());
    EXPECT_EQ(references(), before + 1);
    adapter.ReleaseReconnect();
    EXPECT_EQ(references(), before);
    adapter.SQLReconnectShowOK(form.get());
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"SQLReconnectShow", "SQLReconnectShutdown", "SQLReconnectShowBad"}))
      << "it has ended";
  EXPECT_EQ(reporting.factory->created, 1);
  ASSERT_TRUE(kept) << "the reporting object keeps the form longer than it lives";
  EXPECT_EQ(platform::FromBstr(platform::GetProperty(*kept.Get(), L"caption").Get().bstrVal), "Produto nº 7");
  EXPECT_EQ(platform::GetProperty(*kept.Get(), L"hWnd").Get().lVal,
            static_cast<LONG>(reinterpret_cast<std::intptr_t>(window)));
}

TEST(ErrorReportingTest, WhatCannotBeDeliveredIsLost) {
  AutomationErrorReporting adapter([](controls::Form&) -> HWND { return nullptr; });
  EXPECT_FALSE(adapter.Report({})) << "no COM";
  adapter.SQLReconnectShow(nullptr);
  const Apartment apartment;
  const ReportingClass reporting(
      ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) -> HRESULT { throw 7; }));
  EXPECT_FALSE(adapter.Report({})) << "an object that throws";
  adapter.SQLReconnectShow(nullptr);
  adapter.SQLReconnectShowOK(nullptr);
}

}  // namespace
}  // namespace quenta::tests
