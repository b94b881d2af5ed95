// Does the steps of a journey and observes what follows from them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "journeys/journey.h"
#include "journeys/observation.h"

namespace quenta::journeys {

// Thrown by a step behind which the journey does not go on with this driver.
struct EndsHere {};

class Driver {
 public:
  virtual ~Driver() = default;

  // Throws std::runtime_error when a user could not do it: no such control, one that is out of reach, no such entry.
  virtual void Do(const Step& step) = 0;

  // Answers given in advance that nobody has asked for; they are dropped.
  virtual std::string UnusedAnswers() = 0;

  // Takes out of both what this driver cannot see, so that it is not looked at.
  virtual void LookAway(Section& section, std::vector<Seen>& happened) { (void)section, (void)happened; }

  // What happened since the last call: the events in their order, then what changed in the forms, then in the tables.
  virtual std::vector<Seen> Observe() = 0;
};

// The driver that a program is built with: a whole component on a copy of the sample catalogue, without windows; or the
// registered library in real windows, which takes the journeys that say so.
std::unique_ptr<Driver> MakeDriver();
bool DriverTakes(const std::filesystem::path& journey);

}  // namespace quenta::journeys
