// The suite's error-reporting object, as the component calls it. None of these calls ever throws: a report that cannot
// be delivered is lost, and whoever has to know of it is told in another way.
#pragma once

#include <string>

namespace quenta::controls {
class Form;
}

namespace quenta::ports {

// The five texts of a report.
struct ErrorReport {
  std::string product;
  std::string project;
  std::string module;
  std::string procedure;
  std::string description;
  bool operator==(const ErrorReport&) const = default;
};

class ErrorReporting {
 public:
  virtual ~ErrorReporting() = default;
  // False when it could not be delivered.
  virtual bool Report(const ErrorReport& report) noexcept = 0;

  // Progress of a reconnect, each with the form it disturbs (may be null). SQLReconnectShow creates the object that the
  // others are called on, until ReleaseReconnect lets go of it: every reconnect ends with that, even a cancelled one.
  virtual void SQLReconnectShow(controls::Form* form) noexcept = 0;
  virtual void SQLReconnectShutdown(controls::Form* form) noexcept = 0;
  virtual void SQLReconnectShowBad(controls::Form* form) noexcept = 0;
  virtual void SQLReconnectShowOK(controls::Form* form) noexcept = 0;
  virtual void ReleaseReconnect() noexcept = 0;
};

}  // namespace quenta::ports
