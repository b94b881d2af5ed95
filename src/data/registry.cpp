#include "data/registry.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/ansi.h"
#include "base/text.h"
#include "component/session/guarded.h"

namespace quenta::data {
namespace {

constexpr session::Labels kLabels{"Torvik Pelora Software", "Quenta Software Modules", "modRegistry",
                                  session::DescriptionStyle::kNumbered};
constexpr int kCommonApplicationData = 35;
constexpr std::string_view kReference = "SREF=";
constexpr std::size_t kLongestValue = 3500;

constexpr std::pair<std::string_view, ports::RootKey> kRoots[] = {
    {"HKEY_CLASSES_ROOT", 0x80000000U}, {"HKEY_CURRENT_USER", 0x80000001U},     {"HKEY_LOCAL_MACHINE", 0x80000002U},
    {"HKEY_USERS", 0x80000003U},        {"HKEY_PERFORMANCE_DATA", 0x80000004U}, {"HKEY_CURRENT_CONFIG", 0x80000005U},
    {"HKEY_DYN_DATA", 0x80000006U},
};

bool IsUserSetting(std::string_view key_path) {
  return base::StartsWithIgnoreCase(key_path, R"(HKEY_CURRENT_USER\SOFTWARE)");
}

// The lines of a text file, without their ends; a last line without an end counts.
std::vector<std::string> SplitLines(const std::string& bytes) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < bytes.size();) {
    std::size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    const std::size_t length = end > start && bytes[end - 1] == '\r' ? end - start - 1 : end - start;
    lines.push_back(base::FromAnsi(std::string_view(bytes).substr(start, length)));
    start = end + 1;
  }
  return lines;
}

// Whether the line holds the value of this prefix (key path, ":" and value name). What follows is not looked at, so
// that a longer value name matches too; the suite's file has always been read like this.
bool Matches(const std::string& line, const std::string& prefix) {
  return line.size() > prefix.size() && base::StartsWithIgnoreCase(line, prefix);
}

}  // namespace

ports::RootKey Registry::ObterHandleChavePrincipal(std::string_view root_name) {
  for (const auto& [name, handle] : kRoots) {
    if (name == root_name) return handle;
  }
  return 0;
}

bool Registry::FormatarChave(std::string& key_path, ports::RootKey& root) {
  return session::Guarded(ports_.error_reporting, kLabels, "FormatarChave", [&] {
    if (!std::string_view(key_path).starts_with("HKEY_") || key_path.ends_with('\\')) {
      ports_.desktop.Ask({.text = "Formato Incorrecto:\n\n" + key_path}, nullptr);
      return false;
    }
    const std::size_t backslash = key_path.find('\\');
    root = ObterHandleChavePrincipal(std::string_view(key_path).substr(0, backslash));
    key_path = backslash == std::string::npos ? std::string() : key_path.substr(backslash + 1);
    return true;
  });
}

base::Value Registry::ValorString(const std::string& key_path, const std::string& value_name) {
  base::Value result = base::Value::Null();
  session::Guarded(ports_.error_reporting, kLabels, "ValorString", [&] {
    std::string path = key_path;
    ports::RootKey root = 0;
    if (!FormatarChave(path, root)) return;
    const auto text = ports_.settings.ReadRegistryText(root, path, value_name);
    if (text && base::Utf16Length(*text) < kLongestValue) result = base::Value(base::Trim(*text));
  });
  return result;
}

std::vector<std::string> Registry::Enumerar_Chaves(const std::string& key_path) {
  return session::Guarded(ports_.error_reporting, kLabels, "Enumerar_Chaves", [&]() -> std::vector<std::string> {
    std::string path = key_path;
    ports::RootKey root = 0;
    if (!FormatarChave(path, root)) return {};
    return ports_.settings.EnumerateSubkeys(root, path);
  });
}

base::Value Registry::ObterValorString(const std::string& key_path, const std::string& value_name,
                                       const base::Value& default_value, bool registry_only) {
  base::Value result = base::Value::Null();
  session::Guarded(ports_.error_reporting, kLabels, "ObterValorString", [&] {
    const bool user_setting = IsUserSetting(key_path);
    std::string last_key_path = key_path;
    std::string shadow;
    if (!user_setting && !registry_only) shadow = ObterValorShadow(key_path, value_name);
    if (!shadow.empty()) {
      result = shadow;
    } else {
      // Stored references must not form a cycle; where they do all the same, the value counts as missing.
      std::vector<std::string> followed;
      result = ValorString(key_path, value_name);
      while (result.is_text() && std::string_view(result.text()).starts_with(kReference)) {
        followed.push_back(base::ToUpper(last_key_path));
        last_key_path = result.text().substr(kReference.size());
        const bool again = std::find(followed.begin(), followed.end(), base::ToUpper(last_key_path)) != followed.end();
        result = again ? base::Value::Null() : ValorString(last_key_path, value_name);
      }
    }
    if (!user_setting && result.is_null()) {
      result = default_value;
      if (default_value.is_text()) DefinirValorShadow(last_key_path, value_name, default_value.text());
    }
  });
  return result;
}

std::string Registry::ShadowFolder() {
  return ObterPastaEspecial(kCommonApplicationData) + R"(\Torvik Software\)";
}

std::string Registry::ObterValorShadow(const std::string& key_path, const std::string& value_name) {
  const auto bytes = ports_.settings.ReadFile(ShadowFolder() + "RegShadow.db");
  if (!bytes) return {};
  const std::string prefix = key_path + ":" + value_name;
  for (const std::string& line : SplitLines(*bytes)) {
    if (!Matches(line, prefix)) continue;
    // One character, whichever it is, stands between the name and the value.
    const std::u16string units = base::ToUtf16(line);
    return base::FromUtf16(units.substr(std::min(base::Utf16Length(prefix) + 1, units.size())));
  }
  return {};
}

bool Registry::DefinirValorShadow(const std::string& key_path, const std::string& value_name, const std::string& text) {
  const std::string path = ShadowFolder() + "RegShadow.db";
  const auto bytes = ports_.settings.ReadFile(path);
  if (!bytes) return true;
  const std::string prefix = key_path + ":" + value_name;
  const std::string entry = prefix + "=" + text;
  std::string rewritten;
  bool placed = false;
  for (const std::string& line : SplitLines(*bytes)) {
    if (line == entry) return true;
    const bool matches = Matches(line, prefix);
    if (matches && placed) continue;
    rewritten += base::ToAnsi(matches ? entry : line) + "\r\n";
    placed = placed || matches;
  }
  if (!placed) rewritten += base::ToAnsi(entry) + "\r\n";
  ports_.settings.ReplaceContents(path, ShadowFolder() + "RegShadow.tmp", rewritten);
  return true;
}

}  // namespace quenta::data
