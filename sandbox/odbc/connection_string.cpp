#include "sandbox/odbc/connection_string.h"

#include <algorithm>
#include <array>

#include "base/error.h"
#include "base/text.h"

namespace quenta::sandbox {
namespace {

[[noreturn]] void RaiseBadFormat() {
  constexpr auto kBadInitString = static_cast<std::int32_t>(0x80040E73);
  throw base::Error(kBadInitString,
                    "Format of the initialization string does not conform to the OLE DB specification.");
}

struct Synonym {
  std::string_view keyword;
  std::string_view name;
};

constexpr std::array kSynonyms{
    Synonym{"UID", "User ID"},
    Synonym{"User", "User ID"},
    Synonym{"PWD", "Password"},
    Synonym{"Server", "Data Source"},
    Synonym{"Address", "Data Source"},
    Synonym{"Database", "Initial Catalog"},
    Synonym{"Timeout", "Connect Timeout"},
    Synonym{"PersistSecurityInfo", "Persist Security Info"},
};

std::string_view KeywordOf(std::string_view written) {
  for (const Synonym& synonym : kSynonyms)
    if (base::EqualIgnoreCase(synonym.keyword, written)) return synonym.name;
  return written;
}

// The value that begins at text[at]; `at` moves to its ";" or to the end.
std::string TakeValue(std::string_view text, std::size_t& at) {
  while (at < text.size() && text[at] == ' ') ++at;
  if (at >= text.size() || (text[at] != '"' && text[at] != '\'')) {
    const std::size_t end = std::min(text.find(';', at), text.size());
    const std::string_view value = base::Trim(text.substr(at, end - at));
    at = end;
    return std::string(value);
  }
  const char quote = text[at++];
  std::string value;
  for (;; ++at) {
    if (at >= text.size()) RaiseBadFormat();
    if (text[at] == quote) {
      if (at + 1 >= text.size() || text[at + 1] != quote) break;
      ++at;
    }
    value += text[at];
  }
  ++at;
  while (at < text.size() && text[at] == ' ') ++at;
  if (at < text.size() && text[at] != ';') RaiseBadFormat();
  return value;
}

}  // namespace

ConnectionString::ConnectionString(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::string keyword;
    for (; at < text.size() && text[at] != '='; ++at) {
      if (text[at] == ';' && base::Trim(keyword).empty()) {
        keyword.clear();
        continue;
      }
      if (text[at] == ';') RaiseBadFormat();
      keyword += text[at];
      if (at + 2 < text.size() && text[at + 1] == '=' && text[at + 2] == '=') {
        keyword += '=';
        at += 2;
      }
    }
    const std::string_view trimmed = base::Trim(keyword);
    if (at >= text.size()) {
      if (trimmed.empty()) return;
      RaiseBadFormat();
    }
    if (trimmed.empty()) RaiseBadFormat();
    ++at;
    std::string value = TakeValue(text, at);
    parts_.emplace_back(KeywordOf(trimmed), std::move(value));
  }
}

std::string ConnectionString::Get(std::string_view keyword) const {
  const auto found = std::find_if(parts_.rbegin(), parts_.rend(),
                                  [&](const auto& part) { return base::EqualIgnoreCase(part.first, keyword); });
  return found == parts_.rend() ? std::string() : found->second;
}

void ConnectionString::Remove(std::string_view keyword) {
  std::erase_if(parts_, [&](const auto& part) { return base::EqualIgnoreCase(part.first, keyword); });
}

std::string ConnectionString::Text() const {
  std::string text;
  for (const auto& [keyword, value] : parts_) {
    const bool quoted = value.find_first_of(";\"'") != std::string::npos || base::Trim(value).size() != value.size();
    text += (text.empty() ? "" : ";") + base::ReplaceAll(keyword, "=", "==") + "=" +
            (quoted ? "\"" + base::ReplaceAll(value, "\"", "\"\"") + "\"" : value);
  }
  return text;
}

}  // namespace quenta::sandbox
