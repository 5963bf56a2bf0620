#include "cli/interrupt.h"

#include <pthread.h>
#include <unistd.h>

#include <iostream>
#include <utility>

#include "cli/errors.h"

namespace quvex::cli {

Interrupt::Interrupt(std::function<void()> tidyUp) : beforeExit(std::move(tidyUp)) {
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, &formerMask);
  waiter = std::thread([this] { waitForSignals(); });
}

Interrupt::~Interrupt() {
  finished = true;
  pthread_kill(waiter.native_handle(), SIGINT);  // blocked, so that it only wakes the wait
  waiter.join();
  pthread_sigmask(SIG_SETMASK, &formerMask, nullptr);
}

void Interrupt::setSearch(Quvex* solver) {
  const std::lock_guard lock(mutex);
  search = solver;
}

void Interrupt::waitForSignals() {
  while (true) {
    int signal = 0;
    sigwait(&signals, &signal);
    if (finished) return;
    handleSignal();
  }
}

void Interrupt::handleSignal() {
  const std::lock_guard lock(mutex);
  if (search == nullptr || interrupted) {
    beforeExit();
    _exit(kExitInterrupted);
  }
  interrupted = true;
  std::cerr << "Stopping; again to end at once, without a result." << std::endl;
  try {
    search->stop();
  } catch (const QVException& failure) {
    // The search is over all the same; what failed is told, and the best solution so far is still the result.
    std::cerr << failure.getMessage() << std::endl;
  }
}

}  // namespace quvex::cli
