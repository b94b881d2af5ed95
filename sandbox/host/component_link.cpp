#include "sandbox/host/component_link.h"

#include <vector>

#include "sandbox/host/scramble.h"

namespace quenta::sandbox::host {
namespace {

constexpr wchar_t kGeneral[] = L"Quenta_Produtos.General";
constexpr char kTable[] = "tbProdutos";

// What both record operations take after the record: table, condition, the host's window, and the host's own place in
// its lists, of which this host makes no use.
void AppendRequest(std::vector<Variant>& arguments, IDispatch* caller) {
  arguments.emplace_back(kTable);
  arguments.emplace_back("");
  arguments.emplace_back(caller);
  arguments.emplace_back(std::int32_t{0});
  arguments.emplace_back();
  arguments.emplace_back(std::int32_t{0});
}

}  // namespace

ComponentLink::ComponentLink(HWND window) : session_(Object::Create(kGeneral)), caller_(new Caller(window)) {}

ComponentLink::~ComponentLink() {
  caller_->Detach();
  caller_->Release();
}

bool ComponentLink::Connect(const Server& server, const std::string& user, const std::string& password) {
  std::vector<Variant> arguments;
  arguments.emplace_back(user);
  arguments.emplace_back(Scramble(password));
  if (server.from_machine) return BoolOf(session_.CallByReference(L"Login", arguments).get());
  arguments.emplace_back(server.user);
  arguments.emplace_back(server.password);
  arguments.emplace_back(server.initial_catalog);
  arguments.emplace_back(server.data_source);
  arguments.emplace_back(server.data_source_secondary);
  arguments.emplace_back(std::int32_t{server.flags});
  return BoolOf(session_.CallByReference(L"SQLConnect", arguments).get());
}

void ComponentLink::OpenProduct(std::int32_t produto_id) {
  Object& general = opened_[produto_id];
  if (!general) general = Object::Create(kGeneral);
  std::vector<Variant> arguments;
  arguments.emplace_back(static_cast<IDispatch*>(nullptr));
  arguments.emplace_back(produto_id);
  AppendRequest(arguments, caller_);
  general.CallByReference(L"ObjectOpen", arguments);
}

void ComponentLink::NewProduct() {
  // The form keeps its General alive for as long as it is open.
  const Object general = Object::Create(kGeneral);
  std::vector<Variant> arguments;
  arguments.emplace_back(static_cast<IDispatch*>(nullptr));
  AppendRequest(arguments, caller_);
  general.CallByReference(L"ObjectNew", arguments);
}

}  // namespace quenta::sandbox::host
