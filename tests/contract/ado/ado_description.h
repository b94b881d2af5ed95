// ADO as its own type library describes it, and objects whose late-bound calls are held to that description.
#pragma once

#include <ole2.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/automation/com_object.h"
#include "platform/automation/com_ptr.h"

namespace quenta::contract {

// One way to call a member of an ADO interface, as a late-bound client of this process's width meets it.
struct AdoMember {
  std::wstring name;
  DISPID identifier = DISPID_UNKNOWN;
  WORD kind = 0;  // one of DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF
  std::size_t parameters = 0;
  std::size_t required = 0;            // the first ones, which may not be left out
  VARTYPE answer = VT_EMPTY;           // VT_VARIANT: of any type
  std::wstring interface_of_answer{};  // where the answer is an object
};

struct AdoInterface {
  std::wstring name;
  std::vector<AdoMember> members;

  // Null when there is no such member, or it is not called in any of these ways.
  const AdoMember* Find(DISPID identifier, WORD kinds) const;
};

// An interface of the machine's ADO by its name ("_Connection"), read from the type library in msado15.dll, which lies
// in the same place on Windows and under Wine. Throws std::runtime_error when there is none.
const AdoInterface& DescribedInterface(const std::wstring& name);

// The object, answering for IDispatch only. A call that the description of its interface does not allow, or an answer
// of another type than described, is a failure of the running test. Objects that it gives are held in the same way.
platform::ComPtr<IDispatch> HeldToDescription(platform::ComPtr<IDispatch> object, const std::wstring& interface_name);

// As long as it lives, what this thread creates as ADODB.Connection is what `replace` makes of it.
class ReplacedConnections {
 public:
  using Replace = std::function<platform::ComPtr<IDispatch>(platform::ComPtr<IDispatch> connection)>;
  explicit ReplacedConnections(Replace replace);
  ~ReplacedConnections();
  ReplacedConnections(const ReplacedConnections&) = delete;
  ReplacedConnections& operator=(const ReplacedConnections&) = delete;

 private:
  DWORD registration_ = 0;
};

}  // namespace quenta::contract
