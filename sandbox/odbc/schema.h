// The tables, views and constraints of a sandbox database, as its catalogue tables keep them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "sandbox/odbc/sql_type.h"

namespace quenta::sandbox {

struct SchemaColumn {
  std::string name{};
  SqlType type{};
  bool nullable = true;
  bool identity = false;
};

struct SchemaObject {
  std::string name;
  bool is_view = false;
  std::vector<SchemaColumn> columns;
};

// The text in which sandbox_constraints stores a constraint's kind.
namespace constraint_kind {
inline constexpr std::string_view kPrimaryKey = "PRIMARY KEY";
inline constexpr std::string_view kUnique = "UNIQUE KEY";
inline constexpr std::string_view kUniqueIndex = "UNIQUE INDEX";
inline constexpr std::string_view kForeignKey = "FOREIGN KEY";
inline constexpr std::string_view kCheck = "CHECK";
}  // namespace constraint_kind

struct SchemaConstraint {
  std::string name;
  std::string table;
  std::string kind;
  std::string columns;     // "a, b"
  std::string referenced;  // the other table of a foreign key
};

class Schema {
 public:
  // Null when there is no such table or view. Names match without regard to case.
  const SchemaObject* Find(std::string_view name) const {
    const auto found = objects_.find(base::ToLower(name));
    return found == objects_.end() ? nullptr : &found->second;
  }
  SchemaObject& Add(const std::string& name, bool is_view) {
    SchemaObject& object = objects_[base::ToLower(name)];
    object.name = name;
    object.is_view = is_view;
    return object;
  }
  const std::vector<SchemaConstraint>& constraints() const { return constraints_; }
  void AddConstraint(SchemaConstraint constraint) { constraints_.push_back(std::move(constraint)); }

 private:
  std::map<std::string, SchemaObject> objects_;
  std::vector<SchemaConstraint> constraints_;
};

}  // namespace quenta::sandbox
