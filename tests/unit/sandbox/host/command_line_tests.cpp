#include "sandbox/host/command_line.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quenta::sandbox::host {
namespace {

TEST(CommandLine, CollectsWhatToDoInItsOrder) {
  const CommandLine line = ParseCommandLine(
      {"/user:d'orey", "-PASSWORD:a:b /c", "/connect:Login", "/open:10000", "/new", "/open:#900", "/exit"});
  EXPECT_EQ(line.user, "d'orey");
  EXPECT_EQ(line.password, "a:b /c");
  EXPECT_EQ(line.connect, CommandLine::Connect::kLogin);
  ASSERT_EQ(line.actions.size(), 3u);
  EXPECT_EQ(line.actions[0].product, "10000");
  EXPECT_EQ(line.actions[1].kind, Action::Kind::kNew);
  EXPECT_EQ(line.actions[2].product, "#900");
  EXPECT_TRUE(line.exit);
}

TEST(CommandLine, AsksWithoutPasswordAndTakesAnEmptyOne) {
  EXPECT_FALSE(ParseCommandLine({"/user:ana"}).password.has_value());
  EXPECT_EQ(ParseCommandLine({"/user:ana", "/password:"}).password, "");
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
  for (const char* wrong : {"", "/", "ana", "/open", "/open:", "/connect:odbc", "/new:10000", "/exit:1", "/quit"}) {
    EXPECT_THROW(ParseCommandLine({wrong}), std::invalid_argument) << wrong;
  }
}

}  // namespace
}  // namespace quenta::sandbox::host
