// A component on fakes, with forms that only remember what they were asked.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "component/component.h"
#include "component/general.h"
#include "component/session/scrambler.h"
#include "gtest/gtest.h"
#include "support/fake_ports.h"

namespace quenta::tests {

class FakeProductForm final : public ports::ProductForm {
 public:
  bool IsLoaded() const override { return loaded; }
  std::int32_t ProdutoId() const override { return request.produto_id; }
  void Open(const ports::ProductRequest& asked) override {
    request = asked;
    loaded = true;
    ++opens;
    if (on_open) on_open();
  }
  void Activate(const ports::ProductRequest& asked) override {
    request = asked;
    ++activations;
  }

  ports::ProductRequest request;
  bool loaded = false;
  int opens = 0;
  int activations = 0;
  std::function<void()> on_open;
};

class FakeProductForms final : public ports::ProductForms {
 public:
  std::shared_ptr<ports::ProductForm> Create() override {
    forms.push_back(std::make_shared<FakeProductForm>());
    return forms.back();
  }
  bool Busy() const override { return busy; }

  bool busy = false;
  std::vector<std::shared_ptr<FakeProductForm>> forms;
};

class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest() {
    database.servers = {{"sql1", {}}, {"sql2", {}}};
    database.users = {{"suite", "s3creta"}, {"ana", "ana1"}};
  }

  component::SQLConnectArguments Arguments() const {
    return {.User = "ana",
            .Password = session::Scramble("ana1"),
            .cnUser = "suite",
            .cnPassword = session::Scramble("s3creta"),
            .cnInitialCatalog = "Comercial",
            .cnDataSource = "sql1",
            .cnDataSourceSecondary = "sql2",
            .oFlags = 0};
  }

  FakeDatabase database;
  FakeSettings settings;
  FakeDesktop desktop;
  FakeErrorReporting reporting;
  FakeProductForms forms;
  FakeFormHost form_host;
  session::Session session{{database, settings, desktop, reporting}};
  component::Component component{session, forms, form_host};
};

}  // namespace quenta::tests
