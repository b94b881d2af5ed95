// Puts the DLL's classes into the machine's registry and takes them out again. Only under Wine.
#pragma once

#include <windows.h>

namespace quenta::sandbox::com {

// Makes the DLL the server of its classes; the server that was there before is kept beside it for Unregister. On a
// real Windows, where the genuine ADO lives, nothing is touched and the answer is E_ACCESSDENIED.
// A failure undoes what was done.
HRESULT Register() noexcept;

// Gives the classes back to their former servers and removes those that had none.
HRESULT Unregister() noexcept;

}  // namespace quenta::sandbox::com
