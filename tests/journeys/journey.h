// Reads a journey: a text file of steps and of what is expected of them. docs/testing.md shows how to write one.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quenta::journeys {

// Stands above the first step of a journey that also runs in real windows.
inline constexpr const char* kInWindows = "in windows";

// A line of a file, for messages that lead there.
struct Line {
  std::string text;
  std::string file;  // its name, without a folder
  int number = 0;    // from 1
};

// What a user, a host or another user does: a verb and the rest of the line.
struct Step {
  std::string verb;
  std::string rest;
  bool quiet = false;          // "~ open 10000": what follows from it is not looked at
  std::vector<Step> inside{};  // below an answer, and indented: done while the question is open
  Line line{};
};

// An expected line. Lines that stand in a definition know the line that includes them.
struct Expected {
  std::string text;
  Line line;
  int include = -1;  // number of the "@name" line among the section's own lines; -1 for the section's own line
};

// Steps, and all that must be seen of them.
struct Section {
  std::vector<Step> steps;
  bool looks = false;              // false for the steps at the end of the file: nothing may be seen of them
  std::vector<Line> own;           // the expectation's lines as they stand in the file
  std::vector<Expected> expected;  // the same with the definitions put in
  int first_line = 0;
  int last_line = 0;
};

struct Journey {
  std::filesystem::path path;
  std::vector<std::string> lines;  // of the file
  std::vector<Section> sections;
};

// "define NAME PARAMETER…" and the lines below it up to an empty one. "@NAME value…" in an expectation stands for them,
// with {PARAMETER} replaced.
struct Definition {
  std::vector<std::string> parameters;
  std::vector<Line> lines;
};
using Definitions = std::map<std::string, Definition>;

// Each throws std::runtime_error that names file and line when the file cannot be read or understood.
void ReadDefinitions(const std::filesystem::path& path, Definitions& definitions);
Journey ReadJourney(const std::filesystem::path& path, Definitions definitions);

// All journeys that stand below this folder: AREA/NAME.txt, in their order.
std::vector<std::filesystem::path> JourneyFiles(const std::filesystem::path& folder);

// The first word of a text, and what follows it.
std::pair<std::string, std::string> FirstWord(const std::string& text);
// Words separated by blanks; one in quotes may hold blanks.
std::vector<std::string> Words(const std::string& text);

// Text on one line: line ends, tabs, backslashes and a blank at the end as escapes; and back.
std::string Escaped(const std::string& text);
std::string Unescaped(const std::string& text);

}  // namespace quenta::journeys
