#include "sandbox/com/ado_errors.h"

#include <string>
#include <utility>
#include <vector>

namespace quenta::sandbox::com {
namespace {

class ErrorObject final : public Automation<ErrorObject> {
 public:
  explicit ErrorObject(base::Error error) : error_(std::move(error)) {}

  static std::span<const Member<ErrorObject>> Members() {
    static constexpr Member<ErrorObject> kMembers[] = {
        {L"Number", 0x60020000, &ErrorObject::Number},
        {L"Source", 0x60020001, &ErrorObject::GetSource},
        {L"Description", DISPID_VALUE, &ErrorObject::Description},
        {L"SQLState", 0x60020005, &ErrorObject::SqlState},
        {L"NativeError", 0x60020006, &ErrorObject::NativeError},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Error"; }

 private:
  Variant Number(const Arguments&) { return Variant(static_cast<std::int32_t>(ResultOf(error_.number()))); }
  Variant GetSource(const Arguments&) { return Variant(platform::FromWide(kProviderName.data())); }
  Variant Description(const Arguments&) { return Variant(error_.description()); }
  // The port underneath keeps neither of them.
  Variant SqlState(const Arguments&) { return Variant(std::string_view()); }
  Variant NativeError(const Arguments&) { return Variant(std::int32_t{0}); }

  base::Error error_;
};

ComPtr<ErrorObject> MakeErrorObject(const base::Error& error) {
  return ComPtr<ErrorObject>::Adopt(new ErrorObject(error));
}

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
void RaiseInvalidConnection() {
  throw base::Error(3709,
                    "The connection cannot be used to perform this operation. It is either closed or invalid in "
                    "this context.");
}
void RaiseStillConnecting() {
  throw base::Error(3713, "Operation cannot be performed while connecting asynchronously.");
}

std::span<const Member<ErrorList>> ErrorList::Members() {
  static constexpr Member<ErrorList> kMembers[] = {
      {L"Item", DISPID_VALUE, &ErrorList::Item},
      {L"Count", 0x60020000, &ErrorList::Count},
      {L"_NewEnum", DISPID_NEWENUM, &ErrorList::Enumerate},
      {L"Clear", 0x60030001, &ErrorList::Clear},
  };
  return kMembers;
}

void ErrorList::Record(const base::Error& error) {
  if (IsProviderError(error)) error_ = error;
}

Variant ErrorList::Item(const Arguments& arguments) {
  if (!arguments.Has(0)) RaiseInvalidArgument();
  PositionOf(arguments.At(0), error_ ? 1 : 0, [](const std::string&) { return std::optional<std::size_t>(); });
  return ObjectResult(MakeErrorObject(*error_));
}

Variant ErrorList::Count(const Arguments&) {
  return Variant(std::int32_t{error_ ? 1 : 0});
}

Variant ErrorList::Enumerate(const Arguments&) {
  std::vector<Variant> elements;
  if (error_) elements.push_back(ObjectResult(MakeErrorObject(*error_)));
  return EnumeratorResult(std::move(elements));
}

Variant ErrorList::Clear(const Arguments&) {
  error_.reset();
  return {};
}

}  // namespace quenta::sandbox::com
