// A composition without database and windows, which records what the COM layer hands to the component.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "component/component.h"
#include "platform/com/composition.h"
#include "ports/product_form.h"
#include "support/fake_ports.h"

namespace quenta::tests {

// What tests look at; it outlives the compositions that are made on it.
struct World {
  FakeDatabase database;
  FakeSettings settings;
  FakeDesktop desktop;
  FakeErrorReporting error_reporting;
  FakeFormHost form_host;
  std::vector<ports::ProductRequest> requests;  // of all forms that were opened
  int compositions = 0;                         // alive
  int ended = 0;
  bool busy = false;
  std::function<void()> while_ending;
};

class RecordingForm final : public ports::ProductForm {
 public:
  explicit RecordingForm(World& world) : world_(world) {}
  bool IsLoaded() const override { return false; }
  std::int32_t ProdutoId() const override { return 0; }
  void Open(const ports::ProductRequest& request) override { world_.requests.push_back(request); }
  void Activate(const ports::ProductRequest&) override {}

 private:
  World& world_;
};

class RecordingForms final : public ports::ProductForms {
 public:
  explicit RecordingForms(World& world) : world_(world) {}
  std::shared_ptr<ports::ProductForm> Create() override { return std::make_shared<RecordingForm>(world_); }
  bool Busy() const override { return false; }
  bool AnyLoaded() const override { return false; }

 private:
  World& world_;
};

class RecordingComposition final : public platform::Composition {
 public:
  explicit RecordingComposition(World& world)
      : world_(world),
        session_({world.database, world.settings, world.desktop, world.error_reporting}),
        forms_(world),
        component_(session_, forms_, world.form_host) {
    ++world_.compositions;
  }
  ~RecordingComposition() override { --world_.compositions; }

  component::Component& Component() noexcept override { return component_; }
  bool Busy() const noexcept override { return world_.busy; }
  void End() noexcept override {
    ++world_.ended;
    if (world_.while_ending) world_.while_ending();
    session_.ReleaseConnection();
  }

 private:
  World& world_;
  session::Session session_;
  RecordingForms forms_;
  component::Component component_;
};

inline platform::Compose ComposeOn(World& world) {
  return [&world] { return std::make_unique<RecordingComposition>(world); };
}

}  // namespace quenta::tests
