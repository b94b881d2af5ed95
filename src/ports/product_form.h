// The product form as the record operations see it: they fill in a request and show the form.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "ports/host_object.h"

namespace quenta::ports {

// What a record operation hands to the form, in the order in which it is set.
struct ProductRequest {
  std::int32_t produto_id = 0;  // 0 asks for a new product
  HostObjectRef owner{};        // the General object that opened the form; released when the form closes
  HostObjectRef caller{};       // the host's window object, or null
  // Only ObjectOpen and the operations for new products set these; the form keeps them for the host.
  std::optional<std::int32_t> current_index{};
  HostObjectRef current_object{};
  std::optional<std::int32_t> last_related_id{};
};

class ProductForm {
 public:
  virtual ~ProductForm() = default;

  // True from the load until the form has closed.
  virtual bool IsLoaded() const = 0;
  virtual std::int32_t ProdutoId() const = 0;

  // Loads the product (only when the form is not loaded) and shows the form.
  virtual void Open(const ProductRequest& request) = 0;
  // Brings a loaded form to the front for a new caller. Where the request has an index, its index, object and related
  // identifier replace those of before, too.
  virtual void Activate(const ProductRequest& request) = 0;
};

class ProductForms {
 public:
  virtual ~ProductForms() = default;
  // A new form that is not loaded.
  virtual std::shared_ptr<ProductForm> Create() = 0;
  // True while an operation of a form must not be disturbed: a question that it asks lets the host go on meanwhile.
  virtual bool Busy() const = 0;
  // True while a form of the component is loaded.
  virtual bool AnyLoaded() const = 0;
};

}  // namespace quenta::ports
