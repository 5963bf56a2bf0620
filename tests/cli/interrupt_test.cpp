#include "cli/interrupt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <iostream>
#include <thread>

#include "cli/errors.h"

namespace quvex::cli {

namespace {

void tidy() { std::cerr << "tidied" << std::endl; }

void interruptBeforeSearch() {
  const Interrupt interrupt(tidy);
  kill(getpid(), SIGINT);
  pause();
}

void interruptSearchTwice() {
  Quvex solver;
  Interrupt interrupt(tidy);
  interrupt.setSearch(&solver);
  kill(getpid(), SIGINT);
  while (!interrupt.happened()) std::this_thread::yield();
  kill(getpid(), SIGINT);
  pause();
}

}  // namespace

TEST(Interrupt, EndsAtOnceBeforeASearch) {
  EXPECT_EXIT(interruptBeforeSearch(), testing::ExitedWithCode(kExitInterrupted), "tidied");
}

TEST(Interrupt, EndsAtOnceAtTheSecondSignal) {
  EXPECT_EXIT(interruptSearchTwice(), testing::ExitedWithCode(kExitInterrupted), "Stopping(.|\n)*tidied");
}

TEST(Interrupt, GivesTheSignalsBack) {
  { const Interrupt interrupt(tidy); }
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGINT), 0);
  EXPECT_EQ(sigismember(&mask, SIGTERM), 0);
}

}  // namespace quvex::cli
