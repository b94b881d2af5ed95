// Opening a product, against the bare replay of its statements. With --slowed, ours does everything twice and must
// fail.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "base/convert.h"
#include "base/text.h"
#include "harness.h"
#include "support/sample_component.h"

namespace quenta::bench {
namespace {

class Bench final : public tests::SampleComponentTest {
 public:
  // A fixture without a test: only its sample component is used.
  void TestBody() override {}

  int Run(bool slowed) {
    LogIn("ana");
    const std::int32_t id = IdOfCode("10300-CS-42");
    database.Forget();
    const auto form = OpenForm(id);
    const std::vector<std::string> statements = database.statements;
    const std::string shown = form->Dump();
    form->Unload();

    const auto connection = odbc.CreateConnection();
    connection->SetConnectionString(SharedConnectionString());
    connection->Open();
    std::size_t sum = 0;
    const auto replay = [&] {
      for (const std::string& statement : statements) {
        const ports::RowSet rows = connection->Query(statement);
        for (const ports::Row row : rows) {
          for (std::size_t i = 0; i < rows.columns().size(); ++i) sum += row.At(i).is_null() ? 0 : 1;
        }
      }
    };
    session::Session bare_session({odbc, settings, desktop, reporting});
    bare_session.state() = session.state();
    bare_session.SharedConnection().SetConnectionString(SharedConnectionString());
    bare_session.SharedConnection().Open();
    product::ProductForms bare_forms(bare_session, form_host, &generator::MakeGenerator);
    const auto open = [&] {
      const auto opened = std::static_pointer_cast<product::frmMain>(bare_forms.Create());
      opened->Open({.produto_id = id});
      sum += opened->FXCodigo.text().size();
      opened->Unload();
    };
    const auto open_twice = [&] {
      open();
      open();
    };
    // The same statements and the same form every time, before any clock starts.
    database.Forget();
    const auto again = OpenForm(id);
    if (database.statements != statements || again->Dump() != shown) {
      std::printf("opening a product is not the same twice\n");
      return 1;
    }
    again->Unload();

    Row row{.name = "opening a product", .replay = replay, .ours = open};
    if (slowed) row.ours = open_twice;
    const bool within = Report(row, Measure(row));
    return within ? 0 : 1;
  }
};

}  // namespace
}  // namespace quenta::bench

int main(int count, char** arguments) {
  const bool slowed = count > 1 && std::strcmp(arguments[1], "--slowed") == 0;
  return quenta::bench::Bench().Run(slowed);
}
