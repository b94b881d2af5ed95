#include "journeys/observation.h"

#include <map>

#include "base/text.h"
#include "journeys/journey.h"

namespace quenta::journeys {
namespace {

using Values = std::map<std::string, std::string>;

std::string Default(const std::string& name) {
  static const Values kDefaults = {{"enabled", "yes"},  {"visible", "yes"},     {"locked", "no"}, {"checked", "no"},
                                   {"minimized", "no"}, {"pointer", "default"}, {"rows", "0"},    {"icon", "0"}};
  const auto found = kDefaults.find(name);
  return found == kDefaults.end() ? "\"\"" : found->second;
}

std::string Default(Kind kind, const std::string& name) {
  return kind == Kind::kRow ? "null" : Default(name);
}

std::string Written(const std::string& name, const std::string& value) {
  return " " + name + (name.empty() ? "" : "=") + value;
}

// " name=value" for each that differs; also for those that are there only before.
std::string Differences(const Fact& before, const Fact& after, Kind kind) {
  const Values old_values(before.values.begin(), before.values.end());
  const Values new_values(after.values.begin(), after.values.end());
  std::string text;
  for (const auto& [name, value] : after.values) {
    const auto old = old_values.find(name);
    if (value != (old == old_values.end() ? Default(kind, name) : old->second)) text += Written(name, value);
  }
  for (const auto& [name, value] : before.values) {
    const std::string now = Default(kind, name);
    if (new_values.count(name) == 0 && value != now) text += Written(name, now);
  }
  return text;
}

// Adds a line; subjects of one table or list with which the same happened share one.
class Lines {
 public:
  Lines(Kind kind, std::vector<Seen>& seen) : kind_(kind), seen_(seen) {}

  void Add(const std::string& mark, const std::string& subject, const std::string& differences) {
    const auto [group, key] = FirstWord(subject);
    if (!key.empty() && mark + group == head_ && differences == differences_) {
      seen_.back().text.insert(seen_.back().text.size() - differences.size(), " " + key);
    } else {
      seen_.push_back({kind_, mark + subject + differences});
    }
    head_ = mark + group;
    differences_ = differences;
  }

 private:
  Kind kind_;
  std::vector<Seen>& seen_;
  std::string head_;  // of the line before
  std::string differences_;
};

}  // namespace

std::string Shown(const std::string& value) {
  const std::string escaped = Escaped(value);
  const bool bare = !value.empty() && escaped.find_first_of(" \"=\\") == std::string::npos && value != "null";
  return bare ? value : "\"" + base::ReplaceAll(escaped, "\"", "\\\"") + "\"";
}

void AppendChanges(const Facts& before, const Facts& after, Kind kind, std::vector<Seen>& seen) {
  std::map<std::string, const Fact*> old_facts;
  std::map<std::string, const Fact*> new_facts;
  for (const Fact& fact : before) old_facts[fact.subject] = &fact;
  for (const Fact& fact : after) new_facts[fact.subject] = &fact;
  Lines lines(kind, seen);
  for (const Fact& fact : before) {
    if (new_facts.count(fact.subject) == 0) lines.Add("- ", fact.subject, {});
  }
  for (const Fact& fact : after) {
    const auto old = old_facts.find(fact.subject);
    if (old == old_facts.end()) {
      lines.Add("+ ", fact.subject, Differences({}, fact, kind));
    } else if (const std::string differences = Differences(*old->second, fact, kind); !differences.empty()) {
      lines.Add({}, fact.subject, differences);
    }
  }
}

}  // namespace quenta::journeys
