// The outside as one bundle of references, handed down at construction.
#pragma once

#include "ports/database.h"
#include "ports/desktop.h"
#include "ports/error_reporting.h"
#include "ports/settings.h"

namespace quenta::session {

// All of it outlives the component that is built on it.
struct Ports {
  ports::Database& database;
  ports::Settings& settings;
  ports::Desktop& desktop;
  ports::ErrorReporting& error_reporting;
};

}  // namespace quenta::session
