#include "data/check_permissions.h"

#include <algorithm>
#include <vector>

#include "base/convert.h"
#include "component/session/guarded.h"
#include "data/ensure_connection.h"

namespace quenta::data {
namespace {

constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Produtos", "modCheckPermissions",
                                  session::DescriptionStyle::kNumbered};

std::string TextOf(const base::Value& value) {
  return value.is_null() ? std::string() : base::ToText(value, {});
}

// Conditions on the column, one for each code. A code that is Null or empty adds none: it would match nearly every row.
class Conditions {
 public:
  Conditions(std::string column, const char* joint) : column_(std::move(column)), joint_(joint) {}

  void Add(const char* comparison, const base::Value& code) {
    const std::string text = TextOf(code);
    if (text.empty()) return;
    if (!text_.empty()) text_ += joint_;
    text_ += column_ + comparison + text + "%' ";
  }
  const std::string& text() const noexcept { return text_; }

 private:
  std::string column_;
  const char* joint_;
  std::string text_;
};

std::vector<std::string> LoadPolicies(session::Session& session, const std::string& user_name, controls::Form* form) {
  const std::string condition = ReadPermitionsDef(session, user_name, "users_groups", false, form);
  if (condition.empty()) return {};
  std::vector<std::string> codes;
  for (const ports::Row row : session.Query("SELECT tbSecurityPolicies.code FROM tbSecurityPolicies WHERE 0 = 0 "
                                            " AND " +
                                            condition)) {
    if (!row["code"].is_null()) codes.push_back(TextOf(row["code"]));
  }
  return codes;
}

}  // namespace

bool CheckSecurityPolicy(session::Session& session, const std::string& user_name, const std::string& policy_code,
                         controls::Form* form) {
  return session::Guarded(session.ports().error_reporting, kLabels, "CheckSecurityPolicy", [&] {
    if (user_name.empty()) return false;
    EnsureConnection(session, form);
    std::vector<std::string>& held = session.policies[user_name];
    if (held.empty()) held = LoadPolicies(session, user_name, form);
    return std::find(held.begin(), held.end(), policy_code) != held.end();
  });
}

std::string ReadPermitionsDef(session::Session& session, const std::string& user_name, const std::string& column,
                              bool exclusion, controls::Form* form) {
  return session::Guarded(session.ports().error_reporting, kLabels, "ReadPermitionsDef", [&]() -> std::string {
    EnsureConnection(session, form);
    const ports::RowSet rows = session.Query(
        "SELECT tbGroups.code, tbUsers.code as user_code FROM tbGroups_Users_Links LEFT OUTER JOIN tbGroups ON "
        "tbGroups_Users_Links.group_id = tbGroups.group_id LEFT JOIN tbUsers ON tbGroups_Users_Links.user_id = "
        "tbUsers.user_id WHERE tbUsers.descrit = '" +
        user_name + "'");
    if (rows.empty()) return {};
    // The blanks and the letter case of each part are the ones the suite's servers have always been sent.
    Conditions granted(column, " OR ");
    Conditions excluded(column, " AND ");
    granted.Add(" Like '%1", rows.front()["user_code"]);
    excluded.Add(" NOT LIKE '%2", rows.front()["user_code"]);
    for (const ports::Row row : rows) {
      granted.Add(" LIKE '%1", row["code"]);
      excluded.Add(" NOT LIKE '%2", row["code"]);
    }
    if (granted.text().empty()) return {};
    std::string condition = "(" + granted.text() + ") ";
    if (exclusion && !excluded.text().empty()) condition += " AND (" + excluded.text() + ")";
    return condition;
  });
}

}  // namespace quenta::data
