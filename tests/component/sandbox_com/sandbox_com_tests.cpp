// The sandbox's COM classes seen from outside, beyond what the database contract reaches through the ADO adapter.
#include "sandbox_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <vector>

#include "base/convert.h"
#include "platform/automation/bstr.h"
#include "platform/automation/com_ptr.h"
#include "platform/automation/safe_array_access.h"
#include "platform/automation/variant.h"
#include "platform/automation/variant_value.h"

namespace quenta::contract {
namespace {

using platform::Bstr;
using platform::ComPtr;
using platform::Variant;

constexpr HRESULT kDataAccess = static_cast<HRESULT>(0x80004005);
constexpr HRESULT Ado(int number) {
  return static_cast<HRESULT>(0x800A0000 | number);
}

// How a call ended: S_OK, or what the object said.
struct Outcome {
  HRESULT result = S_OK;
  std::string description;
  std::string source;
};

class Object {
 public:
  explicit Object(ComPtr<IDispatch> object) : object_(std::move(object)) {}
  static Object Create(const wchar_t* prog_id) {
    CLSID identifier{};
    ComPtr<IDispatch> object;
    EXPECT_EQ(CLSIDFromProgID(prog_id, &identifier), S_OK);
    EXPECT_EQ(CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveVoid()), S_OK);
    return Object(std::move(object));
  }

  // Arguments are passed as they are, references included.
  Outcome Try(const wchar_t* name, WORD kind, std::vector<VARIANT> arguments, Variant* answer = nullptr) const {
    std::wstring spelled(name);
    wchar_t* names = spelled.data();
    DISPID member = DISPID_VALUE;
    if (!spelled.empty()) {
      const HRESULT found = object_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &member);
      if (FAILED(found)) return {.result = found, .description = "no such member", .source = {}};
    }
    std::reverse(arguments.begin(), arguments.end());
    DISPID put = DISPID_PROPERTYPUT;
    const bool is_put = kind == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{arguments.data(), is_put ? &put : nullptr, static_cast<UINT>(arguments.size()),
                          is_put ? 1U : 0U};
    EXCEPINFO exception{};
    Variant unwanted;
    const HRESULT result = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                           (answer != nullptr ? *answer : unwanted).Receive(), &exception, nullptr);
    Bstr description;
    Bstr source;
    *description.Receive() = exception.bstrDescription;
    *source.Receive() = exception.bstrSource;
    return {.result = result == DISP_E_EXCEPTION ? exception.scode : result,
            .description = description.Text(),
            .source = source.Text()};
  }

  Variant Call(const wchar_t* name, const std::vector<VARIANT>& arguments = {}) const {
    Variant answer;
    const Outcome outcome = Try(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, &answer);
    EXPECT_EQ(outcome.result, S_OK) << outcome.description;
    return answer;
  }
  Outcome Fails(const wchar_t* name, const std::vector<VARIANT>& arguments = {}) const {
    return Try(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
  }
  void Put(const wchar_t* name, const Variant& value) const {
    const Outcome outcome = Try(name, DISPATCH_PROPERTYPUT, {value.Get()});
    EXPECT_EQ(outcome.result, S_OK) << outcome.description;
  }

  base::Value Get(const wchar_t* name) const { return platform::ToValue(Call(name).Get()); }
  Object GetObject(const wchar_t* name, const std::vector<VARIANT>& arguments = {}) const {
    const Variant answer = Call(name, arguments);
    EXPECT_EQ(answer.Type(), VT_DISPATCH);
    return Object(ComPtr<IDispatch>(answer.Type() == VT_DISPATCH ? answer.Get().pdispVal : nullptr));
  }
  IDispatch* Get() const { return object_.Get(); }

 private:
  ComPtr<IDispatch> object_;
};

const Variant& Text(std::string_view text) {
  static std::vector<std::unique_ptr<Variant>> kept;
  return *kept.emplace_back(std::make_unique<Variant>(text));
}

VARIANT Arg(const char* text) {
  return Text(text).Get();
}
VARIANT Arg(int number) {
  return Variant(std::int32_t{number}).Detach();
}
VARIANT Arg(const Object& object) {
  VARIANT variant{};
  variant.vt = VT_DISPATCH;
  variant.pdispVal = object.Get();
  return variant;
}

// ADO's cursor locations.
constexpr int kServer = 2;
constexpr int kClient = 3;

