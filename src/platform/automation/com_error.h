// The step from COM's result codes to the component's errors.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace quenta::platform {

// The suite's number of a failure: automation and data-access codes (0x800A....) lose their prefix (0x800A0E7D is
// 3709), the common automation failures have numbers of their own, anything else keeps the code itself.
std::int32_t ErrorNumber(HRESULT result) noexcept;

// The system's own text for the code, or the code in hexadecimal when it has none.
std::string SystemText(HRESULT result);

// Throws base::Error with the suite's number and "what: text" when the code is a failure.
void ThrowIfFailed(HRESULT result, const char* what);

}  // namespace quenta::platform
