#include "support/sample_component.h"

#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "base/convert.h"
#include "component/session/scrambler.h"
#include "sandbox/catalogue/sample_database.h"
#include "support/odbc_driver.h"

namespace quenta::tests {
namespace {

namespace fs = std::filesystem;

// One sample database for the whole test program, removed at its end.
class Template {
 public:
  Template() {
    KeepDriverLoaded();
    std::string name = (fs::temp_directory_path() / "quenta-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    sandbox::SampleFiles files;
    files.file = {.database = folder_ / "template.db", .extension = sandbox::BuiltExtension()};
    files.odbc_ini = folder_ / "odbc.ini";
    files.data_sources = {"modelo"};
    using namespace std::chrono;
    sandbox::MakeSampleDatabase(files,
                                {.today = sys_days(year{2026} / November / 21), .modules = sandbox::Modules::kAll});
  }
  ~Template() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Template(const Template&) = delete;
  Template& operator=(const Template&) = delete;

  // A fresh copy in a folder of its own, with a data source of its own: the driver manager remembers those it has read.
  SampleCopy Copy() {
    const std::string source = "amostra" + std::to_string(++copies_);
    const fs::path folder = folder_ / source;
    fs::create_directory(folder);
    fs::copy_file(folder_ / "template.db", folder / "amostra.db");
    const sandbox::SandboxFile file{.database = folder / "amostra.db", .extension = sandbox::BuiltExtension()};
    const SampleCopy copy{folder, source};
    sandbox::WriteDataSources(folder / "odbc.ini", {{source, file}, {copy.other_source(), file}});
    setenv("ODBCINI", (folder / "odbc.ini").c_str(), 1);
    return copy;
  }

 private:
  fs::path folder_;
  int copies_ = 0;
};

Template& SharedTemplate() {
  static Template shared;
  return shared;
}

std::string PasswordOf(const std::string& user) {
  for (const sandbox::CatalogueLogin& login : sandbox::CatalogueLogins()) {
    if (login.user == user) return login.password;
  }
  return {};
}

}  // namespace

SampleCopy CopySample() {
  return SharedTemplate().Copy();
}

component::SQLConnectArguments SampleArguments(const SampleCopy& sample, const std::string& user) {
  return {.User = user,
          .Password = session::Scramble(PasswordOf(user)),
          .cnUser = "suite",
          .cnPassword = session::Scramble(PasswordOf("suite")),
          .cnInitialCatalog = "Amostra",
          .cnDataSource = sample.source,
          .cnDataSourceSecondary = sample.source,
          .oFlags = 0};
}

std::string SampleConnectionString(const SampleCopy& sample) {
  return "Provider=SQLOLEDB.1;User ID=suite;Password=" + PasswordOf("suite") +
         ";Initial Catalog=Amostra;Data Source=" + sample.source;
}

SampleComponentTest::SampleComponentTest() : sample_(CopySample()) {
  desktop.pump_time = std::chrono::milliseconds(1);
  desktop.quits_after = 30000;
}

SampleComponentTest::~SampleComponentTest() {
  session.ReleaseConnection();
  other_.reset();
  std::error_code ignored;
  fs::remove_all(sample_.folder, ignored);
}

void SampleComponentTest::LogIn(const std::string& user) {
  const bool open = component::General(component).SQLConnect(ArgumentsOf(user));
  ASSERT_TRUE(open) << (reporting.reports.empty() ? "refused" : reporting.reports.back().description);
  database.Forget();
}

std::shared_ptr<product::frmMain> SampleComponentTest::OpenForm(std::int32_t produto_id) {
  const auto form = std::static_pointer_cast<product::frmMain>(product_forms.Create());
  form->Open({.produto_id = produto_id});
  return form;
}

std::int32_t SampleComponentTest::IdOfCode(const std::string& codigo) {
  return base::ToLong(Sql("SELECT produto_id FROM tbProdutos WHERE codigo = '" + codigo + "'").front().At(0), {});
}

ports::RowSet SampleComponentTest::Sql(const std::string& sql) {
  if (!other_) {
    other_ = odbc.CreateConnection();
    other_->SetConnectionString(SharedConnectionString());
    other_->Open();
  }
  return other_->Query(sql);
}

std::string SampleComponentTest::SqlText(const std::string& sql) {
  const ports::RowSet rows = Sql(sql);
  if (rows.empty()) return "(none)";
  return rows.front().At(0).is_null() ? "(null)" : base::ToText(rows.front().At(0), EnglishLocale());
}

}  // namespace quenta::tests
