#include "component/session/scrambler.h"

#include <cstdint>

namespace quenta::session {
namespace {

// Key stream: the top bytes of a linear congruential generator with a fixed start.
class KeyStream {
 public:
  unsigned char Next() {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<unsigned char>(state_ >> 24);
  }

 private:
  std::uint32_t state_ = 0x51554E54;
};

constexpr std::string_view kDigits = "0123456789ABCDEF";

int DigitValue(char c) {
  const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
  const std::size_t value = kDigits.find(upper);
  return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

std::string Scramble(std::string_view text) {
  KeyStream key;
  std::string scrambled;
  scrambled.reserve(text.size() * 2);
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(static_cast<unsigned char>(c) ^ key.Next());
    scrambled += kDigits[byte >> 4];
    scrambled += kDigits[byte & 0xF];
  }
  return scrambled;
}

std::string Unscramble(std::string_view scrambled) {
  if (scrambled.size() % 2 != 0) return {};
  KeyStream key;
  std::string text;
  text.reserve(scrambled.size() / 2);
  for (std::size_t i = 0; i < scrambled.size(); i += 2) {
    const int high = DigitValue(scrambled[i]);
    const int low = DigitValue(scrambled[i + 1]);
    if (high < 0 || low < 0) return {};
    text += static_cast<char>((high << 4 | low) ^ key.Next());
  }
  return text;
}

}  // namespace quenta::session
