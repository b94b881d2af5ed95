// The host's own view of the catalogue: the list of products, read through ADODB.Connection.
#pragma once

#include <string>
#include <vector>

#include "sandbox/host/automation.h"
#include "sandbox/host/product_list.h"
#include "sandbox/host/server_list.h"

namespace quenta::sandbox::host {

class CatalogueReader {
 public:
  // Opens a connection of the host's own. Throws ComError, and std::invalid_argument when the server's password is not
  // a scrambled one.
  explicit CatalogueReader(const Server& server);
  ~CatalogueReader();
  CatalogueReader(const CatalogueReader&) = delete;
  CatalogueReader& operator=(const CatalogueReader&) = delete;

  // All products, the deleted ones too, with the price of the price type that sells by default. Throws ComError.
  std::vector<Product> ReadProducts();

 private:
  Object connection_;
};

}  // namespace quenta::sandbox::host
