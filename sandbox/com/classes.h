// The classes of the DLL: their identifiers and names, and how an object of each is made.
#pragma once

#include <ole2.h>

#include <span>

namespace quenta::sandbox::com {

struct CreatableClass {
  CLSID identifier;
  const wchar_t* identifier_text;
  const wchar_t* prog_id;
  const wchar_t* title;
  // A new object with one reference. Throws std::bad_alloc or base::Error.
  IDispatch* (*create)();
};

// The two of ADO keep the published identifiers, so that they take the place of what is registered there.
std::span<const CreatableClass> CreatableClasses() noexcept;

// Answers DllGetClassObject.
HRESULT GetClassObject(REFCLSID identifier, REFIID iid, void** object) noexcept;

}  // namespace quenta::sandbox::com
