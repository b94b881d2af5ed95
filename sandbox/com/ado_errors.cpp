#include "sandbox/com/ado_errors.h"

#include <string>
#include <utility>

namespace quenta::sandbox::com {
namespace {

class ErrorObject final : public Automation<ErrorObject> {
 public:
  explicit ErrorObject(base::Error error) : error_(std::move(error)) {}

  static std::span<const Member<ErrorObject>> Members() {
    static constexpr Member<ErrorObject> kMembers[] = {
        {L"Number", 0x60020000, kProperty, {}, &ErrorObject::Number},
        {L"Description", DISPID_VALUE, kProperty, {}, &ErrorObject::Description},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Error"; }

 private:
  Variant Number(const Arguments&) { return Variant(static_cast<std::int32_t>(ResultOf(error_.number()))); }
  Variant Description(const Arguments&) { return Variant(error_.description()); }

  base::Error error_;
};

}  // namespace

void RaiseInvalidArgument() {
  throw base::Error(3001,
                    "Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
                    "another.");
}
void RaiseNoCurrentRecord() {
  throw base::Error(3021,
                    "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                    "requires a current record.");
}
void RaiseNotSupported() {
  throw base::Error(3251, "Object or provider is not capable of performing requested operation.");
}
void RaiseItemNotFound() {
  throw base::Error(3265, "Item cannot be found in the collection corresponding to the requested name or ordinal.");
}
void RaiseObjectClosed() {
  throw base::Error(3704, "Operation is not allowed when the object is closed.");
}
void RaiseObjectOpen() {
  throw base::Error(3705, "Operation is not allowed when the object is open.");
}
void RaiseStillConnecting() {
  throw base::Error(3713, "Operation cannot be performed while connecting asynchronously.");
}

std::span<const Member<ErrorList>> ErrorList::Members() {
  static constexpr Member<ErrorList> kMembers[] = {
      {L"Item", DISPID_VALUE, kProperty, {1, 1}, &ErrorList::Item},
      {L"Count", 0x60020000, kProperty, {}, &ErrorList::Count},
  };
  return kMembers;
}

void ErrorList::Record(const base::Error& error) {
  if (IsProviderError(error)) error_ = error;
}

Variant ErrorList::Item(const Arguments& arguments) {
  if (!arguments.Has(0)) RaiseInvalidArgument();
  PositionOf(arguments.At(0), error_ ? 1 : 0, [](const std::string&) { return std::optional<std::size_t>(); });
  return ObjectResult(ComPtr<ErrorObject>::Adopt(new ErrorObject(*error_)));
}

Variant ErrorList::Count(const Arguments&) {
  return Variant(std::int32_t{error_ ? 1 : 0});
}

}  // namespace quenta::sandbox::com
