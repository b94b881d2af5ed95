#include "platform/com/general_object.h"

#include <map>

#include "component/com/com_fixture.h"
#include "component/session/scrambler.h"
#include "platform/win32/host_window_object.h"

namespace quenta::tests {
namespace {

class GeneralObjectTest : public ComTest {};

TEST_F(GeneralObjectTest, QueryInterfaceIsSymmetricAndKeepsTheIdentity) {
  const auto general = NewGeneral();
  const auto identity = general.As<IUnknown>();
  const IID offered[] = {IID_IUnknown, IID_IDispatch, __uuidof(_General), IID_ISupportErrorInfo, IID_IProvideClassInfo};
  for (const IID& from : offered) {
    ComPtr<IUnknown> face;
    ASSERT_EQ(general->QueryInterface(from, face.ReceiveVoid()), S_OK);
    EXPECT_EQ(face.As<IUnknown>().Get(), identity.Get());
    for (const IID& to : offered) {
      ComPtr<IUnknown> other;
      EXPECT_EQ(face->QueryInterface(to, other.ReceiveVoid()), S_OK);
    }
    void* stranger = &stranger;
    EXPECT_EQ(face->QueryInterface(IID_IPersist, &stranger), E_NOINTERFACE);
    EXPECT_EQ(stranger, nullptr);
    EXPECT_EQ(face->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  }
}

TEST_F(GeneralObjectTest, ClassObjectRefusesAggregationAndOtherClasses) {
  const auto factory = Factory();
  const auto outer = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) { return E_FAIL; });
  void* object = &object;
  EXPECT_EQ(factory->CreateInstance(outer.Get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
  object = &object;
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersist, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  object = &object;
  EXPECT_EQ(server.GetClassObject(CLSID_NULL, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(server.CanUnload(), S_FALSE) << "the class object is still held";
}

// The public contract, in the words of the type library.
TEST_F(GeneralObjectTest, TypeLibraryHasTheMethodsInOrderWithTheirArguments) {
  const std::vector<std::vector<std::wstring>> expected = {
      {L"SQLConnect", L"User", L"Password", L"cnUser", L"cnPassword", L"cnInitialCatalog", L"cnDataSource",
       L"cnDataSourceSecondary", L"oFlags"},
      {L"Login", L"User", L"Password"},
      {L"ObjectOpen", L"Rs", L"PKey", L"Tabela", L"StrWhere", L"Caller", L"clCurrentIndex", L"clCurrentObject",
       L"clLast_Related_ID"},
      {L"Registo", L"Rs", L"PKey", L"Tabela", L"StrWhere", L"Caller"},
      {L"ObjectNew", L"Rs", L"Table", L"StrWhere", L"Caller", L"clCurrentIndex", L"clCurrentObject",
       L"clLast_Related_ID"},
      {L"NovoRegisto", L"Rs", L"Tabela", L"Contacto_ID", L"Caller"},
  };
  const auto general = NewGeneral();
  ComPtr<ITypeInfo> dispatch, methods;
  ASSERT_EQ(general->GetTypeInfo(0, 0, dispatch.Receive()), S_OK);
  HREFTYPE reference = 0;
  ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK) << "the interface is dual";
  ASSERT_EQ(dispatch->GetRefTypeInfo(reference, methods.Receive()), S_OK);

  for (UINT index = 0; index < expected.size(); ++index) {
    SCOPED_TRACE(::testing::PrintToString(expected[index][0]));
    FUNCDESC* function = nullptr;
    ASSERT_EQ(methods->GetFuncDesc(index, &function), S_OK);
    EXPECT_EQ(function->oVft, static_cast<SHORT>((7 + index) * sizeof(void*)));
    BSTR names[12]{};
    UINT count = 0;
    methods->GetNames(function->memid, names, 12, &count);
    for (std::size_t name = 0; name < expected[index].size(); ++name) {
      ASSERT_LT(name, count);
      EXPECT_EQ(std::wstring(names[name]), expected[index][name]);
    }
    for (std::size_t argument = 1; argument < expected[index].size(); ++argument) {
      const ELEMDESC& declared = function->lprgelemdescParam[argument - 1];
      EXPECT_EQ(declared.tdesc.vt, VT_PTR) << "by reference";
      EXPECT_EQ(declared.paramdesc.wParamFlags & (PARAMFLAG_FIN | PARAMFLAG_FOUT), PARAMFLAG_FIN | PARAMFLAG_FOUT);
    }
    DISPID member = 0;
    EXPECT_EQ(general->GetIDsOfNames(IID_NULL, names, 1, 0, &member), S_OK);
    EXPECT_EQ(member, function->memid);
    for (BSTR name : names) SysFreeString(name);
    methods->ReleaseFuncDesc(function);
  }

  // The recordset's type is ADO's own, by reference to its library of version 2.5.
  const HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(1), L"TYPELIB");
  const std::string_view library(static_cast<const char*>(LockResource(LoadResource(nullptr, resource))),
                                 SizeofResource(nullptr, resource));
  for (const char* identifier : {"{00000205-0000-0010-8000-00AA006D2EA4}", "{00000556-0000-0010-8000-00AA006D2EA4}"}) {
    GUID guid{};
    ASSERT_EQ(IIDFromString(platform::ToWide(identifier).c_str(), &guid), S_OK);
    EXPECT_NE(library.find(std::string_view(reinterpret_cast<const char*>(&guid), sizeof(guid))), library.npos);
  }

  ComPtr<ITypeInfo> class_information;
  ASSERT_EQ(general.As<IProvideClassInfo>()->GetClassInfo(class_information.Receive()), S_OK);
  Bstr class_name;
  class_information->GetDocumentation(MEMBERID_NIL, class_name.Receive(), nullptr, nullptr, nullptr);
  EXPECT_EQ(class_name.Text(), "General");
  EXPECT_EQ(general->GetTypeInfo(1, 0, dispatch.Receive()), DISP_E_BADINDEX);
}

TEST_F(GeneralObjectTest, SQLConnectHandsEveryArgumentToItsPlace) {
  world.database.users = {{"base", "segredo"}, {"ana", "minha"}};
  const auto general = NewGeneral();
  Bstr strings[] = {Bstr("ana"),    Bstr(session::Scramble("minha")),
                    Bstr("base"),   Bstr(session::Scramble("segredo")),
                    Bstr("Loja"),   Bstr("primeiro"),
                    Bstr("segundo")};
  BSTR given[7];
  for (int index = 0; index < 7; ++index) given[index] = strings[index].Get();
  LONG flags = 1;
  VARIANT_BOOL result = VARIANT_FALSE;
  EXPECT_EQ(
      general->SQLConnect(&given[0], &given[1], &given[2], &given[3], &given[4], &given[5], &given[6], &flags, &result),
      S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  ASSERT_GE(world.database.opened.size(), 3U);
  for (const char* part : {"User ID=base;", "Password=segredo;", "Initial Catalog=Loja;", "Data Source=primeiro;"}) {
    EXPECT_NE(world.database.opened[0].find(part), std::string::npos) << part;
  }
  EXPECT_NE(world.database.opened[1].find("Data Source=segundo;"), std::string::npos);
  EXPECT_NE(world.database.opened[2].find("User ID=ana;Password=minha;"), std::string::npos);
  for (int index = 0; index < 7; ++index) EXPECT_EQ(given[index], strings[index].Get()) << "the caller's strings stay";

  BSTR nobody = nullptr;
  result = VARIANT_TRUE;
  const auto another = NewGeneral();
  EXPECT_EQ(another->Login(&nobody, &nobody, &result), S_OK) << "a null string is an empty one, even twice the same";
  EXPECT_EQ(result, VARIANT_TRUE) << "the session is shared and open already";
}

TEST_F(GeneralObjectTest, NullPointersAreRefusedWithErrorInformation) {
  const auto general = NewGeneral();
  VARIANT_BOOL result = VARIANT_TRUE;
  EXPECT_EQ(general->Login(nullptr, nullptr, &result), E_POINTER);
  EXPECT_EQ(result, VARIANT_FALSE) << "cleared on failure";
  ComPtr<IErrorInfo> error;
  ASSERT_EQ(GetErrorInfo(0, error.Receive()), S_OK);
  Bstr source;
  error->GetSource(source.Receive());
  EXPECT_EQ(source.Text(), "Quenta_Produtos.General");
  EXPECT_EQ(general.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(__uuidof(_General)), S_OK);
  EXPECT_EQ(general.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);

  EXPECT_EQ(general->SQLConnect(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            E_POINTER);
  EXPECT_EQ(general->ObjectOpen(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(general->Registo(nullptr, nullptr, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(general->ObjectNew(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(general->NovoRegisto(nullptr, nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(general->Invoke(0x60030001, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), E_POINTER);
}

TEST_F(GeneralObjectTest, RecordOperationsCarryTheirArguments) {
  const auto general = ConnectedGeneral();
  Bstr nothing("");
  BSTR empty = nothing.Get();
  _Recordset* rows = nullptr;
  VARIANT key = Number(17), object = Typed(VT_EMPTY);
  LONG index = 3, last = 4;
  IDispatch* nobody = nullptr;
  ASSERT_EQ(general->ObjectOpen(&rows, &key, &empty, &empty, &nobody, &index, &object, &last), S_OK);
  ASSERT_EQ(world.requests.size(), 1U);
  EXPECT_EQ(world.requests[0].produto_id, 17);
  EXPECT_NE(world.requests[0].owner, nullptr);
  EXPECT_EQ(world.requests[0].caller, nullptr) << "Nothing stays nothing";
  EXPECT_EQ(world.requests[0].current_index, 3);
  EXPECT_EQ(world.requests[0].current_object, nullptr);
  EXPECT_EQ(world.requests[0].last_related_id, 4);

  const auto host = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) { return E_FAIL; });
  IDispatch* caller = host.Get();
  object = Object(host.Get());
  ASSERT_EQ(general->ObjectOpen(&rows, &key, &empty, &empty, &caller, &index, &object, &last), S_OK);
  EXPECT_NE(world.requests[1].caller, nullptr);
  EXPECT_NE(world.requests[1].current_object, nullptr);

  ASSERT_EQ(general->Registo(&rows, &key, &empty, &empty, &caller), S_OK);
  EXPECT_EQ(world.requests[2].current_index, std::nullopt) << "Registo sets the first three values only";

  const auto throwing = ScriptObject::Make([](const std::wstring&, DISPPARAMS&, VARIANT*) -> HRESULT { throw 7; });
  for (const VARIANT& bad : {Object(nullptr), Typed(VT_ARRAY | VT_UI1), Object(host.Get()), Object(throwing.Get())}) {
    VARIANT bad_key = bad;
    world.error_reporting.reports.clear();
    EXPECT_EQ(general->Registo(&rows, &bad_key, &empty, &empty, &nobody), S_OK) << "reported, never raised";
    ASSERT_EQ(world.error_reporting.reports.size(), 1U);
    EXPECT_EQ(world.error_reporting.reports[0].procedure, "Registo");
    EXPECT_EQ(world.error_reporting.reports[0].description, "Type mismatch");
  }
  object = Typed(static_cast<VARTYPE>(0x0FFE));
  world.error_reporting.reports.clear();
  EXPECT_EQ(general->ObjectNew(&rows, &empty, &empty, &nobody, &index, &object, &last), S_OK) << "no such type";
  ASSERT_EQ(world.error_reporting.reports.size(), 1U);
  EXPECT_EQ(world.error_reporting.reports[0].procedure, "ObjectNew");
  EXPECT_EQ(world.requests.size(), 3U);
}

TEST_F(GeneralObjectTest, LateBoundCallsReachTheSameMethods) {
  const auto general = ConnectedGeneral();
  const Bstr digits("20");
  EXPECT_EQ(LateCall(*general.Get(), L"objectopen", {Number(5), Text(digits)}, {L"clCurrentIndex", L"PKey"}).outcome,
            S_OK);
  EXPECT_EQ(world.requests.back().produto_id, 20);
  EXPECT_EQ(world.requests.back().current_index, 5);
  const LateCall login(*general.Get(), L"Login", {Text(digits), Text(digits)});
  EXPECT_EQ(login.result.Type(), VT_BOOL);
  EXPECT_EQ(login.result.Get().boolVal, VARIANT_TRUE);
  const LateCall refused(*general.Get(), L"Registo",
                         {Typed(VT_EMPTY), Number(1), Typed(VT_EMPTY), Typed(VT_EMPTY), Number(1)});
  EXPECT_EQ(refused.outcome, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(refused.bad_argument, 0U);
  EXPECT_EQ(LateCall(*general.Get(), L"Fechar", {}).outcome, DISP_E_UNKNOWNNAME);

  DISPPARAMS none{};
  const auto invoke = [&](DISPID member, REFIID interface_id, WORD how) {
    return general->Invoke(member, interface_id, 0, how, &none, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(invoke(0x60030006, IID_NULL, DISPATCH_METHOD), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(0x60030001, IID_NULL, DISPATCH_PROPERTYPUT), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(invoke(0x60030001, IID_IUnknown, DISPATCH_METHOD), DISP_E_UNKNOWNINTERFACE);
}

TEST_F(GeneralObjectTest, SurvivesTheHostLettingGoOfItDuringACall) {
  auto general = NewGeneral();
  world.database.servers["srv"].steps_to_answer = 5;
  Bstr server_name("srv");
  BSTR name = server_name.Get();
  LONG flags = 0;
  VARIANT_BOOL result = VARIANT_TRUE;
  world.desktop.while_pumping = [&] {
    general.Reset();
    EXPECT_EQ(server.CanUnload(), S_FALSE) << "its own call is still running";
  };
  _General* const called = general.Get();
  EXPECT_EQ(called->SQLConnect(&name, &name, &name, &name, &name, &name, &name, &flags, &result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  EXPECT_FALSE(general);
  EXPECT_EQ(server.CanUnload(), S_OK);
}

TEST_F(GeneralObjectTest, CallerSaysItsWindowOrHasNone) {
  const HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  const LONG handle = static_cast<LONG>(reinterpret_cast<std::intptr_t>(window));
  VARIANT wide = Typed(VT_I8);
  wide.llVal = handle;
  const Bstr words("janela");
  const auto general = ConnectedGeneral();
  const struct {
    VARIANT answer;
    HRESULT outcome;
    HWND expected;
  } cases[] = {{Number(handle), S_OK, window},
               {wide, S_OK, window},
               {Number(0x7FFFFFF0), S_OK, nullptr},
               {Text(words), S_OK, nullptr},
               {Number(handle), RPC_E_DISCONNECTED, nullptr},
               {Number(handle), E_UNEXPECTED, nullptr}};
  for (const auto& given : cases) {
    const auto caller = ScriptObject::Make([&](const std::wstring& member, DISPPARAMS&, VARIANT* value) -> HRESULT {
      if (given.outcome == E_UNEXPECTED || member != L"hWnd") throw 7;
      VARIANT answer = given.answer;
      return FAILED(given.outcome) ? given.outcome : VariantCopy(value, &answer);
    });
    LateCall(*general.Get(), L"Registo", {Typed(VT_EMPTY), Number(1), Text(words), Text(words), Object(caller.Get())});
    const auto* held = dynamic_cast<const platform::HostWindowObject*>(world.requests.back().caller.get());
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->Window(), given.expected) << given.answer.vt << given.outcome;
  }
  DestroyWindow(window);
}

// Counts what the task allocator has given out: strings, variants' contents, arrays.
class AllocationCounter final : public platform::ComObject<IMallocSpy> {
 public:
  SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) noexcept override { return size; }
  void* STDMETHODCALLTYPE PostAlloc(void* memory) noexcept override { return ++alive, memory; }
  void* STDMETHODCALLTYPE PreFree(void* memory, BOOL spied) noexcept override {
    if (spied && memory != nullptr) --alive;
    return memory;
  }
  void STDMETHODCALLTYPE PostFree(BOOL) noexcept override {}
  SIZE_T STDMETHODCALLTYPE PreRealloc(void* memory, SIZE_T size, void** actual, BOOL) noexcept override {
    *actual = memory;
    return size;
  }
  void* STDMETHODCALLTYPE PostRealloc(void* memory, BOOL) noexcept override { return memory; }
  void* STDMETHODCALLTYPE PreGetSize(void* memory, BOOL) noexcept override { return memory; }
  SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) noexcept override { return size; }
  void* STDMETHODCALLTYPE PreDidAlloc(void* memory, BOOL) noexcept override { return memory; }
  int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int answer) noexcept override { return answer; }
  void STDMETHODCALLTYPE PreHeapMinimize() noexcept override {}
  void STDMETHODCALLTYPE PostHeapMinimize() noexcept override {}

  std::atomic<long> alive{0};
};

TEST_F(GeneralObjectTest, StringsAndVariantsBalance) {
  const auto general = ConnectedGeneral();
  const auto rounds = [&](int count) {
    const Bstr words("abc");
    for (int round = 0; round < count; ++round) {
      Variant variable(std::string_view("5")), untouched(std::string_view("w"));
      LateCall(*general.Get(), L"ObjectOpen",
               {Typed(VT_EMPTY), Variable(variable), Text(words), Variable(untouched), Object(nullptr),
                Variable(variable), Variable(untouched), Number(2)});
      LateCall(*general.Get(), L"Login", {Variable(untouched), Text(words)});
      LateCall(*general.Get(), L"Registo", {Text(words)});
      LateCall(*general.Get(), L"ObjectOpen", {Number(1), Text(words)}, {L"clCurrentIndex", L"clLast_Related_ID"});
      world.requests.clear();
      world.error_reporting.reports.clear();
    }
  };
  // Without automation's own cache of strings every one that is not given back shows. Exported and never declared.
  const auto no_cache = GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "SetOaNoCache");
  ASSERT_NE(no_cache, nullptr);
  no_cache();
  const auto counter = ComPtr<AllocationCounter>::Adopt(new AllocationCounter);
  ASSERT_EQ(CoRegisterMallocSpy(counter.Get()), S_OK);
  rounds(10);  // whatever is set up once
  const long before = counter->alive;
  {
    const Bstr leaked("counted");
    EXPECT_GT(counter->alive, before) << "strings are not counted";
  }
  rounds(200);
  EXPECT_EQ(counter->alive, before);
  CoRevokeMallocSpy();
}

}  // namespace
}  // namespace quenta::tests
