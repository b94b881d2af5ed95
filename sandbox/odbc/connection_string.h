// Reads the suite's OLE DB connection strings ("Provider=SQLOLEDB.1;User ID=…;Data Source=…").
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenta::sandbox {

// Keywords and values in the order written. Keywords match without regard to case; the last of equal ones counts.
class ConnectionString {
 public:
  // By the OLE DB rules: values in " or ' may hold anything, a doubled quote stands for itself; around other values
  // blanks do not count; "==" in a keyword is an equals sign. Throws base::Error when the text breaks them.
  explicit ConnectionString(std::string_view text);

  // Empty when the keyword is missing.
  std::string Get(std::string_view keyword) const;
  void Remove(std::string_view keyword);
  // The string again, values quoted where they must be.
  std::string Text() const;

 private:
  std::vector<std::pair<std::string, std::string>> parts_;
};

}  // namespace quenta::sandbox
