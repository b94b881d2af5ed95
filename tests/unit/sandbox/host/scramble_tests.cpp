#include "sandbox/host/scramble.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quenta::sandbox::host {
namespace {

// Computed by another program from the description of the scheme; hosts in other languages can compare with them.
TEST(Scramble, HidesKnownTexts) {
  struct Case {
    const char* text;
    const char* scrambled;
  };
  const Case cases[] = {
      {"", ""},
      {"a", "60"},
      {"ana-senha", "60215E8262E575BA4D"},
      {"a\xC3\xA7\xC3\xA3\xE2\x82\xAC\xF0\x9F\x98\x80", "608C986CB262997EDCF50660"},
  };
  for (const Case& each : cases) EXPECT_EQ(Scramble(each.text), each.scrambled) << each.text;
}

TEST(Scramble, GivesEveryTextBack) {
  std::string text;
  for (int byte = 1; byte < 256; ++byte) {
    text += static_cast<char>(byte);
    EXPECT_EQ(Unscramble(Scramble(text)), text);
  }
  const std::string lone_surrogate = "\xED\xA0\x80";
  EXPECT_EQ(Unscramble(Scramble(lone_surrogate)), lone_surrogate);
}

TEST(Scramble, ReadsLowerCaseAndRefusesOtherText) {
  EXPECT_EQ(Unscramble("60215e8262e575ba4d"), "ana-senha");
  for (const char* wrong : {"6", "602", "6G", "clear text!!", "60 2"}) {
    EXPECT_THROW(Unscramble(wrong), std::invalid_argument) << wrong;
  }
}

}  // namespace
}  // namespace quenta::sandbox::host