class SandboxCom : public testing::Test {
 protected:
  void SetUp() override {
    connection_.Call(L"Open", {Arg(TestedServer().ConnectionString().c_str())});
    connection_.Call(L"Execute", {Arg("CREATE TABLE com_rows (id INT NOT NULL PRIMARY KEY, nome VARCHAR(20) NULL)")});
    connection_.Call(L"Execute", {Arg("INSERT INTO com_rows VALUES (1, 'um'), (2, null), (3, 'três')")});
  }
  void TearDown() override {
    connection_ = Object::Create(L"ADODB.Connection");
    connection_.Call(L"Open", {Arg(TestedServer().ConnectionString().c_str())});
    connection_.Call(L"Execute", {Arg("DROP TABLE com_rows")});
  }

  Object OpenRows(int location) const {
    connection_.Put(L"CursorLocation", Variant(std::int32_t{location}));
    return connection_.GetObject(L"Execute", {Arg(kRows)});
  }

  static std::int32_t RowCount(const Object& recordset) { return base::ToLong(recordset.Get(L"RecordCount"), {}); }

  static constexpr const char* kRows = "SELECT * FROM com_rows ORDER BY id";
  Apartment apartment_;
  Object connection_ = Object::Create(L"ADODB.Connection");
};

TEST_F(SandboxCom, RefusesAStatementBesideAPendingResultInATransaction) {
  struct Case {
    const char* name;
    int location;
    bool drained;
    bool refused;
  };
  for (const Case& c : {Case{"on the server", kServer, false, true}, Case{"read to its end", kServer, true, false},
                        Case{"at the client", kClient, false, false}}) {
    SCOPED_TRACE(c.name);
    connection_.Call(L"BeginTrans");
    const Object recordset = OpenRows(c.location);
    if (c.drained) recordset.Call(L"GetRows");
    const Outcome outcome = connection_.Fails(L"Execute", {Arg("SELECT 1")});
    EXPECT_EQ(outcome.result, c.refused ? kDataAccess : S_OK);
    if (c.refused) {
      EXPECT_EQ(outcome.description, "Cannot create new connection because in manual or distributed transaction mode.");
      EXPECT_EQ(outcome.source, "Microsoft OLE DB Provider for SQL Server");
    }
    recordset.Call(L"Close");
    EXPECT_EQ(connection_.Fails(L"Execute", {Arg("SELECT 1")}).result, S_OK);
    connection_.Call(L"RollbackTrans");
  }
  const Object pending = OpenRows(kServer);
  EXPECT_EQ(connection_.Fails(L"Execute", {Arg("SELECT 1")}).result, S_OK) << "outside a transaction there is room";
  EXPECT_EQ(connection_.Fails(L"BeginTrans").description, "Cannot start transaction while in firehose mode.");
}

TEST_F(SandboxCom, AdoErrorsHaveAdosNumbersAndStayOutOfTheCollection) {
  const Object closed = Object::Create(L"ADODB.Connection");
  const Object recordset = OpenRows(kClient);
  recordset.Call(L"Close");
  const Object fields = OpenRows(kClient).GetObject(L"Fields");
  const Object at_end = OpenRows(kClient);
  at_end.Call(L"GetRows");
  struct Case {
    const char* name;
    Outcome outcome;
    HRESULT expected;
  };
  for (const Case& c : {
           Case{"execute on a closed connection", closed.Fails(L"Execute", {Arg("SELECT 1")}), Ado(3704)},
           Case{"begin on a closed connection", closed.Fails(L"BeginTrans"), Ado(3704)},
           Case{"close twice", closed.Fails(L"Close"), Ado(3704)},
           Case{"closed recordset", recordset.Fails(L"EOF"), Ado(3704)},
           Case{"open twice", connection_.Fails(L"Open"), Ado(3705)},
           Case{"unknown provider", closed.Fails(L"Open", {Arg("Provider=Nada")}), Ado(3706)},
           Case{"no such field", fields.Fails(L"Item", {Arg("nada")}), Ado(3265)},
           Case{"no such position", fields.Fails(L"Item", {Arg(2)}), Ado(3265)},
           Case{"rows past the end", at_end.Fails(L"GetRows"), Ado(3021)},
           Case{"value past the end", at_end.GetObject(L"Fields", {Arg(0)}).Fails(L"Value"), Ado(3021)},
       }) {
    EXPECT_EQ(c.outcome.result, c.expected) << c.name << ": " << c.outcome.description;
    EXPECT_NE(c.outcome.description, "") << c.name;
  }
  const Object errors = connection_.GetObject(L"Errors");
  EXPECT_EQ(errors.Get(L"Count"), base::Value(0));

  const Outcome outcome = connection_.Fails(L"Execute", {Arg("SELECT * FROM com_nothing")});
  EXPECT_EQ(errors.Get(L"Count"), base::Value(1));
  const Object error = connection_.GetObject(L"Errors", {Arg(0)});
  EXPECT_EQ(error.Get(L"Number"), base::Value(static_cast<std::int32_t>(outcome.result)));
  EXPECT_EQ(error.Get(L"Description"), base::Value(outcome.description));
}

