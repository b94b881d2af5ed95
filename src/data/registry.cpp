#include "data/registry.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/ansi.h"
#include "base/convert.h"
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

// A line of the shadow file: its text, and the bytes it stands there with, its end among them.
struct Line {
  std::string text;
  std::string_view bytes;
};

// A last line without an end counts.
std::vector<Line> SplitLines(std::string_view bytes) {
  std::vector<Line> lines;
  for (std::size_t start = 0; start < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', start), bytes.size() - 1) + 1;
    const std::string_view line = bytes.substr(start, end - start);
    const std::size_t length = line.ends_with("\r\n") ? line.size() - 2 : line.size() - (line.ends_with('\n') ? 1 : 0);
    lines.push_back({base::FromAnsi(line.substr(0, length)), line});
    start = end;
  }
  return lines;
}

// Whether a line of the file can hold this entry. What the code page lacks would be read back as another value, or be
// added again with every read; a line end would make two entries of one, and programs that read the file as text end
// at the other two characters.
bool CanBeRecorded(const std::string& entry) {
  return entry.find_first_of(std::string_view("\r\n\0\x1A", 4)) == std::string::npos &&
         base::FromAnsi(base::ToAnsi(entry)) == entry;
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
      if (!default_value.is_null() && !IsUserSetting(last_key_path)) {
        DefinirValorShadow(last_key_path, value_name, base::ToText(default_value, ports_.settings.UserLocale()));
      }
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
  for (const Line& line : SplitLines(*bytes)) {
    if (!Matches(line.text, prefix)) continue;
    // One character, whichever it is, stands between the name and the value.
    const std::u16string units = base::ToUtf16(line.text);
    return base::FromUtf16(units.substr(std::min(base::Utf16Length(prefix) + 1, units.size())));
  }
  return {};
}

bool Registry::DefinirValorShadow(const std::string& key_path, const std::string& value_name, const std::string& text) {
  const std::string prefix = key_path + ":" + value_name;
  const std::string entry = prefix + "=" + text;
  if (!CanBeRecorded(entry)) return true;
  const std::string path = ShadowFolder() + "RegShadow.db";
  const auto bytes = ports_.settings.ReadFile(path);
  if (!bytes) return true;
  std::string rewritten;
  bool placed = false;
  for (const Line& line : SplitLines(*bytes)) {
    if (line.text == entry) return true;
    const bool matches = Matches(line.text, prefix);
    if (!matches) {
      rewritten += line.bytes;
    } else if (!placed) {
      rewritten += base::ToAnsi(entry) + "\r\n";
      placed = true;
    }
  }
  if (!placed) {
    if (!rewritten.empty() && !rewritten.ends_with('\n')) rewritten += "\r\n";
    rewritten += base::ToAnsi(entry) + "\r\n";
  }
  ports_.settings.ReplaceContents(path, ShadowFolder() + "RegShadow.tmp", rewritten);
  return true;
}

}  // namespace quenta::data
