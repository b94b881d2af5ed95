// The products of the sample catalogue as products.txt lists them, read into plain data and completed up to any number.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenta::sandbox {

// Identifiers of the fixed tables by the names and codes that products.txt uses for them.
struct LookupIds {
  struct VatRate {
    int id = 0;
    int per_mille = 0;
  };
  std::map<std::string, int> families;
  std::map<std::pair<int, std::string>, int> subfamilies;  // by family and name
  std::map<std::string, int> types;
  std::map<std::string, int> cost_centres;        // by code
  std::map<std::string, VatRate> vat_rates;       // by code
  std::map<std::string, std::string> exemptions;  // by code; the reason's text
  std::map<std::string, std::string> colours;     // by code; the colour's text
  std::map<std::string, std::string> sizes;       // by code; the size's text
};

// One row of tbProdutos, and what its rows in other tables are made from. Identifiers of 0 and empty texts are null.
struct Product {
  int id = 0;
  int main_id = 0;
  std::string code;
  std::string name;
  std::string brand;
  std::string notes;
  int family_id = 0;
  int subfamily_id = 0;
  int supplier_id = 0;
  int type_id = 0;
  int cost_centre_id = 0;
  std::string colour;
  std::string size;
  int height_mm = 0;
  int width_mm = 0;
  int depth_mm = 0;
  int retail_cents = 0;  // VAT included
  LookupIds::VatRate vat;
  std::string exemption;
  bool discontinued = false;
  bool deleted = false;
  bool moves = true;  // may stand in documents and orders
  // Names of the records of other modules that are tied to the product; empty when there is none.
  std::string quota;
  std::string treatment;
  std::string service;
};

// Main products in the order of the list, each followed by its dependent products. Main products are numbered from 1,
// dependent ones from 1001. Throws std::runtime_error, with the line, for what it cannot read.
std::vector<Product> ReadProducts(std::string_view list, const LookupIds& ids);

// Cuts the list, or adds invented products numbered from 10001 with codes from 20000, until it has `count` products.
void CompleteProducts(std::vector<Product>& products, int count, const LookupIds& ids, unsigned seed);

}  // namespace quenta::sandbox
