// Everything one loaded library has one of: the session and the way to new product forms.
#pragma once

#include <functional>
#include <list>

#include "component/session/session.h"
#include "ports/form_host.h"
#include "ports/product_form.h"

namespace quenta::component {

// Built once by the composition root (or by a test); all General objects of the library share it.
class Component final : private ports::TimerTarget {
 public:
  Component(session::Session& session, ports::ProductForms& product_forms, ports::FormHost& form_host)
      : session_(session), product_forms_(product_forms), form_host_(form_host) {}
  ~Component() override { DropRequests(); }
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  session::Session& session() noexcept { return session_; }
  ports::ProductForms& product_forms() noexcept { return product_forms_; }

  // Runs a request of the host: at once, or from the message loop when the forms can be disturbed again. Throws
  // base::Error, and forgets the request, when it would have to wait and there is no timer to wait by. A request throws
  // nothing when it runs from the message loop.
  void WhenNotBusy(std::function<void()> request);
  // Asks or tells the user on the component's own behalf; requests that wait do so until the box is closed.
  ports::Answer Ask(const ports::Message& message);
  // Forgets the requests that wait.
  void DropRequests() noexcept;

  // True while SQLConnect or Login waits; entering either again from the host's messages is refused.
  bool connecting = false;

 private:
  void OnTimer() noexcept override;

  session::Session& session_;
  ports::ProductForms& product_forms_;
  ports::FormHost& form_host_;
  std::list<std::function<void()>> requests_;
  bool running_ = false;  // requests that have waited
  int boxes_ = 0;         // of ours that are open
};

}  // namespace quenta::component
