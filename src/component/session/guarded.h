// The suite's convention for errors, in one place: a procedure that fails reports and ends normally.
#pragma once

#include <exception>
#include <type_traits>

#include "base/error.h"
#include "ports/error_reporting.h"

namespace quenta::session {

// How a report's fifth text reads: the description alone (General and forms), or with the error's number (modules).
enum class DescriptionStyle { kAlone, kNumbered };

// The labels under which a procedure reports. They are fixed, even where they name another procedure or project.
struct Labels {
  const char* product;
  const char* project;
  const char* module;
  DescriptionStyle style;
};

// Delivers an error by the convention: numbers 0 and 3709 (closed connection) are deliberately silent.
void ReportError(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                 const base::Error& error) noexcept;

// The same for whatever was thrown: errors of the library and of memory count too.
void ReportException(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                     const std::exception& exception) noexcept;

// Runs the body. An error is reported under the labels and the procedure's name, and the result is the default one
// (false, 0, empty). Nothing is thrown.
template <typename Body>
auto Guarded(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure, Body&& body) noexcept
    -> std::invoke_result_t<Body> {
  using Result = std::invoke_result_t<Body>;
  try {
    return body();
  } catch (const std::exception& exception) {
    ReportException(reporting, labels, procedure, exception);
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

}  // namespace quenta::session
