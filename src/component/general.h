// The public class General without COM: connecting, logging in, and the record operations.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/error.h"
#include "base/value.h"
#include "component/component.h"
#include "ports/product_form.h"

namespace quenta::component {

// The arguments of SQLConnect under their type-library names. Passwords come scrambled.
struct SQLConnectArguments {
  std::string User;
  std::string Password;
  std::string cnUser;
  std::string cnPassword;
  std::string cnInitialCatalog;
  std::string cnDataSource;
  std::string cnDataSourceSecondary;
  std::int32_t oFlags = 0;  // 0: "Contabilidade", 1: "Sarvat", anything else keeps the application key
};

// No method throws, only making one does (std::bad_alloc): errors are reported, and the result is the default one.
class General {
 public:
  explicit General(Component& component);  // Class_Initialize
  ~General();                              // Class_Terminate
  General(const General&) = delete;
  General& operator=(const General&) = delete;

  // True when the session is open, which it may have been already. False without a message when no server answers or
  // the user's credentials fail; the session is then unchanged.
  bool SQLConnect(const SQLConnectArguments& arguments) noexcept;
  bool Login(const std::string& User, const std::string& Password) noexcept;

  // Opens the product PKey (anything that converts to a 32-bit integer; Empty opens nothing). The request carries the
  // rest; its produto_id is set here.
  void ObjectOpen(const base::Value& PKey, ports::ProductRequest request) noexcept;
  void Registo(const base::Value& PKey, ports::ProductRequest request) noexcept;

  // Opens the form for a new product.
  void ObjectNew(ports::ProductRequest request) noexcept;
  void NovoRegisto(ports::ProductRequest request) noexcept;

  // Reports an error in what the host has passed to a record operation, which then does nothing. As long as the session
  // is not connected it does nothing anyway, and nothing is reported.
  void Refuse(const char* procedure, const base::Error& error) noexcept;

 private:
  template <typename Body>
  void Guarded(const char* procedure, Body&& body) noexcept;
  void WhenNotBusy(const char* procedure, std::function<void()> body) noexcept;
  void Open(const char* procedure, const base::Value& PKey, ports::ProductRequest request);
  void New(const ports::ProductRequest& request);
  void Show(const ports::ProductRequest& request);

  Component& component_;
  std::shared_ptr<ports::ProductForm> form_;
  std::shared_ptr<void> alive_ = std::make_shared<char>();  // tells requests that wait whether this object still is
};

}  // namespace quenta::component
