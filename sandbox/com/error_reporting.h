// ErrorReporting.General of the sandbox: what the component tells the suite goes into a file of lines.
#pragma once

#include "sandbox/com/automation_object.h"

namespace quenta::sandbox::com {

// Each call appends one UTF-8 line: the method's name and its arguments, separated by tabs; a tab, line end or
// backslash inside is written \t, \n, \r, \\. An object is written "(object)", Nothing "(nothing)". The file is the one
// that the environment variable QUENTA_SANDBOX_REPORTS names, otherwise quenta_reports.log in the temporary folder.
// Nothing is shown and nothing waits; a file that cannot be written is ignored, because reporting an error must not
// raise another.
class ErrorReportingObject final : public Automation<ErrorReportingObject> {
 public:
  static std::span<const Member<ErrorReportingObject>> Members();

 protected:
  std::wstring_view Source() const noexcept override { return L"ErrorReporting.General"; }

 private:
  Variant Report(const Arguments& arguments);
  Variant SQLReconnectShow(const Arguments& arguments);
  Variant SQLReconnectShutdown(const Arguments& arguments);
  Variant SQLReconnectShowBad(const Arguments& arguments);
  Variant SQLReconnectShowOK(const Arguments& arguments);
};

}  // namespace quenta::sandbox::com
