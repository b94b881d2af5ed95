// A composition root for the tests of the registered library: no database, no windows. Every product form that is
// opened adds a line to the file that the environment names, so that a script can read what arrived.
#include <windows.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "base/text.h"
#include "component/com/recording_composition.h"
#include "platform/com/composition_root.h"
#include "platform/win32/host_window_object.h"

namespace quenta::platform {
namespace {

class WrittenForm final : public ports::ProductForm {
 public:
  bool IsLoaded() const override { return false; }
  std::int32_t ProdutoId() const override { return 0; }
  void Activate(const ports::ProductRequest&) override {}
  void Open(const ports::ProductRequest& request) override {
    const auto number = [](const std::optional<std::int32_t>& value) {
      return value ? base::DecimalText(*value) : std::string("-");
    };
    const auto* caller = dynamic_cast<const HostWindowObject*>(request.caller.get());
    const std::string line = "produto=" + base::DecimalText(request.produto_id) + " caller=" +
                             (caller == nullptr             ? "-"
                              : caller->Window() != nullptr ? "window"
                                                            : "object") +
                             " index=" + number(request.current_index) +
                             " object=" + (request.current_object ? "yes" : "-") +
                             " last=" + number(request.last_related_id) + "\r\n";
    std::array<wchar_t, MAX_PATH> path{};
    if (GetEnvironmentVariableW(L"QUENTA_TEST_LOG", path.data(), static_cast<DWORD>(path.size())) == 0) return;
    if (std::FILE* file = _wfopen(path.data(), L"ab")) {
      std::fwrite(line.data(), 1, line.size(), file);
      std::fclose(file);
    }
  }
};

class WrittenForms final : public ports::ProductForms {
 public:
  std::shared_ptr<ports::ProductForm> Create() override { return std::make_shared<WrittenForm>(); }
  bool Busy() const override { return false; }
};

class Standin final : public Composition {
 public:
  Standin() : session_({world_.database, world_.settings, world_.desktop, world_.error_reporting}) {
    world_.database.users = {{"base", ""}, {"ana", ""}, {"123", ""}};
  }
  component::Component& Component() noexcept override { return component_; }
  bool Busy() const noexcept override { return false; }
  void End() noexcept override { session_.ReleaseConnection(); }

 private:
  tests::World world_;
  session::Session session_;
  WrittenForms forms_;
  component::Component component_{session_, forms_, world_.form_host};
};

}  // namespace

std::unique_ptr<Composition> ComposeComponent() {
  return std::make_unique<Standin>();
}

}  // namespace quenta::platform
