// The descriptions of our interface and class, from the type library in the module's own resources.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <string>

#include "platform/automation/com_ptr.h"

namespace quenta::platform {

// Path of a module's file, of any length. Empty when the system does not tell. Throws std::bad_alloc.
std::wstring ModulePath(HMODULE module);

// The description of the interface or class with this identifier. The library is read from the file itself, whether it
// is registered or not. Null in information on failure.
HRESULT LoadTypeInformation(HMODULE module, REFGUID identifier, ITypeInfo** information) noexcept;

}  // namespace quenta::platform
