#pragma once

#include <thread>
#include <vector>

/// Calls `work(number)` for the numbers 0 to `count` - 1, `rounds` times each, spread over so many
/// threads.
template <class Work>
void runInThreads(int threads, int rounds, int count, Work const& work) {
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t) {
    running.emplace_back([=, &work] {
      for (int round = 0; round < rounds; ++round) {
        for (int number = t; number < count; number += threads) {
          work(number);
        }
      }
    });
  }
  for (auto& thread : running) {
    thread.join();
  }
}
