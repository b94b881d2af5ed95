// Every journey once more for each call that it makes to the outside, with that call going wrong. Whatever goes wrong:
// nothing of ours stays open, nothing is half saved, somebody is told, and the next try succeeds.
//
// A run draws some journeys, and some calls of each: QUENTA_SWEEP_SEED=n draws others, QUENTA_SWEEP=all takes all calls
// of all journeys, and QUENTA_SWEEP="37 fails", with a filter for the journey, only this one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>

#include "journeys/driver.h"
#include "journeys/journey.h"

namespace quenta::journeys {
namespace {

namespace fs = std::filesystem;
using tests::CallTo;
using tests::Fault;

constexpr unsigned kOneOf = 3;     // one of so many journeys is drawn
constexpr std::size_t kDrawn = 4;  // and so many calls of it

// The ways in which a call goes wrong. What a lost answer and a server that stays away do to a query, the others do
// too.
struct Way {
  const char* name;
  Fault fault;
  std::set<CallTo> calls;
  bool is_an_error = true;
};
const Way kWays[] = {
    {"fails",
     Fault::kFails,
     {CallTo::kConnection, CallTo::kOpen, CallTo::kQuery, CallTo::kWrite, CallTo::kSettings, CallTo::kDesktop,
      CallTo::kReporting, CallTo::kFormHost}},
    {"fails-for-good",
     Fault::kFailsForGood,
     {CallTo::kOpen, CallTo::kWrite, CallTo::kSettings, CallTo::kDesktop, CallTo::kReporting, CallTo::kFormHost}},
    {"line-drops", Fault::kLineDrops, {CallTo::kOpen, CallTo::kQuery, CallTo::kWrite}},
    {"answer-lost", Fault::kAnswerIsLost, {CallTo::kOpen, CallTo::kWrite}},
    {"other-columns", Fault::kOtherColumns, {CallTo::kQuery}, false},
    {"all-null", Fault::kAllNull, {CallTo::kQuery}, false}};

// What comes before the step that it is for.
const std::set<std::string> kPreparing = {"answer", "pick-entry", "turn", "before"};
// A journey that makes calls fail itself ends there.
const std::set<std::string> kFailing = {"fail", "drop-line", "refuse", "file-error"};
// The server's date is asked for by a procedure that answers the empty date when it cannot be had, and tells nobody.
constexpr const char* kNobodyIsTold = "SELECT GETDATE() AS DATE";

// How events begin that tell the user or the host something.
constexpr const char* kTelling[] = {"report", "box ", "reconnect bad", "SQLConnect ->", "Login ->", "check ->"};
// What reading a form again may fill beside the record: the page that is shown.
const std::set<std::string> kPage = {"TabStrip1",  "ListView13",   "FXPrecoMin",
                                     "FXPrecoMax", "FXQuantidade", "FXValorTotal"};

// A step with what prepares it, and what came of it when nothing went wrong.
struct Deed {
  std::vector<const Step*> steps{};
  int from = 0;  // position of its first call
  int until = 0;
  bool throws = false;
  std::multiset<std::string> told{};
  int commits = 0;
  bool loose_writes = false;  // as the suite has it: what was written before an error stays
  bool others = false;        // others write in the middle of it
  Facts forms{};
  Rows rows{};
};

// A call to go wrong, and how.
struct Point {
  std::size_t deed;
  int call;
  const Way* way;

