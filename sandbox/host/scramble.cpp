#include "sandbox/host/scramble.h"

#include <cstdint>
#include <stdexcept>

namespace quenta::sandbox::host {
namespace {

// The bytes that the text is combined with: the top bytes of a linear congruential generator.
class KeyStream {
 public:
  unsigned char Next() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<unsigned char>(state_ >> 24);
  }

 private:
  std::uint32_t state_ = 0x51554E54;
};

unsigned HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + 10);
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  throw std::invalid_argument("scrambled text holds something else than hexadecimal digits");
}

}  // namespace

std::string Scramble(std::string_view text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  KeyStream key;
  std::string scrambled;
  scrambled.reserve(text.size() * 2);
  for (const char byte : text) {
    const unsigned hidden = static_cast<unsigned char>(byte) ^ key.Next();
    scrambled += kDigits[hidden >> 4];
    scrambled += kDigits[hidden & 15];
  }
  return scrambled;
}

std::string Unscramble(std::string_view scrambled) {
  if (scrambled.size() % 2 != 0) throw std::invalid_argument("scrambled text has half a pair");
  KeyStream key;
  std::string text;
  text.reserve(scrambled.size() / 2);
  for (std::size_t i = 0; i < scrambled.size(); i += 2) {
    const unsigned hidden = HexDigit(scrambled[i]) << 4 | HexDigit(scrambled[i + 1]);
    text += static_cast<char>(hidden ^ key.Next());
  }
  return text;
}

}  // namespace quenta::sandbox::host
