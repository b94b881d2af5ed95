#include "ado_description.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <map>
#include <stdexcept>
#include <utility>

#include "platform/automation/bstr.h"

namespace quenta::contract {
namespace {

using platform::Bstr;
using platform::ComObject;
using platform::ComPtr;

void Require(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(std::string("ADO's type library: ") + what);
}

// A description that belongs to its type information.
template <typename Description, void (STDMETHODCALLTYPE ITypeInfo::*Release)(Description*)>
class Owned {
 public:
  explicit Owned(ITypeInfo& owner) : owner_(owner) {}
  ~Owned() {
    if (description_ != nullptr) (owner_.*Release)(description_);
  }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Description** Receive() { return &description_; }
  const Description* operator->() const { return description_; }
  const Description& Get() const { return *description_; }

 private:
  ITypeInfo& owner_;
  Description* description_ = nullptr;
};
using Attributes = Owned<TYPEATTR, &ITypeInfo::ReleaseTypeAttr>;
using Function = Owned<FUNCDESC, &ITypeInfo::ReleaseFuncDesc>;

std::wstring NameOf(ITypeInfo& info, MEMBERID member) {
  Bstr name;
  Require(info.GetDocumentation(member, name.Receive(), nullptr, nullptr, nullptr), "a name");
  return name.Get();
}

struct Answer {
  VARTYPE type;
  std::wstring interface_name;
};

// What a late-bound call answers for a declared type: aliases resolved, enumerations as Long, interfaces as objects.
Answer AnswerOf(ITypeInfo& info, const TYPEDESC& type) {
  if (type.vt == VT_INT) return {VT_I4, {}};
  if (type.vt == VT_PTR) return AnswerOf(info, *type.lptdesc);
  if (type.vt != VT_USERDEFINED) return {type.vt, {}};
  ComPtr<ITypeInfo> referred;
  Require(info.GetRefTypeInfo(type.hreftype, referred.Receive()), "a type");
  Attributes attributes(*referred.Get());
  Require(referred->GetTypeAttr(attributes.Receive()), "a type");
  switch (attributes->typekind) {
    case TKIND_ALIAS:
      return AnswerOf(*referred.Get(), attributes->tdescAlias);
    case TKIND_ENUM:
      return {VT_I4, {}};
    default:
      return {VT_DISPATCH, NameOf(*referred.Get(), MEMBERID_NIL)};
  }
}

// A late-bound call answers what the function stores through its last parameter.
void ReadMember(ITypeInfo& info, const FUNCDESC& function, AdoInterface& read) {
  AdoMember member{
      .name = NameOf(info, function.memid), .identifier = function.memid, .kind = static_cast<WORD>(function.invkind)};
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      Answer answer = AnswerOf(info, *parameter.tdesc.lptdesc);
      member.answer = answer.type;
      member.interface_of_answer = std::move(answer.interface_name);
      continue;
    }
    ++member.parameters;
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FOPT) == 0) member.required = member.parameters;
  }
  read.members.push_back(std::move(member));
}

// The members of a function table, the inherited ones first, without those of IUnknown and IDispatch.
void ReadFunctionTable(ITypeInfo& info, AdoInterface& read) {
  Attributes attributes(info);
  Require(info.GetTypeAttr(attributes.Receive()), "a type");
  if (IsEqualGUID(attributes->guid, IID_IDispatch) || IsEqualGUID(attributes->guid, IID_IUnknown)) return;
  HREFTYPE base = 0;
  ComPtr<ITypeInfo> inherited;
  Require(info.GetRefTypeOfImplType(0, &base), "a base");
  Require(info.GetRefTypeInfo(base, inherited.Receive()), "a base");
  ReadFunctionTable(*inherited.Get(), read);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    Function function(info);
    // Wine cannot describe the default values of a few members, such as Fields.Append: they count as not there.
    if (SUCCEEDED(info.GetFuncDesc(i, function.Receive()))) ReadMember(info, function.Get(), read);
  }
}

std::map<std::wstring, AdoInterface> ReadTypeLibrary() {
  std::wstring path(32767, L'\0');
  ExpandEnvironmentStringsW(L"%CommonProgramFiles%\\System\\ADO\\msado15.dll", path.data(),
                            static_cast<DWORD>(path.size()));
  ComPtr<ITypeLib> library;
  Require(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Receive()), "not there, or unreadable");
  std::map<std::wstring, AdoInterface> interfaces;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    ComPtr<ITypeInfo> table;
    HREFTYPE other_side = 0;
    Require(library->GetTypeInfo(i, info.Receive()), "a type");
    // A dual interface is listed by its late-bound side. Its function table says the same, and Wine reads it whole.
    if (FAILED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &other_side)) ||
        FAILED(info->GetRefTypeInfo(other_side, table.Receive()))) {
      continue;
    }
    AdoInterface read{.name = NameOf(*info.Get(), MEMBERID_NIL), .members = {}};
    ReadFunctionTable(*table.Get(), read);
    std::wstring name = read.name;
    interfaces.emplace(std::move(name), std::move(read));
  }
  return interfaces;
}

