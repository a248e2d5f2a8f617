// Calls of ours and of a peer's, in turns.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace tzm_bench {

constexpr int kRounds = 150;

template <class Call>
double Nanoseconds(const Call& call, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) {
    call();
    asm volatile("" : : : "memory");
  }
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / calls;
}

// A line for an operation whose name has `wanted` in it: for each length nanoseconds a call of ours(length) and of
// peer(length), the least of many, and their ratio.
template <class Lengths, class Ours, class Peer>
void Row(const char* name, const char* wanted, const Lengths& lengths, const Ours& ours, const Peer& peer) {
  if (std::strstr(name, wanted) == nullptr) return;
  std::printf("%-18s", name);
  for (int len : lengths) {
    const int calls = 2 + 20000 / len;
    double least_ours = 1e9, least_peer = 1e9;
    for (int round = 0; round < kRounds; ++round) {
      least_ours = std::min(least_ours, Nanoseconds([&] { ours(len); }, calls));
      least_peer = std::min(least_peer, Nanoseconds([&] { peer(len); }, calls));
    }
    std::printf(" %6.1f %6.1f %5.2f", least_ours, least_peer, least_ours / least_peer);
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
