#include "journeys/comparison.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace quenta::journeys {
namespace {

// "~ rows": lines of this kind are not looked at.
const std::map<std::string, Kind> kKinds = {{"~ statements", Kind::kStatement},
                                            {"~ events", Kind::kEvent},
                                            {"~ controls", Kind::kControl},
                                            {"~ rows", Kind::kRow}};

// An expected line, one that happened, or both.
struct Pair {
  const Expected* expected = nullptr;
  const Seen* seen = nullptr;
};

// Takes the lines that look away out of the expectation, and what they do not look at out of what happened.
std::vector<Expected> LookedAt(const Section& section, std::vector<Seen>& happened) {
  std::vector<Expected> expected;
  for (const Expected& line : section.expected) {
    const auto kind = kKinds.find(line.text);
    if (kind == kKinds.end()) {
      expected.push_back(line);
    } else {
      std::erase_if(happened, [&](const Seen& seen) { return seen.kind == kind->second; });
    }
  }
  return expected;
}

// The two sequences side by side, with as many lines in common as can be.
std::vector<Pair> Align(const std::vector<Expected>& expected, const std::vector<Seen>& happened) {
  const std::size_t n = expected.size();
  const std::size_t m = happened.size();
  std::vector<std::vector<int>> common(n + 1, std::vector<int>(m + 1, 0));
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t j = m; j-- > 0;) {
      common[i][j] = expected[i].text == happened[j].text ? common[i + 1][j + 1] + 1
                                                          : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  std::vector<Pair> pairs;
  for (std::size_t i = 0, j = 0; i < n || j < m;) {
    if (i < n && j < m && expected[i].text == happened[j].text) {
      pairs.push_back({&expected[i++], &happened[j++]});
    } else if (i < n && (j == m || common[i + 1][j] >= common[i][j + 1])) {
      pairs.push_back({&expected[i++], nullptr});
    } else {
      pairs.push_back({nullptr, &happened[j++]});
    }
  }
  return pairs;
}

// Where two long lines part: a little before, and what each has there.
std::string Parting(const std::string& expected, const std::string& happened) {
  std::size_t same = 0;
  while (same < expected.size() && same < happened.size() && expected[same] == happened[same]) ++same;
  constexpr std::size_t kBefore = 20;
  constexpr std::size_t kAfter = 40;
  if (same < kBefore) return {};
  const auto part = [&](const std::string& text) { return "[" + text.substr(same, kAfter) + "]"; };
  return "?            …" + expected.substr(same - kBefore, kBefore) + part(expected) + " happened " + part(happened) +
         "\n";
}

std::string Margin(char mark, const Line* line) {
  std::string where = line != nullptr ? std::to_string(line->number) : "";
  where.insert(0, where.size() < 5 ? 5 - where.size() : 0, ' ');
  return std::string(1, mark) + where + "  ";
}

}  // namespace

std::string Differences(const Section& section, std::vector<Seen> happened) {
  const std::vector<Expected> expected = LookedAt(section, happened);
  const std::vector<Pair> pairs = Align(expected, happened);
  const auto differs = [&](std::size_t i) { return pairs[i].expected == nullptr || pairs[i].seen == nullptr; };
  constexpr std::size_t kAround = 3;  // lines before and behind one that differs
  std::string text;
  std::size_t next = 0;  // the first pair that is not written yet
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (!differs(i)) continue;
    const std::size_t from = i > next + kAround ? i - kAround : next;
    if (from > next) text += "       …\n";
    std::size_t until = std::min(i + kAround + 1, pairs.size());
    for (next = from; next < until; ++next) {
      const auto& [line, seen] = pairs[next];
      if (differs(next)) until = std::min(next + kAround + 1, pairs.size());
      if (line == nullptr) {
        text += Margin('+', nullptr) + seen->text + "\n";
        const bool above = next > 0 && pairs[next - 1].seen == nullptr;
        if (above) text += Parting(pairs[next - 1].expected->text, seen->text);
        continue;
      }
      const Line* const own = line->include >= 0 ? &section.own[static_cast<std::size_t>(line->include)] : &line->line;
      text += Margin(seen != nullptr ? ' ' : '-', own) + line->text +
              (line->include >= 0 ? "   (" + own->text + ")\n" : "\n");
    }
    i = next - 1;
  }
  return text;
}

std::vector<std::string> Printed(const Section& section, std::vector<Seen> happened) {
  std::vector<std::string> lines;
  for (const Line& line : section.own) {
    if (kKinds.count(line.text) > 0) lines.push_back(line.text);
  }
  const std::vector<Expected> expected = LookedAt(section, happened);
  const std::vector<Pair> pairs = Align(expected, happened);
  std::set<int> broken;  // definitions of which not all happened, or something else in between
  int inside = -1;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const Expected* const line = pairs[i].expected;
    if (line != nullptr && pairs[i].seen == nullptr) broken.insert(line->include);
    const Expected* const next = i + 1 < pairs.size() ? pairs[i + 1].expected : nullptr;
    if (line != nullptr) inside = line->include;
    if (line == nullptr && next != nullptr && next->include == inside) broken.insert(inside);
  }
  inside = -1;
  for (const auto& [line, seen] : pairs) {
    const int include = line != nullptr && broken.count(line->include) == 0 ? line->include : -1;
    if (include >= 0 && include != inside) lines.push_back(section.own[static_cast<std::size_t>(include)].text);
    if (include < 0 && seen != nullptr) lines.push_back(seen->text);
    inside = include;
  }
  return lines;
}

}  // namespace quenta::journeys
