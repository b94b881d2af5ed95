// A small pseudo-random sequence that is the same with every compiler and library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace quenta::sandbox {

// The splitmix64 generator. The distributions of <random> are left to each library, so they are not used here.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  // 0 to limit - 1; limit is at least 1.
  int Below(int limit) { return static_cast<int>(Next() % static_cast<std::uint64_t>(limit)); }
  // first to last, both included.
  int Between(int first, int last) { return first + Below(last - first + 1); }
  bool Percent(int chance) { return Below(100) < chance; }
  template <typename List>
  const auto& OneOf(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
  }

 private:
  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }

  std::uint64_t state_;
};

}  // namespace quenta::sandbox
