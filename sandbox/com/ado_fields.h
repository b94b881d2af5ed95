// The Fields collection of a recordset and its elements, which follow the recordset's current row.
#pragma once

#include "sandbox/com/ado_recordset.h"

namespace quenta::sandbox::com {

ComPtr<IDispatch> MakeFields(const ComPtr<RecordsetObject>& recordset);
// The field at a position that exists.
ComPtr<IDispatch> MakeField(const ComPtr<RecordsetObject>& recordset, std::size_t column);

}  // namespace quenta::sandbox::com
