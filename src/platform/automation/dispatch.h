// Late-bound calls on an automation object.
#pragma once

#include <ole2.h>

#include <initializer_list>

#include "platform/automation/com_ptr.h"
#include "platform/automation/variant.h"

namespace quenta::platform {

// A new object of the class that a ProgID names. Throws base::Error: the class is not registered or fails to start.
ComPtr<IDispatch> CreateObject(const wchar_t* prog_id);

// Calls a method with arguments in the order of its declaration and gives its result. Throws base::Error with the
// object's own number and description where it left any.
Variant CallMethod(IDispatch& object, const wchar_t* name, std::initializer_list<const Variant*> arguments = {});

// Reads a property without arguments. Throws as CallMethod does.
Variant GetProperty(IDispatch& object, const wchar_t* name);

}  // namespace quenta::platform
