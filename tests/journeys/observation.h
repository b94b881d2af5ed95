// What can be seen of a step: events in their order, and the state of forms and tables before and after.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "controls/form.h"
#include "ports/database.h"

namespace quenta::journeys {

enum class Kind { kStatement, kEvent, kControl, kRow };

// One thing that happened, as it is written in a journey.
struct Seen {
  Kind kind = Kind::kEvent;
  std::string text;
};

// What one subject ("FXNome", "ListView2 #1", "tbProdutos 212") shows, as pairs of name and value. Where there is only
// one value, it needs no name.
struct Fact {
  std::string subject;
  std::vector<std::pair<std::string, std::string>> values;

  bool operator==(const Fact&) const = default;
};
using Facts = std::vector<Fact>;

// A value as it stands behind "name=": bare where that is clear, otherwise in quotes.
std::string Shown(const std::string& value);

// A line for each subject that came ("+ subject name=value …"), went ("- subject") or changed (only what changed).
// A value that is not there is null in a row, and what a control has at first otherwise: enabled, not locked, empty …
void AppendChanges(const Facts& before, const Facts& after, Kind kind, std::vector<Seen>& seen);

// The form, called by this name, and every control of it: those of frmMain by their names alone, others behind the
// form's name and a point. What can be chosen from stands at the end.
Facts FactsOf(const controls::Form& form, const std::string& form_name);

// Of a long list the beginning and the end stand; how many there are is said beside it.
bool IsLeftOut(int position, int count);

// Those of the tables that the component writes which a statement may change.
std::set<std::string> TablesWritten(const std::string& statement);
// Reads these anew: every row, by table and key.
void ReadRows(ports::Connection& connection, const std::set<std::string>& tables,
              std::map<std::string, Facts>& rows_of);

}  // namespace quenta::journeys
