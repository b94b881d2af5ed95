// The component as the host knows it: Quenta_Produtos.General, created by its name and called late-bound.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "sandbox/host/automation.h"
#include "sandbox/host/caller.h"
#include "sandbox/host/server_list.h"

namespace quenta::sandbox::host {

class ComponentLink {
 public:
  // The window that the component's forms are placed over. Throws ComError when the component is not registered.
  explicit ComponentLink(HWND window);
  ~ComponentLink();
  ComponentLink(const ComponentLink&) = delete;
  ComponentLink& operator=(const ComponentLink&) = delete;

  // Opens the component's session with SQLConnect, or with Login for the machine's own settings. False when the
  // credentials are refused or no server answers. Throws ComError.
  bool Connect(const Server& server, const std::string& user, const std::string& password);

  // Shows the product's form, or brings it to the front. Throws ComError.
  void OpenProduct(std::int32_t produto_id);
  // Asks for a form with a new product; the component itself tells the user when that is not allowed. Throws ComError.
  void NewProduct();

 private:
  Object session_;                         // the instance that connected: the session lives as long as the component
  std::map<std::int32_t, Object> opened_;  // one General holds one form
  Caller* caller_;
};

}  // namespace quenta::sandbox::host
