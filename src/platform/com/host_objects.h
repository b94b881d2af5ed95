// References to objects of the host, in the form in which the component holds and hands them on.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"
#include "platform/win32/host_window_object.h"
#include "ports/host_object.h"

namespace quenta::platform {

// The host's window object ("Caller"): says its window by a property "hWnd" or by IOleWindow. Null for Nothing.
// An object that answers with errors, or with something that is no window, simply has none.
ports::HostObjectRef MakeCaller(IDispatch* caller);

// Any reference that only keeps its object alive. Null for a null object.
ports::HostObjectRef MakeReference(IUnknown* object);

// A value or object that the host passed in a variant. Null for Empty, Null, Nothing and an argument left out.
ports::HostObjectRef MakeHeldVariant(VARIANT& variant);

}  // namespace quenta::platform
