#include "component/session/guarded.h"

#include <exception>
#include <new>

#include "base/text.h"

namespace quenta::session {
namespace {

// What is none of the standard exceptions comes from somebody else's code that runs inside ours.
base::Error CurrentError() {
  try {
    throw;
  } catch (const base::Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {base::error_number::kOutOfMemory, "Out of memory"};
  } catch (const std::exception& exception) {
    return {base::error_number::kInternal, exception.what()};
  } catch (...) {
    return {base::error_number::kInternal, "Unknown error"};
  }
}

}  // namespace

bool ReportError(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                 const base::Error& error) noexcept {
  if (error.number() == 0 || error.number() == base::error_number::kClosedConnection) return false;
  try {
    std::string description = error.description();
    if (labels.style == DescriptionStyle::kNumbered) {
      description = "Error Number = " + base::DecimalText(error.number()) + " | Description = " + description;
    }
    return reporting.Report({labels.product, labels.project, labels.module, procedure, description});
  } catch (...) {
    return false;  // no memory to report with
  }
}

std::optional<std::string> ReportException(ports::ErrorReporting& reporting, const Labels& labels,
                                           const char* procedure) noexcept {
  try {
    const base::Error error = CurrentError();
    if (ReportError(reporting, labels, procedure, error)) return std::nullopt;
    return error.description();
  } catch (...) {
    return std::string();  // no memory to report with
  }
}

}  // namespace quenta::session
