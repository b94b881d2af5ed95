// A form that the connection keeper works for, which only remembers what was done to it, in the order of the calls.
#pragma once

#include <string>
#include <vector>

#include "component/session/connection_keeper.h"

namespace quenta::tests {

class FakeWorkingForm final : public session::WorkingForm {
 public:
  int MousePointer() override { return pointer; }
  void SetMousePointer(int value) override { pointer = value; }
  void SetWindowState(int value) override { calls->push_back(value == 0 ? "normal" : "minimised"); }
  void Refresh() override { calls->push_back("refresh"); }
  controls::Form* Form() override { return nullptr; }

  int pointer = 5;
  std::vector<std::string> own_calls;
  std::vector<std::string>* calls = &own_calls;  // may be shared with the reporting object's
};

}  // namespace quenta::tests
