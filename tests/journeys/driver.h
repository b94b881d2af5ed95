// Does the steps of a journey and observes what follows from them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "journeys/journey.h"
#include "journeys/observation.h"
#include "support/faults.h"

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

// A line for each row, by table; without the moments of saves: those are not what was saved.
using Rows = std::map<std::string, std::string>;

// A driver whose calls to the outside can be made to go wrong, and which tells what is left then.
class FaultyDriver : public Driver {
 public:
  // From now on the plan counts every call of every port.
  virtual void CountCalls() = 0;
  virtual tests::FaultPlan& plan() = 0;
  // What the call at this position was: a statement where there was one.
  virtual std::string CallAt(int position) const = 0;

  // Since the last call of this: the events, and the statements that were written outside of a transaction.
  virtual std::vector<Seen> TakeEvents() = 0;
  virtual std::vector<std::string> TakeLooseWrites() = 0;

  virtual Facts Forms() = 0;
  virtual Rows CurrentRows() = 0;
  // The product of the form in front could not be read.
  virtual bool FrontIsIncomplete() = 0;
  // What must not last beyond a step: a transaction of ours, forms that nobody can reach. Empty when all is well.
  virtual std::string LeftOpen() = 0;
  // Saves the form in front as it stands, as if its prices had been changed, too.
  virtual void SaveFront() = 0;
};
// The one without windows.
std::unique_ptr<FaultyDriver> MakeFaultyDriver();

}  // namespace quenta::journeys
