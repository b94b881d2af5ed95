// The sample catalogue: creates the suite's tables in an empty database and fills them with invented data.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "ports/database.h"

namespace quenta::sandbox {

// Tables of other modules that may tie records to products: none; membership and treatments; also events.
enum class Modules { kNone, kTwo, kAll };

struct CatalogueOptions {
  // The history ends on this day. The same day and other options give the same data every time.
  std::chrono::sys_days today{};
  // Products in all, dependent and deleted ones included: the list of products.txt is cut, or completed with invented
  // products. 0 takes the list as it is. The empty product of exceptions.sql comes on top.
  int products = 0;
  // Sale lines, from the first of January to today, added for the product kBusyProductCode.
  int history_lines = 0;
  Modules modules = Modules::kTwo;
  unsigned seed = 1;
};

// Gets CatalogueOptions::history_lines. When the list was cut before it, the first product gets them.
inline constexpr std::string_view kBusyProductCode = "10522";

// The SQL login of a user of the suite, or of the shared connection.
struct CatalogueLogin {
  std::string user;
  std::string password;  // as the server knows it, not scrambled
};

// Of the sandbox only: "suite", the login of the shared connection, then one for each row of tbUsers.
std::vector<CatalogueLogin> CatalogueLogins();

// Runs each batch of a script, that is, the text between lines that hold only GO. No transaction of its own.
void LoadSchema(ports::Connection& connection, const std::string& sql_text);

// Creates all tables and views, those of the chosen modules included. Nothing is left of it when it throws.
void CreateCatalogue(ports::Connection& connection, Modules modules);

// Fills the tables that CreateCatalogue made with the same modules. Nothing is left of it when it throws.
void FillCatalogue(ports::Connection& connection, const CatalogueOptions& options);

}  // namespace quenta::sandbox