std::string Narrow(const std::wstring& name) {
  return platform::FromWide(name.c_str());
}

class HeldObject final : public ComObject<IDispatch> {
 public:
  HeldObject(ComPtr<IDispatch> object, const AdoInterface& described)
      : object_(std::move(object)), described_(described) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override { return object_->GetTypeInfoCount(count); }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override {
    return object_->GetTypeInfo(index, locale, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* identifiers) noexcept override {
    return object_->GetIDsOfNames(iid, names, count, locale, identifiers);
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID identifier, REFIID iid, LCID locale, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override {
    const AdoMember* member = described_.Find(identifier, kinds);
    if (member == nullptr) {
      ADD_FAILURE() << Narrow(described_.name) << " has no member " << identifier << " to be called as " << kinds;
      return DISP_E_MEMBERNOTFOUND;
    }
    const std::string name = Narrow(described_.name + L"." + member->name);
    EXPECT_LE(parameters->cArgs, member->parameters) << name;
    for (std::size_t i = 0; i < member->required; ++i) {
      EXPECT_TRUE(i < parameters->cArgs && parameters->rgvarg[parameters->cArgs - 1 - i].vt != VT_ERROR)
          << name << ": argument " << i << " may not be left out";
    }
    const HRESULT outcome =
        object_->Invoke(identifier, iid, locale, kinds, parameters, result, exception, argument_error);
    if (FAILED(outcome) || result == nullptr) return outcome;
    if (member->answer != VT_VARIANT) {
      EXPECT_EQ(result->vt, member->answer) << name;
    }
    if (result->vt == VT_DISPATCH && result->pdispVal != nullptr && !member->interface_of_answer.empty()) {
      result->pdispVal =
          HeldToDescription(ComPtr<IDispatch>::Adopt(result->pdispVal), member->interface_of_answer).Detach();
    }
    return outcome;
  }

 private:
  ComPtr<IDispatch> object_;
  const AdoInterface& described_;
};

class ConnectionFactory final : public ComObject<IClassFactory> {
 public:
  ConnectionFactory(ComPtr<IClassFactory> registered, ReplacedConnections::Replace replace)
      : registered_(std::move(registered)), replace_(std::move(replace)) {}
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
    ComPtr<IDispatch> connection;
    const HRESULT created = registered_->CreateInstance(outer, IID_IDispatch, connection.ReceiveVoid());
    return FAILED(created) ? created : replace_(std::move(connection))->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) noexcept override { return S_OK; }

 private:
  ComPtr<IClassFactory> registered_;
  ReplacedConnections::Replace replace_;
};

}  // namespace

const AdoMember* AdoInterface::Find(DISPID identifier, WORD kinds) const {
  for (const AdoMember& member : members) {
    if (member.identifier == identifier && (member.kind & kinds) != 0) return &member;
  }
  return nullptr;
}

const AdoInterface& DescribedInterface(const std::wstring& name) {
  static const std::map<std::wstring, AdoInterface> interfaces = ReadTypeLibrary();
  const auto found = interfaces.find(name);
  if (found == interfaces.end()) throw std::runtime_error("ADO's type library has no " + Narrow(name));
  return found->second;
}

ComPtr<IDispatch> HeldToDescription(ComPtr<IDispatch> object, const std::wstring& interface_name) {
  return ComPtr<IDispatch>::Adopt(new HeldObject(std::move(object), DescribedInterface(interface_name)));
}

ReplacedConnections::ReplacedConnections(Replace replace) {
  CLSID identifier{};
  ComPtr<IClassFactory> registered;
  if (FAILED(CLSIDFromProgID(L"ADODB.Connection", &identifier)) ||
      FAILED(
          CoGetClassObject(identifier, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, registered.ReceiveVoid()))) {
    throw std::runtime_error("no ADODB.Connection");
  }
  const auto factory = ComPtr<IClassFactory>::Adopt(new ConnectionFactory(std::move(registered), std::move(replace)));
  if (FAILED(
          CoRegisterClassObject(identifier, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_))) {
    throw std::runtime_error("ADODB.Connection cannot be replaced");
  }
}

ReplacedConnections::~ReplacedConnections() {
  CoRevokeClassObject(registration_);
}

}  // namespace quenta::contract
