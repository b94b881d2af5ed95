// Compares the component with a bare replay of what it asks of the database, inside one run on one machine.
#pragma once

#include <functional>
#include <string>

namespace quenta::bench {

// One comparison. Both sides do the same work on the same driver; the check has shown that before the clock starts.
struct Row {
  std::string name;
  std::function<void()> replay;  // the statements alone, reading the same fields
  std::function<void()> ours;    // the component
  double limit = 1.05;           // of the replay's time that ours may take
};

struct Outcome {
  double ratio = 0;       // median of ours to median of the replay
  double replay_us = 0;   // median time of one replay, in microseconds
  double self_ratio = 0;  // the replay against itself: how far this run can be believed
  bool valid = false;     // the replay against itself stayed within 0.98 to 1.02
};

// Times single runs of replay, replay again and ours, taking turns in changing order, and takes medians: what disturbs
// the machine hits few of them, and hits all sides alike. Void measurements are repeated a few times; the last outcome
// says whether it is valid.
Outcome Measure(const Row& row);

// Prints the row beside its limit; true when it is valid and within.
bool Report(const Row& row, const Outcome& outcome);

}  // namespace quenta::bench