  std::string name() const { return std::to_string(call) + " " + way->name; }
};

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The draw of one journey.
unsigned DrawOf(const std::string& name) {
  static const unsigned kSeed = [] {
    const std::string given = Environment("QUENTA_SWEEP_SEED");
    const unsigned seed = given.empty() ? 1 : static_cast<unsigned>(std::stoul(given));
    std::cout << "QUENTA_SWEEP_SEED=" << seed << std::endl;
    return seed;
  }();
  std::seed_seq seeds(name.begin(), name.end());
  unsigned own = 0;
  seeds.generate(&own, &own + 1);
  return std::mt19937(kSeed ^ own)();
}

// The first lines of what changed; empty when nothing did.
std::string Difference(const Facts& expected, const Facts& found) {
  if (expected == found) return {};
  std::vector<Seen> changes;
  AppendChanges(expected, found, Kind::kControl, changes);
  std::string text = changes.empty() ? "another order\n" : "";
  for (std::size_t i = 0; i < changes.size() && i < 12; ++i) text += "      " + changes[i].text.substr(0, 200) + "\n";
  return text;
}

std::set<std::string> LinesOf(const std::string& text) {
  std::set<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.insert(line);
  return lines;
}

// The lines that are only in one of them; empty when they are the same.
std::string Difference(const Rows& expected, const Rows& found) {
  std::vector<std::string> lines;
  for (const auto& [table, text] : expected) {
    if (text == found.at(table)) continue;
    const std::set<std::string> wanted = LinesOf(text);
    const std::set<std::string> there = LinesOf(found.at(table));
    std::ranges::set_difference(wanted, there, std::back_inserter(lines));
    lines.push_back("instead of these, in " + table + ":");
    std::ranges::set_difference(there, wanted, std::back_inserter(lines));
  }
  std::string all;
  for (const std::string& line : lines) all += "    " + line.substr(0, 200) + "\n";
  return all.substr(0, 4000);
}

bool Happened(const std::vector<Seen>& events, const std::string& text) {
  return std::ranges::any_of(events, [&](const Seen& seen) { return seen.text == text; });
}

// What the user or the host learns of, beyond what a form shows.
std::multiset<std::string> Told(const std::vector<Seen>& events) {
  std::multiset<std::string> told;
  for (const Seen& seen : events) {
    const auto begins = [&](const char* start) { return seen.text.starts_with(start); };
    const bool tells = std::ranges::any_of(kTelling, begins);
    if (tells && seen.kind == Kind::kEvent) told.insert(seen.text);
  }
  return told;
}

class SweepTest : public testing::Test {
 public:
  SweepTest(fs::path path, fs::path definitions) : path_(std::move(path)), definitions_(std::move(definitions)) {}

  void TestBody() override {
    try {
      const std::string wanted = Environment("QUENTA_SWEEP");
      const unsigned draw = wanted.empty() ? DrawOf(path_.stem().string()) : 0;
      if (draw % kOneOf != 0) return;
      Definitions definitions;
      ReadDefinitions(definitions_, definitions);
      journey_ = ReadJourney(path_, definitions);
      DoAll();
      for (const Point& point : Points(wanted, draw)) DoWith(point);
    } catch (const std::exception& error) {
      FAIL() << error.what();
    }
  }

 private:
  void Restart() {
    driver_.reset();
    driver_ = MakeFaultyDriver();
    driver_->CountCalls();
  }

  // False when it could not be done.
  bool Do(const std::vector<const Step*>& steps) {
    try {
      for (const Step* const step : steps) driver_->Do(*step);
      return true;
    } catch (const std::exception& error) {
      refusal_ = error.what();
      return false;
    }
  }

  // The journey with nothing going wrong.
  void DoAll() {
    Restart();
    first_rows_ = driver_->CurrentRows();
    Deed deed;
    for (const Section& section : journey_.sections) {
      for (const Step& step : section.steps) {
        if (kFailing.contains(step.verb)) return;
        deed.steps.push_back(&step);
        if (kPreparing.contains(step.verb)) continue;
        for (const Step* const part : deed.steps) deed.others = deed.others || !part->inside.empty();
        hosts_ = hosts_ || step.verb == "host-sql";
        deed.from = driver_->plan().calls;
        deed.throws = !Do(deed.steps);
        deed.until = driver_->plan().calls;
        const std::vector<Seen> events = driver_->TakeEvents();
        deed.told = Told(events);
        deed.commits = static_cast<int>(std::ranges::count(events, "COMMIT", &Seen::text));
        deed.loose_writes = !driver_->TakeLooseWrites().empty();
        deed.forms = driver_->Forms();
        deed.rows = driver_->CurrentRows();
        deeds_.push_back(std::exchange(deed, {}));
      }
    }
  }