TEST_F(SandboxCom, RowsComeInBlocksByColumn) {
  const auto shape = [](const Variant& block) {
    const platform::SafeArrayAccess<VARIANT> cells(block.Get().parray);
    std::ostringstream text;
    text << cells.Extent(1) << "x" << cells.Extent(2) << ":";
    for (const VARIANT& cell : cells.Elements()) {
      const base::Value value = platform::ToValue(cell);
      text << " " << (value.is_null() ? "Null" : value.is_text() ? value.text() : std::to_string(cell.lVal));
    }
    return text.str();
  };
  EXPECT_EQ(RowCount(OpenRows(kServer)), -1) << "the server is still sending";
  const Object recordset = OpenRows(kClient);
  EXPECT_EQ(RowCount(recordset), 3);
  EXPECT_EQ(shape(recordset.Call(L"GetRows", {Arg(2)})), "2x2: 1 um 2 Null");
  EXPECT_EQ(recordset.Get(L"EOF"), base::Value(false));
  EXPECT_EQ(shape(recordset.Call(L"GetRows", {Arg(2)})), "2x1: 3 três");
  EXPECT_EQ(recordset.Get(L"EOF"), base::Value(true));
  EXPECT_EQ(shape(OpenRows(kServer).Call(L"GetRows")), "2x3: 1 um 2 Null 3 três");
}

TEST_F(SandboxCom, TakesArgumentsByReferenceAndLeftOut) {
  Bstr sql(kRows);
  BSTR pointer = sql.Get();
  VARIANT by_reference{};
  by_reference.vt = VT_BYREF | VT_BSTR;
  by_reference.pbstrVal = &pointer;
  LONG affected = 77;
  VARIANT count{};
  count.vt = VT_BYREF | VT_I4;
  count.plVal = &affected;
  const Object rows = connection_.GetObject(L"Execute", {by_reference, count});
  EXPECT_EQ(affected, -1);
  EXPECT_EQ(rows.Get(L"State"), base::Value(1));

  const Variant missing = Variant::Missing();
  const Variant nothing = connection_.Call(L"Execute", {Arg("SELECT 1"), missing.Get(), Arg(129)});
  EXPECT_EQ(nothing.Type(), VT_DISPATCH);
  EXPECT_EQ(nothing.Get().pdispVal, nullptr);
}

TEST_F(SandboxCom, ClosingAConnectionClosesItsRecordsets) {
  const Object recordset = OpenRows(kClient);
  const Object field = recordset.GetObject(L"Fields", {Arg("nome")});
  EXPECT_EQ(connection_.Get(L"State"), base::Value(1));
  connection_.Call(L"Close");
  EXPECT_EQ(recordset.Get(L"State"), base::Value(0));
  EXPECT_NE(field.Fails(L"Value").result, S_OK);
}

TEST_F(SandboxCom, AnswersForItsInterfacesAndKeepsTheDllOnlyWhileUsed) {
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  const HMODULE module = GetModuleHandleW(L"QuentaSandbox.dll");
  ASSERT_NE(module, nullptr);
  const auto can_unload =
      reinterpret_cast<CanUnload>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
  ASSERT_NE(can_unload, nullptr);
  EXPECT_EQ(can_unload(), S_FALSE);

  constexpr GUID kConnection = {0x00000550, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};
  ComPtr<IDispatch> as_connection;
  ASSERT_EQ(connection_.Get()->QueryInterface(kConnection, as_connection.ReceiveVoid()), S_OK);
  EXPECT_EQ(as_connection.As<IUnknown>().Get(), ComPtr<IDispatch>(connection_.Get()).As<IUnknown>().Get());
  ComPtr<IStream> stream;
  EXPECT_EQ(connection_.Get()->QueryInterface(IID_IStream, stream.ReceiveVoid()), E_NOINTERFACE);

  CLSID identifier{};
  CLSIDFromProgID(L"ADODB.Connection", &identifier);
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.ReceiveVoid()),
            S_OK);
  void* aggregated = &aggregated;
  EXPECT_EQ(factory->CreateInstance(connection_.Get(), IID_IUnknown, &aggregated), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(aggregated, nullptr);
}

