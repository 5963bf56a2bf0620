#pragma once

#include <signal.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "quvex.h"

namespace quvex::cli {

/// What Ctrl-C does while this object lives. During a search the first one ends the search at its next iteration
/// boundary; the second one, and any outside a search, ends the program at once.
/// The signals are blocked for all threads that start meanwhile, and one thread waits for them, so that what happens
/// on a signal is ordinary code.
class Interrupt {
 public:
  /// `beforeExit` tidies up when the program ends at once. It runs on the waiting thread.
  explicit Interrupt(std::function<void()> beforeExit);
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  /// From now on the first Ctrl-C stops this solver.
  void setSearch(Quvex* solver);
  [[nodiscard]] bool happened() const { return interrupted; }

 private:
  void waitForSignals();
  void handleSignal();

  std::function<void()> beforeExit;
  std::mutex mutex;  ///< guards `search`
  Quvex* search = nullptr;
  std::atomic<bool> interrupted = false;
  std::atomic<bool> finished = false;
  sigset_t signals{};
  sigset_t formerMask{};
  std::thread waiter;
};

}  // namespace quvex::cli
