#include "journeys/journey.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace quenta::journeys {
namespace {

[[noreturn]] void Fail(const Line& line, const std::string& what) {
  throw std::runtime_error(line.file + ":" + std::to_string(line.number) + ": " + what);
}

std::vector<Line> ReadLines(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::vector<Line> lines;
  for (std::string text; std::getline(file, text);) {
    lines.push_back({text, path.filename().string(), static_cast<int>(lines.size()) + 1});
  }
  return lines;
}

// Takes a definition that begins at this line; the position is then behind it.
void TakeDefinition(const std::vector<Line>& lines, std::size_t& at, Definitions& definitions) {
  std::vector<std::string> words = Words(lines[at].text);
  if (words.size() < 2) Fail(lines[at], "define NAME PARAMETER…");
  Definition& definition = definitions[words[1]];
  definition = {{words.begin() + 2, words.end()}, {}};
  for (++at; at < lines.size() && !lines[at].text.empty(); ++at) definition.lines.push_back(lines[at]);
}

void Expand(const Line& line, int include, const Definitions& definitions, std::vector<Expected>& result) {
  if (line.text.empty() || line.text[0] != '@') {
    result.push_back({line.text, line, include});
    return;
  }
  const std::vector<std::string> words = Words(line.text.substr(1));
  const auto found = definitions.find(words.empty() ? "" : words[0]);
  if (found == definitions.end()) Fail(line, "nothing is defined by this name");
  const Definition& definition = found->second;
  if (words.size() - 1 != definition.parameters.size()) {
    Fail(line, words[0] + " takes " + std::to_string(definition.parameters.size()) + " values");
  }
  for (Line inner : definition.lines) {
    for (std::size_t i = 0; i < definition.parameters.size(); ++i) {
      inner.text = base::ReplaceAll(inner.text, "{" + definition.parameters[i] + "}", words[i + 1]);
    }
    Expand(inner, include, definitions, result);
  }
}

// Several steps may stand in one line; "~" before the first is said of all.
void AddSteps(const Line& line, std::vector<Step>& steps) {
  constexpr std::string_view kBetween = " | ";
  const bool quiet = line.text.rfind("~ ", 0) == 0;
  for (std::size_t start = quiet ? 2 : 0, end = 0; end != std::string::npos; start = end + kBetween.size()) {
    end = line.text.find(kBetween, start);
    Step step;
    step.quiet = quiet;
    step.line = line;
    std::tie(step.verb, step.rest) = FirstWord(line.text.substr(start, end - start));
    steps.push_back(std::move(step));
  }
}

}  // namespace

std::pair<std::string, std::string> FirstWord(const std::string& text) {
  const std::size_t end = text.find(' ');
  if (end == std::string::npos) return {text, {}};
  return {text.substr(0, end), text.substr(end + 1)};
}

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  for (std::size_t at = text.find_first_not_of(' '); at < text.size(); at = text.find_first_not_of(' ', at)) {
    const bool quoted = text[at] == '"';
    const std::size_t start = quoted ? at + 1 : at;
    const std::size_t end = std::min(text.find(quoted ? '"' : ' ', start), text.size());
    words.push_back(text.substr(start, end - start));
    at = end + (quoted ? 1 : 0);
  }
  return words;
}

std::string Escaped(const std::string& text) {
  std::string result = base::ReplaceAll(text, "\\", "\\\\");
  for (const auto& [raw, escape] : {std::pair("\n", "\\n"), {"\r", "\\r"}, {"\t", "\\t"}}) {
    result = base::ReplaceAll(result, raw, escape);
  }
  if (!result.empty() && result.back() == ' ') result.replace(result.size() - 1, 1, "\\s");
  return result;
}

std::string Unescaped(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    const char code = text[++i];
    result += code == 'n' ? '\n' : code == 'r' ? '\r' : code == 't' ? '\t' : code == 's' ? ' ' : code;
  }
  return result;
}

void ReadDefinitions(const std::filesystem::path& path, Definitions& definitions) {
  const std::vector<Line> lines = ReadLines(path);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].text.rfind("define ", 0) == 0) {
      TakeDefinition(lines, i, definitions);
    } else if (!lines[i].text.empty() && lines[i].text[0] != '#') {
      Fail(lines[i], "not a definition");
    }
  }
}

Journey ReadJourney(const std::filesystem::path& path, Definitions definitions) {
  const std::vector<Line> lines = ReadLines(path);
  Journey journey{path, {}, {}};
  for (const Line& line : lines) journey.lines.push_back(line.text);
  Section section;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    if (line.text.empty() || line.text[0] == '#' || line.text == kInWindows) continue;
    if (line.text.rfind("define ", 0) == 0) {
      TakeDefinition(lines, i, definitions);
    } else if (line.text.starts_with("  ")) {
      if (section.steps.empty()) Fail(line, "belongs to no step");
      AddSteps({line.text.substr(2), line.file, line.number}, section.steps.back().inside);
    } else if (line.text != "----") {
      AddSteps(line, section.steps);
    } else {
      section.looks = true;
      section.first_line = line.number;
      for (++i; i < lines.size() && !lines[i].text.empty(); ++i) {
        const bool includes = lines[i].text[0] == '@';
        Expand(lines[i], includes ? static_cast<int>(section.own.size()) : -1, definitions, section.expected);
        section.own.push_back(lines[i]);
      }
      section.last_line = section.first_line + static_cast<int>(section.own.size());
      journey.sections.push_back(std::exchange(section, {}));
    }
  }
  section.first_line = section.last_line = static_cast<int>(lines.size());
  if (!section.steps.empty()) journey.sections.push_back(section);
  return journey;
}

std::vector<std::filesystem::path> JourneyFiles(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".txt" && entry.path().parent_path() != folder) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace quenta::journeys
