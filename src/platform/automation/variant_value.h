// Automation variants to values of the component and back.
#pragma once

#include <ole2.h>

#include "base/value.h"
#include "platform/automation/variant.h"

namespace quenta::platform {

// The value that a variant holds, through any reference. Integers up to 32 bits are Long; an argument left out is
// Empty; an object counts as its default property, which is how a field of a recordset arrives.
// Throws base::Error: 13 for arrays, records and error codes, 91 for an object that is Nothing.
base::Value ToValue(const VARIANT& variant);

// The variant of a value; no information is lost. Throws std::bad_alloc.
Variant ToVariant(const base::Value& value);

}  // namespace quenta::platform
