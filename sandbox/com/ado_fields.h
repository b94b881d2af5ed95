// The Fields collection of a recordset and its elements, which follow the recordset's current row.
#pragma once

#include "sandbox/com/ado_recordset.h"

namespace quenta::sandbox::com {

ComPtr<IDispatch> MakeFields(const ComPtr<RecordsetObject>& recordset);

}  // namespace quenta::sandbox::com
