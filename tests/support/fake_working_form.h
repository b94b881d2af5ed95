// A form that the connection keeper works for, which only remembers what was done to it.
#pragma once

#include <vector>

#include "component/session/connection_keeper.h"

namespace quenta::tests {

class FakeWorkingForm final : public session::WorkingForm {
 public:
  int MousePointer() override { return pointer; }
  void SetMousePointer(int value) override { pointer = value; }
  void SetWindowState(int value) override { states.push_back(value); }
  void Refresh() override { ++refreshes; }
  controls::Form* Form() override { return nullptr; }

  int pointer = 5;
  std::vector<int> states;
  int refreshes = 0;
};

}  // namespace quenta::tests
