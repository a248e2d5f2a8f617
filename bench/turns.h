// Calls of ours and of a peer's, in turns.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

namespace tzm_bench {

constexpr int kRounds = 150;

// A call, by so many of them.
template <class Call>
double Nanoseconds(const Call& call, int64_t calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int64_t i = 0; i < calls; ++i) {
    call();
    asm volatile("" : : : "memory");
  }
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / static_cast<double>(calls);
}

// Nanoseconds a call on either side, the least of many turns: a disturbance meets both.
struct Least {
  double ours = std::numeric_limits<double>::infinity(), theirs = ours;

  // A turn of either side; gives ours.
  double Turn(const auto& our_call, const auto& their_call, int64_t calls) {
    const double turn = Nanoseconds(our_call, calls);
    ours = std::min(ours, turn);
    theirs = std::min(theirs, Nanoseconds(their_call, calls));
    return turn;
  }
};

// A line for an operation whose name has `wanted` in it: for each length nanoseconds a call of ours(length) and of
// peer(length), the least of many, and their ratio.
template <class Lengths, class Ours, class Peer>
void Row(const char* name, const char* wanted, const Lengths& lengths, const Ours& ours, const Peer& peer) {
  if (std::strstr(name, wanted) == nullptr) return;
  std::printf("%-18s", name);
  for (int len : lengths) {
    Least least;
    for (int round = 0; round < kRounds; ++round)
      least.Turn([&] { ours(len); }, [&] { peer(len); }, 2 + 20000 / len);
    std::printf(" %6.1f %6.1f %5.2f", least.ours, least.theirs, least.ours / least.theirs);
    std::fflush(stdout);
  }
  std::printf("\n");
}
template <class Lengths>
void Head(const char* peer, const Lengths& lengths) {
  std::printf("ns: ours, %-8s", peer);
  for (int len : lengths) std::printf(" %20d", len);
  std::printf("\n");
}

}  // namespace tzm_bench
