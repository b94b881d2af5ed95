#include "component/session/guarded.h"

#include <new>

#include "base/text.h"

namespace quenta::session {

void ReportError(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                 const base::Error& error) noexcept {
  if (error.number() == 0 || error.number() == base::error_number::kClosedConnection) return;
  try {
    std::string description = error.description();
    if (labels.style == DescriptionStyle::kNumbered) {
      description = "Error Number = " + base::DecimalText(error.number()) + " | Description = " + description;
    }
    reporting.Report({labels.product, labels.project, labels.module, procedure, description});
  } catch (const std::bad_alloc&) {
    // No memory to report with: the report is lost, as the convention has it.
  }
}

void ReportException(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                     const std::exception& exception) noexcept {
  if (const auto* error = dynamic_cast<const base::Error*>(&exception)) {
    ReportError(reporting, labels, procedure, *error);
    return;
  }
  const bool no_memory = dynamic_cast<const std::bad_alloc*>(&exception) != nullptr;
  try {
    ReportError(reporting, labels, procedure,
                no_memory ? base::Error(base::error_number::kOutOfMemory, "Out of memory")
                          : base::Error(base::error_number::kInternal, exception.what()));
  } catch (const std::bad_alloc&) {
    // As above: lost.
  }
}

}  // namespace quenta::session
