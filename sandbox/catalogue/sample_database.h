// Makes a sandbox database file that holds the sample catalogue, with its logins and the data sources that name it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ports/database.h"
#include "sandbox/catalogue/catalogue.h"
#include "sandbox/odbc/sandbox_database.h"

namespace quenta::sandbox {

struct SampleFiles {
  SandboxFile file;
  std::string odbc_ini;                   // written anew, with the data sources below
  std::vector<std::string> data_sources;  // at least one; all of them name the one database
  std::string initial_catalogue = "Amostra";
};

// The SQLite extension that was built beside this library.
std::string BuiltExtension();

// Points this process to the data sources, through the environment. What failed is thrown as base::Error or, when it is
// the catalogue's own texts, as std::runtime_error; the files that were made so far are then left.
void MakeSampleDatabase(const SampleFiles& files, const CatalogueOptions& options);

// An open connection of the login "suite" to the first data source of the files.
std::unique_ptr<ports::Connection> OpenSampleDatabase(const SampleFiles& files);

}  // namespace quenta::sandbox
