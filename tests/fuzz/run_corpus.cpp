// Runs a fuzz target over the files of a folder and over mutations of each, so that the corpus is a test of every
// build.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int kMutations = 200;

// A small generator of its own: the same mutations on every machine.
class Random {
 public:
  std::uint32_t Below(std::size_t bound) {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::uint32_t>((state_ >> 33) % bound);
  }

 private:
  std::uint64_t state_ = 42;
};

void Mutate(std::vector<std::uint8_t>& bytes, Random& random) {
  constexpr std::uint8_t kTelling[] = {0, '\'', '\\', '\n', '-', '.', ',', '%', '(', ';', 0x80, 0xC3, 0xE2, 0xFF};
  const std::size_t at = random.Below(bytes.size() + 1);
  switch (random.Below(3)) {
    case 0:
      bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), kTelling[random.Below(sizeof kTelling)]);
      break;
    case 1:
      if (at < bytes.size()) bytes[at] = static_cast<std::uint8_t>(random.Below(256));
      break;
    default:
      if (at < bytes.size()) bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(at));
      break;
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  Random random;
  int runs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    ++runs;
    for (int i = 0; i < kMutations; ++i, ++runs) {
      Mutate(bytes, random);
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
  }
  std::printf("%d inputs\n", runs);
  return runs == 0 ? 1 : 0;
}
