#include "harness.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace quenta::bench {
namespace {

constexpr int kRounds = 700;
constexpr int kTries = 5;

using Clock = std::chrono::steady_clock;

double TimeOf(const std::function<void()>& work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double Median(std::vector<double> times) {
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  return times[times.size() / 2];
}

Outcome MeasureOnce(const Row& row) {
  const std::array<const std::function<void()>*, 3> sides{&row.replay, &row.replay, &row.ours};
  std::array<std::vector<double>, 3> times;
  // In a random order that is the same every time: none of the three always finds the caches as another has left them.
  std::array<std::size_t, 3> order{0, 1, 2};
  std::minstd_rand random;
  for (int round = 0; round < kRounds; ++round) {
    std::shuffle(order.begin(), order.end(), random);
    for (const std::size_t side : order) times[side].push_back(TimeOf(*sides[side]));
  }
  Outcome outcome;
  outcome.replay_us = Median(times[0]);
  outcome.self_ratio = Median(times[1]) / outcome.replay_us;
  outcome.ratio = Median(times[2]) / outcome.replay_us;
  outcome.valid = outcome.self_ratio >= 0.98 && outcome.self_ratio <= 1.02;
  return outcome;
}

}  // namespace

Outcome Measure(const Row& row) {
  row.replay();
  row.ours();
  Outcome outcome;
  for (int i = 0; i < kTries && !outcome.valid; ++i) outcome = MeasureOnce(row);
  return outcome;
}

bool Report(const Row& row, const Outcome& outcome) {
  const bool within = outcome.valid && outcome.ratio <= row.limit;
  std::printf("%-28s %6.3f of its replay (limit %.2f; replay %.0f us; replay against itself %.3f)%s\n",
              row.name.c_str(), outcome.ratio, row.limit, outcome.replay_us, outcome.self_ratio,
              within          ? ""
              : outcome.valid ? "  ABOVE ITS LIMIT"
                              : "  VOID: the machine was too busy");
  return within;
}

}  // namespace quenta::bench