  std::vector<Point> Points(const std::string& wanted, unsigned draw) const {
    std::vector<Point> points;
    for (std::size_t i = 0; i < deeds_.size(); ++i) {
      if (deeds_[i].steps.back()->verb == "host-sql") continue;  // the host's own calls are the host's
      for (int call = deeds_[i].from; call < deeds_[i].until; ++call) {
        for (const Way& way : kWays) {
          if (way.calls.contains(PortOf(call))) points.push_back({i, call, &way});
        }
      }
    }
    if (wanted.empty()) {
      std::shuffle(points.begin(), points.end(), std::mt19937(draw));
      points.resize(std::min(points.size(), kDrawn));
    } else if (wanted != "all") {
      std::erase_if(points, [&](const Point& point) { return point.name() != wanted; });
    }
    return points;
  }

  CallTo PortOf(int call) const { return driver_->plan().made.at(static_cast<std::size_t>(call)); }

  void DoWith(const Point& point) {
    const Deed& deed = deeds_[point.deed];
    const Rows& rows_before = point.deed == 0 ? first_rows_ : deeds_[point.deed - 1].rows;
    Restart();
    driver_->plan().fault = point.way->fault;
    driver_->plan().fail_at = point.call;
    for (std::size_t i = 0; i < point.deed; ++i) Do(deeds_[i].steps);
    driver_->TakeEvents();
    driver_->TakeLooseWrites();
    const bool refused = !Do(deed.steps) && !deed.throws;
    driver_->plan().fail_at = -1;
    driver_->UnusedAnswers();
    const std::vector<Seen> events = driver_->TakeEvents();
    const std::string call = driver_->CallAt(point.call);
    SCOPED_TRACE(Trace(point, call, events, refused));

    EXPECT_EQ(driver_->LeftOpen(), "") << "stays open";
    driver_->TakeEvents();
    const bool committed = Happened(events, "COMMIT");
    const Rows rows = driver_->CurrentRows();
    ExpectWholeTransactions(point, committed, rows_before, rows);

    const Facts forms = driver_->Forms();
    const std::string missing = Difference(deed.rows, rows) + Difference(deed.forms, forms);
    std::multiset<std::string> told = Told(events);
    for (const std::string& text : deed.told) {
      if (const auto usual = told.find(text); usual != told.end()) told.erase(usual);
    }
    const bool was_told = refused || !told.empty() || driver_->FrontIsIncomplete();
    // A setting that cannot be read is not there; a window that cannot come to the front stays where it is.
    const CallTo port = PortOf(point.call);
    const bool silent = port == CallTo::kSettings || port == CallTo::kFormHost || call == kNobodyIsTold;
    EXPECT_TRUE(missing.empty() || was_told || silent || !point.way->is_an_error) << "nobody was told:\n" << missing;

    if (point.way->fault != Fault::kAllNull) ExpectNothingIsLostBySaving(rows);
    if (!missing.empty() && was_told) TryAgain(point, call, events, committed);
  }

  void ExpectWholeTransactions(const Point& point, bool committed, const Rows& before, const Rows& rows) {
    const Deed& deed = deeds_[point.deed];
    const std::vector<std::string> loose = driver_->TakeLooseWrites();
    if (deed.loose_writes || deed.others) return;
    EXPECT_TRUE(loose.empty()) << "written outside of a transaction: " << loose.front();
    const std::string written = Difference(before, rows);
    EXPECT_TRUE(written.empty() || committed) << "written, and nothing was committed:\n" << written;
    if (written.empty() || deed.commits != 1 || !point.way->is_an_error) return;
    EXPECT_EQ(Difference(deed.rows, rows), "") << "half saved";
  }

  // A form that did not fill itself whole may be saved only when that loses nothing of the record.
  void ExpectNothingIsLostBySaving(const Rows& rows) {
    if (!driver_->FrontIsIncomplete()) return;
    driver_->SaveFront();
    driver_->TakeEvents();
    EXPECT_EQ(Difference(rows, driver_->CurrentRows()), "") << "lost by saving";
  }

