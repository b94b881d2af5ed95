// The suite's convention for errors, in one place: a procedure that fails reports and ends normally.
#pragma once

#include <optional>
#include <string>
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

// Delivers an error by the convention: numbers 0 and 3709 (closed connection) are deliberately silent. False when
// nobody has learnt of it.
bool ReportError(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure,
                 const base::Error& error) noexcept;

// The same for the exception that is being handled, whatever was thrown: errors of the library and of memory count too.
// Answers its description when nobody has learnt of it.
std::optional<std::string> ReportException(ports::ErrorReporting& reporting, const Labels& labels,
                                           const char* procedure) noexcept;

// Runs the body. An error is reported under the labels and the procedure's name, and the result is the default one
// (false, 0, empty). Nothing is thrown. What the user must know in any case is told by `untold`, which gets the
// description of an error that nobody has learnt of.
template <typename Body, typename Untold>
auto Guarded(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure, Body&& body,
             Untold&& untold) noexcept -> std::invoke_result_t<Body> {
  using Result = std::invoke_result_t<Body>;
  std::optional<std::string> description;
  try {
    return body();
  } catch (...) {
    description = ReportException(reporting, labels, procedure);
  }
  try {
    if (description) untold(*description);
  } catch (...) {
    ReportException(reporting, labels, procedure);
  }
  if constexpr (!std::is_void_v<Result>) return Result{};
}

template <typename Body>
auto Guarded(ports::ErrorReporting& reporting, const Labels& labels, const char* procedure, Body&& body) noexcept
    -> std::invoke_result_t<Body> {
  return Guarded(reporting, labels, procedure, std::forward<Body>(body), [](const std::string&) {});
}

}  // namespace quenta::session
