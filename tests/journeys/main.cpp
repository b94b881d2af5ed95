// Every file of a journey is a test, called by its folder and its name. With QUENTA_PRINT set, what happened is printed
// in the syntax of the file, and nothing is compared.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <vector>

#include "journeys/comparison.h"
#include "journeys/driver.h"
#include "journeys/journey.h"

namespace quenta::journeys {
namespace {

namespace fs = std::filesystem;

class JourneyTest : public testing::Test {
 public:
  JourneyTest(fs::path path, fs::path definitions) : path_(std::move(path)), definitions_(std::move(definitions)) {}

  void TestBody() override {
    try {
      Definitions definitions;
      ReadDefinitions(definitions_, definitions);
      journey_ = ReadJourney(path_, definitions);
      driver_ = MakeDriver();
      for (const Section& section : journey_.sections) {
        if (!Run(section)) return;
      }
      Print(journey_.lines.size());
    } catch (const std::exception& error) {
      FAIL() << error.what();
    }
  }

 private:
  // False when the steps cannot go on, or went elsewhere.
  bool Run(Section section) {
    for (const Step& step : section.steps) {
      try {
        if (step.quiet && !driver_->Observe().empty()) throw std::runtime_error("what came before is not looked at");
        driver_->Do(step);
        if (step.quiet) driver_->Observe();
      } catch (const EndsHere&) {
        return false;
      } catch (const std::exception& error) {
        ADD_FAILURE() << Where(step.line.number) << ": " << step.line.text << "\n" << error.what();
        return false;
      }
    }
    if (const std::string answers = driver_->UnusedAnswers(); !answers.empty()) {
      ADD_FAILURE() << Where(section.first_line) << ": nobody asked for the answer " << answers;
    }
    std::vector<Seen> seen = driver_->Observe();
    driver_->LookAway(section, seen);
    if (print_) {
      Print(static_cast<std::size_t>(section.first_line));
      if (!section.looks && !seen.empty()) std::cout << "----\n";
      for (const std::string& line : Printed(section, seen)) std::cout << line << "\n";
      printed_ = static_cast<std::size_t>(section.last_line);
      return true;
    }
    const std::string differences = Differences(section, seen);
    if (differences.empty()) return true;
    ADD_FAILURE() << Where(section.first_line) << ": something else happened (- expected, + happened)\n" << differences;
    return false;
  }

  // The file as it stands, up to this line.
  void Print(std::size_t last) {
    for (; print_ && printed_ < last; ++printed_) std::cout << journey_.lines[printed_] << "\n";
  }

  std::string Where(int line) const { return path_.string() + ":" + std::to_string(line); }

  fs::path path_;
  fs::path definitions_;
  Journey journey_;
  std::unique_ptr<Driver> driver_;
  const bool print_ = std::getenv("QUENTA_PRINT") != nullptr;
  std::size_t printed_ = 0;  // lines of the file so far
};

// tests/journeys/AREA/NAME.txt is the test AREA.NAME.
void RegisterJourneys(const fs::path& folder) {
  for (const fs::path& file : JourneyFiles(folder)) {
    if (!DriverTakes(file)) continue;
    testing::RegisterTest(file.parent_path().filename().string().c_str(), file.stem().string().c_str(), nullptr,
                          nullptr, file.string().c_str(), 1, [file, folder]() -> testing::Test* {
                            return new JourneyTest(file, folder / "definitions.txt");
                          });
  }
}

}  // namespace
}  // namespace quenta::journeys

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  quenta::journeys::RegisterJourneys(QUENTA_JOURNEYS);
  return RUN_ALL_TESTS();
}