  // What the user does next: the same again, or reading again what the form that came up did not show.
  void TryAgain(const Point& point, const std::string& call, const std::vector<Seen>& events, bool committed) {
    static const Step kReadAgain{.verb = "key", .rest = "F5"};
    static const Step kStocks{.verb = "tab", .rest = "stocks"};
    static const Step kClose{.verb = "close", .rest = {}};
    Deed deed = deeds_[point.deed];
    bool refused = false;
    if (Happened(events, "shown frmMain") || driver_->FrontIsIncomplete()) {
      for (const Step* const step : {&kReadAgain, &kStocks, &kReadAgain}) Do({step});
    } else {
      const auto any = [&](const char* start) {
        return std::ranges::any_of(events, [&](const Seen& seen) { return seen.text.starts_with(start); });
      };
      if (any("closed ")) return;        // with its form has gone what could be tried again
      if (any("shown ")) Do({&kClose});  // a smaller form that has nothing in it
      refused = !Do(deed.steps) && !deed.throws;
      EXPECT_FALSE(refused) << "the next try: " << refusal_;
    }
    const std::vector<Seen> again = driver_->TakeEvents();
    for (const std::string& text : Told(again)) {
      EXPECT_TRUE(!text.starts_with("report") || deed.told.contains(text)) << "the next try: " << text;
    }
    EXPECT_EQ(driver_->LeftOpen(), "") << "stays open after the next try";
    // A field that is in focus already is not entered again.
    if (committed || refused || hosts_ || deed.loose_writes || deed.others ||
        (call.starts_with("SELECT") && !Happened(again, call)))
      return;
    EXPECT_EQ(Difference(deed.rows, driver_->CurrentRows()), "") << "the next try saves something else";
    if (!point.way->is_an_error) return;
    Facts forms = driver_->Forms();
    for (Facts* const facts : {&forms, &deed.forms}) {
      std::erase_if(*facts, [](const Fact& fact) {
        const std::string control = FirstWord(fact.subject).first;
        return kPage.contains(control.substr(control.find('.') + 1));
      });
    }
    EXPECT_EQ(Difference(deed.forms, forms), "") << "the next try shows something else";
  }

  std::string Trace(const Point& point, const std::string& call, const std::vector<Seen>& events, bool refused) const {
    const Step& step = *deeds_[point.deed].steps.back();
    std::string text = path_.string() + ":" + std::to_string(step.line.number) + ": " + step.verb + " " + step.rest +
                       "\n  " + call.substr(0, 120) + " " + point.way->name + "; again with QUENTA_SWEEP=\"" +
                       point.name() + "\" --gtest_filter=sweep_" + path_.parent_path().filename().string() + "." +
                       path_.stem().string() + "\n";
    for (const Seen& seen : events) {
      const bool shown = seen.kind == Kind::kEvent || seen.text.starts_with("  failed");
      if (shown) text += "    " + seen.text.substr(0, 160) + "\n";
    }
    return text + (refused ? "    " + refusal_ : "");
  }

  fs::path path_;
  fs::path definitions_;
  Journey journey_;
  std::unique_ptr<FaultyDriver> driver_;
  std::vector<Deed> deeds_;
  Rows first_rows_;
  bool hosts_ = false;   // the host has a transaction of its own, and ends it as it likes
  std::string refusal_;  // why the last step could not be done
};

}  // namespace
}  // namespace quenta::journeys

int main(int argc, char** argv) {
  using namespace quenta::journeys;
  testing::InitGoogleTest(&argc, argv);
  const fs::path folder = QUENTA_JOURNEYS;
  for (const fs::path& file : JourneyFiles(folder)) {
    testing::RegisterTest(("sweep_" + file.parent_path().filename().string()).c_str(), file.stem().string().c_str(),
                          nullptr, nullptr, file.string().c_str(), 1, [file, folder]() -> testing::Test* {
                            return new SweepTest(file, folder / "definitions.txt");
                          });
  }
  return RUN_ALL_TESTS();
}