TEST(SandboxReports, EachCallIsOneLine) {
  const Apartment apartment;
  const std::filesystem::path file = std::filesystem::path(Setting("QUENTA_CONTRACT_FOLDER")) / "reports.log";
  SetEnvironmentVariableW(L"QUENTA_SANDBOX_REPORTS", file.c_str());
  const Object reporting = Object::Create(L"ErrorReporting.General");
  const std::string description = "Error Number = 13 | Description = a\tb\\c\r\nção";
  reporting.Call(L"Report", {Arg("Programa de Contabilidade"), Arg("Quenta_Produtos"), Arg("frmMain"), Arg("Fill"),
                             Arg(description.c_str())});
  const Variant nothing(static_cast<IDispatch*>(nullptr));
  reporting.Call(L"SQLReconnectShow", {nothing.Get()});
  reporting.Call(L"SQLReconnectShowOK", {Arg(reporting)});
  EXPECT_EQ(reporting.Fails(L"Report", {Arg("one")}).result, DISP_E_BADPARAMCOUNT);

  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  EXPECT_EQ(text.str(),
            "Report\tPrograma de Contabilidade\tQuenta_Produtos\tfrmMain\tFill\tError Number = 13 | Description = "
            "a\\tb\\\\c\\r\\nção\n"
            "SQLReconnectShow\t(nothing)\n"
            "SQLReconnectShowOK\t(object)\n");
}

TEST(SandboxRegistration, GivesTheClassesBack) {
  // Everything goes to a key of the test's own.
  const std::wstring path = L"Software\\QuentaSandboxTest" + std::to_wstring(GetCurrentProcessId());
  const std::wstring server = L"Software\\Classes\\CLSID\\{00000514-0000-0010-8000-00AA006D2EA4}\\InprocServer32";
  const auto read = [&] {
    wchar_t text[MAX_PATH] = L"";
    DWORD bytes = sizeof text;
    RegGetValueW(HKEY_LOCAL_MACHINE, server.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
    return platform::FromWide(text);
  };
  const HMODULE module = LoadLibraryW(platform::ToWide(read()).c_str());
  ASSERT_NE(module, nullptr);
  const auto call = [&](const char* name) {
    using Entry = HRESULT(STDAPICALLTYPE*)();
    return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(module, name)))();
  };
  HKEY machine = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, path.c_str(), &machine), ERROR_SUCCESS);
  ASSERT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, server.c_str(), nullptr, REG_SZ, L"former.dll", 22);

  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  EXPECT_NE(read().find("QuentaSandbox.dll"), std::string::npos) << read();
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(read(), "former.dll");
  HKEY own = nullptr;
  EXPECT_NE(RegOpenKeyW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\ErrorReporting.General", &own), ERROR_SUCCESS);

  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegCloseKey(machine);
  RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
  FreeLibrary(module);
}

TEST(SandboxScript, AScriptUsesItAsAdo) {
  SetEnvironmentVariableW(L"QUENTA_SCRIPT_CONNECTION", platform::ToWide(TestedServer().ConnectionString()).c_str());
  // cscript takes a leading slash for an option.
  const std::string path = std::filesystem::absolute(QUENTA_SCRIPT).make_preferred().string();
  // The outer quotes are for cmd, which drops the first and the last of a line that holds more of them.
  const std::string command = "\"cscript.exe //nologo \"" + path + "\" QUENTA_SCRIPT_CONNECTION 2>&1\"";
  const std::unique_ptr<FILE, int (*)(FILE*)> script(_popen(command.c_str(), "r"), &_pclose);
  ASSERT_NE(script, nullptr);
  std::string output;
  std::array<char, 4096> part{};
  while (std::fgets(part.data(), part.size(), script.get()) != nullptr) output += part.data();
  std::erase(output, '\r');
  EXPECT_EQ(output,
            "closed: 0\n"
            "open: 1\n"
            "field: produto_id 1\n"
            "field: nome Caneta\n"
            "field: preco Currency\n"
            "rows: 3 2 Lapis True True\n"
            "80040E37 Invalid object name 'script_nothing'.\n"
            "1 True True\n"
            "3265\n"
            "level: 1\n"
            "after rollback: 3\n"
            "closed: 0\n");
}

}  // namespace
}  // namespace quenta::contract

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new quenta::contract::ServerEnvironment);
  return RUN_ALL_TESTS();
}
