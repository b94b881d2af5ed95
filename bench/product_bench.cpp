// The component against the bare replay of the statements it sends: opening a product, and saving one with its prices.
// With --slowed, ours is made slower by a twentieth of the replay's time, and every row must be found above its limit.
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"
#include "support/sample_component.h"

namespace quenta::bench {
namespace {

// A call that changes nothing between two runs, so that every run sends the same statements.
using Work = std::function<void()>;

class Bench final : public tests::SampleComponentTest {
 public:
  // A fixture without a test: only its sample component is used.
  void TestBody() override {}

  int Run(bool slowed) {
    LogIn("ana");
    // The same component without the recorder, and with it the connection that both sides use.
    bare_session_.state() = session.state();
    bare_session_.shared_connection_string = session.shared_connection_string;
    bare_session_.SharedConnection().SetConnectionString(SharedConnectionString());
    bare_session_.SharedConnection().Open();
    const bool opening = Compare("opening a product", Opening(general_), Opening(bare_general_), slowed);
    const bool saving = Compare("saving a product with prices", Saving(general_), Saving(bare_general_), slowed);
    return opening && saving ? 0 : 1;
  }

 private:
  // As a host asks for it: the General object lives as long as the host, and its form is loaded anew.
  Work Opening(component::General& general) {
    return [this, &general, id = IdOfCode("10300-CS-42")] {
      general.ObjectOpen(id, {});
      form_host.shown.begin()->first->Unload();
    };
  }

  // As the user does it, with a price changed; the form stays open.
  Work Saving(component::General& general) {
    general.ObjectOpen(IdOfCode("10000"), {});
    auto* const form = static_cast<product::frmMain*>(form_host.shown.begin()->first);
    form_host.shown.clear();
    return [form] {
      form->PrecosAltered = true;
      form->SetAltered(true);
      form->Gravar();
    };
  }

  // Runs the row; true when its ratio is where it must be.
  bool Compare(const char* name, const Work& recorded, const Work& ours, bool slowed) {
    recorded();
    database.Forget();
    recorded();
    const std::vector<std::string> statements = database.statements;
    database.Forget();
    recorded();
    if (database.statements != statements || statements.empty() || !reporting.reports.empty()) {
      std::printf("%s: not the same twice\n", name);
      return false;
    }
    Row row{.name = name, .replay = [&] { Replay(statements); }, .ours = ours};
    Outcome outcome = Measure(row);
    if (slowed) {
      row.ours = [&ours, delay = std::chrono::duration<double, std::micro>(outcome.replay_us / 20)] {
        ours();
        const auto end = std::chrono::steady_clock::now() + delay;
        while (std::chrono::steady_clock::now() < end) {
        }
      };
      outcome = Measure(row);
    }
    const bool within = Report(row, outcome);
    return slowed ? outcome.valid && !within : within;
  }

  // What the statements alone cost: each is sent, and every field of its result is read.
  void Replay(const std::vector<std::string>& statements) {
    ports::Connection& connection = bare_session_.SharedConnection();
    for (const std::string& statement : statements) {
      if (statement == "BEGIN") {
        connection.BeginTransaction();
      } else if (statement == "COMMIT") {
        connection.CommitTransaction();
      } else {
        const ports::RowSet rows = connection.Query(statement);
        for (const ports::Row row : rows) {
          for (std::size_t i = 0; i < rows.columns().size(); ++i) fields_read_ += row.At(i).is_null() ? 0 : 1;
        }
      }
    }
  }

  session::Session bare_session_{{odbc, settings, desktop, reporting}};
  product::ProductForms bare_forms_{bare_session_, form_host, &generator::MakeGenerator};
  component::Component bare_component_{bare_session_, bare_forms_, form_host};
  component::General general_{component};
  component::General bare_general_{bare_component_};
  std::size_t fields_read_ = 0;
};

}  // namespace
}  // namespace quenta::bench

int main(int count, char** arguments) {
  // In memory: what a disk does now and then would drown what is measured.
  if (std::filesystem::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  const bool slowed = count > 1 && std::strcmp(arguments[1], "--slowed") == 0;
  return quenta::bench::Bench().Run(slowed);
}
