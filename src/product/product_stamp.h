// What others may have done to a product since it was read.
#pragma once

#include <cstdint>

#include "base/value.h"
#include "component/session/session.h"

namespace quenta::product {

// A product's row as far as its last change goes.
struct ProductStamp {
  bool deleted = true;                         // softly, or the row is gone
  base::Value modified = base::Value::Null();  // data_modified as the server has it
};

ProductStamp ReadStamp(session::Session& session, std::int32_t produto_id);

}  // namespace quenta::product
