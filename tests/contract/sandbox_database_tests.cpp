// The sandbox's database files: who may open them, and that they hold their rules against everybody.
#include "sandbox/odbc/sandbox_database.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/odbc_database.h"
#include "sandbox/odbc/odbc_link.h"

namespace quenta::sandbox {
namespace {

class SandboxDatabase : public testing::Test {
 protected:
  SandboxDatabase() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quenta_sandbox_çã_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    file_ = {.database = (folder_ / "a b.db").string(), .extension = QUENTA_SQLITE_EXTENSION};
    setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
    if (previous_) before_ = previous_;
  }
  ~SandboxDatabase() override {
    if (previous_) setenv("ODBCINI", before_.c_str(), 1);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  // A name that no source has had: the driver manager remembers for a while what it has read of one.
  static std::string Fresh(const std::string& name) {
    static int count = 0;
    return name + base::DecimalText(++count);
  }

  std::unique_ptr<ports::Connection> Connect(const std::string& user, const std::string& password,
                                             const std::string& source = {}) {
    auto connection = OdbcDatabase().CreateConnection();
    connection->SetConnectionString("Provider=SQLOLEDB.1;User ID=" + user + ";Password=" + password +
                                    ";Data Source=" + (source.empty() ? source_ : source));
    connection->Open();
    return connection;
  }

  std::string OpenFailure(const std::string& user, const std::string& password, const std::string& source = {}) {
    try {
      Connect(user, password, source);
    } catch (const base::Error& error) {
      return error.description();
    }
    return {};
  }

  const char* previous_ = std::getenv("ODBCINI");
  std::string before_;
  std::filesystem::path folder_;
  SandboxFile file_;
  const std::string source_ = Fresh("own");
};

TEST_F(SandboxDatabase, OpensForItsLoginsOnly) {
  CreateSandboxDatabase(file_, "Ambrell");
  WriteDataSources((folder_ / "odbc.ini").string(), {{source_, file_}});
  EXPECT_EQ(OpenFailure("ana", ""), "Login failed for user 'ana'.") << "nobody has a login yet";
  AddLogin(file_, "ana", "Senha1");
  AddLogin(file_, "d'orey", "x");
  EXPECT_EQ(OpenFailure("ANA", "Senha1"), "") << "names are of either case";
  EXPECT_EQ(OpenFailure("d'orey", "x"), "");
  EXPECT_EQ(OpenFailure("ana", "senha1"), "Login failed for user 'ana'.") << "passwords are not";
  EXPECT_EQ(OpenFailure("x' OR 1=1 --", "x"), "Login failed for user 'x' OR 1=1 --'.");
  AddLogin(file_, "Ana", "nova");
  EXPECT_EQ(OpenFailure("ana", "Senha1"), "Login failed for user 'ana'.");
  EXPECT_EQ(OpenFailure("ana", "nova"), "");

  std::ifstream file(file_.database, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_EQ(bytes.find("Senha1"), std::string::npos) << "the file holds no password";
}

TEST_F(SandboxDatabase, RefusesWhatIsNoSandbox) {
  CreateSandboxDatabase(file_, "Ambrell");
  EXPECT_THROW(CreateSandboxDatabase(file_, "Ambrell"), base::Error) << "a file is never overwritten";
  SandboxFile missing = file_;
  missing.database += ".none";
  SandboxFile empty = file_;
  empty.database = (folder_ / "empty.db").string();
  std::ofstream(empty.database).close();
  SandboxFile text = file_;
  text.database = (folder_ / "text.db").string();
  std::ofstream(text.database) << std::string(5000, 'x');
  const std::string ini = (folder_ / "odbc.ini").string();
  const std::vector<std::string> sources{Fresh("missing"), Fresh("empty"), Fresh("text"), Fresh("bare")};
  WriteDataSources(ini, {{sources[0], missing}, {sources[1], empty}, {sources[2], text}});
  std::ofstream(ini, std::ios::app) << "[" << sources[3] << "]\nDriver=SQLite3\nDatabase=" << file_.database << "\n";
  for (const std::string& source : sources) {
    const std::string why = OpenFailure("ana", "geheim", source);
    EXPECT_NE(why, "") << source;
    EXPECT_EQ(why.find("geheim"), std::string::npos) << why;
  }
  EXPECT_FALSE(std::filesystem::exists(missing.database)) << "opening makes no file";
  EXPECT_THROW(AddLogin(missing, "ana", "x"), base::Error);
  EXPECT_THROW(WriteDataSources(ini, {{"a]b", file_}}), base::Error);
  EXPECT_THROW(WriteDataSources((folder_ / "none" / "odbc.ini").string(), {{source_, file_}}), base::Error);
}

// The dialect lets nothing wrong through; neither does the file when another program writes to it.
TEST_F(SandboxDatabase, TheFileItselfKeepsTheTypes) {
  CreateSandboxDatabase(file_, "Ambrell");
  AddLogin(file_, "ana", "x");
  WriteDataSources((folder_ / "odbc.ini").string(), {{source_, file_}});
  Connect("ana", "x")
      ->Execute(
          "CREATE TABLE t (id INT NOT NULL PRIMARY KEY, few TINYINT, flag BIT, code VARCHAR(5) NOT NULL DEFAULT '', "
          "price MONEY, d "
          "DATETIME, n DECIMAL(5,2), f FLOAT)");
  OdbcLink raw;
  raw.ConnectSource(source_, "", "", 0);
  for (const char* assignment :
       {"code = '123456'", "code = null", "id = 'abc'", "id = 1.5", "few = 256", "few = -1", "flag = 2", "price = 'x'",
        "d = '2017-12-31'", "d = 5", "n = 'x'", "f = 'x'", "id = 3000000000"})
    EXPECT_THROW(
        {
          raw.RunText("INSERT OR REPLACE INTO t (id) VALUES (1)");
          raw.RunText(std::string("UPDATE t SET ") + assignment);
        },
        OdbcFailure)
        << assignment;
  raw.RunText(
      "UPDATE t SET few = 255, flag = 1, code = 'çãõáé', price = 1.5, d = '2017-12-31 00:00:00.000', n = 1, f = 2");
}

TEST_F(SandboxDatabase, CountsIdentityColumnsItself) {
  CreateSandboxDatabase(file_, "Ambrell");
  AddLogin(file_, "ana", "x");
  WriteDataSources((folder_ / "odbc.ini").string(), {{source_, file_}});
  const auto connection = Connect("ana", "x");
  connection->Execute("CREATE TABLE t (id INT IDENTITY (1, 1) NOT NULL PRIMARY KEY, x VARCHAR(5))");
  connection->Execute("INSERT INTO t (x) VALUES ('a'), ('b')");
  connection->Execute("INSERT INTO t VALUES ('c')");
  connection->Execute("DELETE FROM t WHERE x = 'c'");
  connection->Execute("INSERT INTO t SELECT x + '!' FROM t WHERE x = 'a'");
  const ports::RowSet rows = connection->Query("SELECT * FROM t ORDER BY id DESC");
  EXPECT_EQ(rows.front()["id"], base::Value(4)) << "a number is given once";
  EXPECT_EQ(rows.front()["x"], base::Value("a!"));
  EXPECT_THROW(connection->Execute("INSERT INTO t (id, x) VALUES (9, 'd')"), base::Error);
}

}  // namespace
}  // namespace quenta::sandbox
