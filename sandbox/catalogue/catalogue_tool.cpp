// catalogue_tool: makes a database with the sample catalogue; README.md describes its options.
#include <charconv>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "sandbox/catalogue/catalogue.h"
#include "sandbox/catalogue/sample_database.h"
#include "sandbox/odbc/odbc_database.h"

namespace quenta::sandbox {
namespace {

constexpr const char* kUsage =
    "catalogue_tool --database FILE [--replace] [--odbc-ini FILE] [--data-source NAME]... [--extension FILE]\n"
    "catalogue_tool --connection TEXT\n"
    "both with [--today yyyy-mm-dd] [--products N] [--history N] [--modules none|two|all] [--seed N]\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Arguments {
  CatalogueOptions options;
  SampleFiles files;
  std::string connection;
  bool replace = false;
};

int ParseNumber(std::string_view text, int first, int last) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < first || number > last) {
    throw UsageError("a number from " + std::to_string(first) + " to " + std::to_string(last) + " is needed, not " +
                     std::string(text));
  }
  return number;
}

std::chrono::sys_days ParseDay(std::string_view text) {
  if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    const std::chrono::year_month_day day(
        std::chrono::year(ParseNumber(text.substr(0, 4), 1900, 9998)),
        std::chrono::month(static_cast<unsigned>(ParseNumber(text.substr(5, 2), 1, 12))),
        std::chrono::day(static_cast<unsigned>(ParseNumber(text.substr(8, 2), 1, 31))));
    if (day.ok()) return day;
  }
  throw UsageError("a day as yyyy-mm-dd is needed, not " + std::string(text));
}

Modules ParseModules(std::string_view text) {
  if (text == "none") return Modules::kNone;
  if (text == "two") return Modules::kTwo;
  if (text == "all") return Modules::kAll;
  throw UsageError("none, two or all is needed, not " + std::string(text));
}

Arguments ParseArguments(int count, char** texts) {
  Arguments arguments;
  arguments.options.today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
  arguments.files.file.extension = sandbox::BuiltExtension();
  for (int i = 1; i < count; ++i) {
    const std::string_view option = texts[i];
    const auto value = [&]() -> std::string {
      if (i + 1 == count) throw UsageError("no value for " + std::string(option));
      return texts[++i];
    };
    if (option == "--database") {
      arguments.files.file.database = std::filesystem::absolute(value()).string();
    } else if (option == "--connection") {
      arguments.connection = value();
    } else if (option == "--odbc-ini") {
      arguments.files.odbc_ini = std::filesystem::absolute(value()).string();
    } else if (option == "--data-source") {
      arguments.files.data_sources.push_back(value());
    } else if (option == "--extension") {
      arguments.files.file.extension = std::filesystem::absolute(value()).string();
    } else if (option == "--replace") {
      arguments.replace = true;
    } else if (option == "--today") {
      arguments.options.today = ParseDay(value());
    } else if (option == "--products") {
      arguments.options.products = ParseNumber(value(), 100, 100000);
    } else if (option == "--history") {
      arguments.options.history_lines = ParseNumber(value(), 0, 100000);
    } else if (option == "--modules") {
      arguments.options.modules = ParseModules(value());
    } else if (option == "--seed") {
      arguments.options.seed = static_cast<unsigned>(ParseNumber(value(), 0, 1000000000));
    } else {
      throw UsageError("unknown option " + std::string(option));
    }
  }
  if (arguments.files.file.database.empty() == arguments.connection.empty()) {
    throw UsageError("either --database or --connection is needed");
  }
  if (arguments.files.odbc_ini.empty()) arguments.files.odbc_ini = arguments.files.file.database + ".odbc.ini";
  if (arguments.files.data_sources.empty()) arguments.files.data_sources.push_back("QuentaAmostra");
  return arguments;
}

// SQLite keeps its journal beside the file.
void RemoveDatabase(const std::string& file) {
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file + suffix);
}

void PrintCounts(ports::Connection& connection) {
  for (const char* table : {"tbProdutos", "tbProdutos_Precos", "tbProdutos_Stocks", "tbDocumentos_Items",
                            "tbDocumentos_Fornec_Items", "tbEncomendas_Items", "tbEncomendas_Fornec_Items"}) {
    const ports::RowSet count = connection.Query("SELECT COUNT(*) AS n FROM " + std::string(table));
    std::printf("%-28s %8d\n", table, count.front()["n"].get<std::int32_t>());
  }
}

void Run(const Arguments& arguments) {
  if (arguments.connection.empty()) {
    if (arguments.replace) RemoveDatabase(arguments.files.file.database);
    MakeSampleDatabase(arguments.files, arguments.options);
    PrintCounts(*OpenSampleDatabase(arguments.files));
    return;
  }
  const auto connection = OdbcDatabase().CreateConnection();
  connection->SetConnectionString(arguments.connection);
  connection->Open();
  CreateCatalogue(*connection, arguments.options.modules);
  FillCatalogue(*connection, arguments.options);
  PrintCounts(*connection);
}

}  // namespace
}  // namespace quenta::sandbox

int main(int count, char** texts) {
  try {
    quenta::sandbox::Run(quenta::sandbox::ParseArguments(count, texts));
    return 0;
  } catch (const quenta::sandbox::UsageError& error) {
    std::fprintf(stderr, "catalogue_tool: %s\n%s", error.what(), quenta::sandbox::kUsage);
    return 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "catalogue_tool: %s\n", error.what());
    return 1;
  }
}
