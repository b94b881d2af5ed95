#include "sandbox/catalogue/sample_database.h"

#include <cstdlib>

#include "sandbox/odbc/odbc_database.h"

namespace quenta::sandbox {

std::string BuiltExtension() {
  return QUENTA_SQLITE_EXTENSION;
}

void MakeSampleDatabase(const SampleFiles& files, const CatalogueOptions& options) {
  std::vector<DataSource> sources;
  for (const std::string& name : files.data_sources) sources.push_back({name, files.file});
  WriteDataSources(files.odbc_ini, sources);
  setenv("ODBCINI", files.odbc_ini.c_str(), 1);

  CreateSandboxDatabase(files.file, files.initial_catalogue);
  for (const CatalogueLogin& login : CatalogueLogins()) AddLogin(files.file, login.user, login.password);
  const std::unique_ptr<ports::Connection> connection = OpenSampleDatabase(files);
  CreateCatalogue(*connection, options.modules);
  FillCatalogue(*connection, options);
}

std::unique_ptr<ports::Connection> OpenSampleDatabase(const SampleFiles& files) {
  const CatalogueLogin suite = CatalogueLogins().front();
  auto connection = OdbcDatabase().CreateConnection();
  connection->SetConnectionString("Provider=SQLOLEDB.1;Persist Security Info=False;User ID=" + suite.user +
                                  ";Password=" + suite.password + ";Initial Catalog=" + files.initial_catalogue +
                                  ";Data Source=" + files.data_sources.front() + ";Connect Timeout=15");
  connection->Open();
  return connection;
}

}  // namespace quenta::sandbox
