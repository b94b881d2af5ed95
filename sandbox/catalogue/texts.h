// The catalogue's text files (schema.sql, lookups.sql, products.txt …), built into the program. UTF-8.
#pragma once

#include <string_view>

namespace quenta::sandbox {

extern const std::string_view kSchemaSql;
extern const std::string_view kSchemaModulesSql;
extern const std::string_view kLookupsSql;
extern const std::string_view kExceptionsSql;
extern const std::string_view kProductsTxt;

}  // namespace quenta::sandbox
