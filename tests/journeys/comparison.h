// Compares what happened with what a journey expects.
#pragma once

#include <string>
#include <vector>

#include "journeys/journey.h"
#include "journeys/observation.h"

namespace quenta::journeys {

// Empty when a section saw what it expects; otherwise the differences, line by line.
std::string Differences(const Section& section, std::vector<Seen> happened);

// What happened in the syntax of the file. Lines of the section that include a definition stay where all of it
// happened, and so do those that look away.
std::vector<std::string> Printed(const Section& section, std::vector<Seen> happened);

}  // namespace quenta::journeys
