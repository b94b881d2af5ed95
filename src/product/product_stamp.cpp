#include "product/product_stamp.h"

#include "base/convert.h"
#include "base/text.h"

namespace quenta::product {

ProductStamp ReadStamp(session::Session& session, std::int32_t produto_id) {
  const ports::RowSet rows = session.Query("SELECT is_deleted, data_modified FROM tbProdutos WHERE produto_id = " +
                                           base::DecimalText(produto_id));
  if (rows.empty()) return {};
  return {base::IsNonZero(rows.front()["is_deleted"]), rows.front()["data_modified"]};
}

}  // namespace quenta::product
