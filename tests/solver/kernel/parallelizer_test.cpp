#include "solver/kernel/parallelizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicdescent.h"
#include "support/failure.h"
#include "support/flipmove.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

/// Something that happens once on one thread, and that another waits for.
class Event {
 public:
  void set() {
    // Told under the lock: who waits may end the event as soon as it is released.
    const std::lock_guard lock(mutex);
    isSet = true;
    condition.notify_all();
  }
  void wait() {
    std::unique_lock lock(mutex);
    condition.wait(lock, [this] { return isSet; });
  }

 private:
  std::mutex mutex;
  std::condition_variable condition;
  bool isSet = false;
};

/// Tells that a heuristic has ended. Added behind the parallelizer's own callback it comes after that one.
struct EndWatch final : HeuristicCallback {
  Event ended;
  void onStart() override {}
  void onEnd() override { ended.set(); }
  void onIteration() override {}
};

/// A failure that tells when its search thread is done with it, which is when it has been stored.
class WatchedFailure : public KernelException {
 public:
  explicit WatchedFailure(Event& ownEvent) : KernelException("file", 1, "function", "No way on."), handled(ownEvent) {}
  ~WatchedFailure() override { handled.set(); }

 private:
  Event& handled;
};

/// Threads that flip one decision for ever, on a model whose objective has no bound that they could reach.
struct SomeThreads : testing::Test {
  GraphBuilder graph;
  NodeId x = graph.boolean();
  NodeId y = graph.boolean();
  NodeId objective = graph.add(NodeType::Sum, {graph.integer(), x});
  std::vector<std::unique_ptr<Dag>> dags;
  std::vector<std::unique_ptr<HeuristicDescent>> heuristics;
  std::vector<FlipMove*> moves;
  RandomState states[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  std::unique_ptr<Parallelizer> control = std::make_unique<Parallelizer>();
  Parallelizer& parallelizer = *control;

  void SetUp() override {
    graph.maximise(objective);
    graph.fixed.init();
  }
  void addThread(std::uint64_t iterationLimit) {
    dags.push_back(std::make_unique<Dag>(graph.fixed));
    dags.back()->init();
    heuristics.push_back(std::make_unique<HeuristicDescent>(*dags.back()));
    auto move =
        std::make_unique<FlipMove>(*dags.back(), states[dags.size() - 1], std::vector<std::vector<NodeId>>{{y}});
    moves.push_back(move.get());
    heuristics.back()->addMove(std::move(move));
    heuristics.back()->setIterationLimit(iterationLimit);
    parallelizer.addHeuristic(heuristics.back().get());
  }
  void TearDown() override {
    parallelizer.stopAndJoin();
    parallelizer.clearHeuristics();
  }
};

constexpr std::uint64_t kForEver = 1ULL << 40;

TEST_F(SomeThreads, RefusesCallsInTheWrongMoment) {
  EXPECT_EQ(failureOf([&] { parallelizer.start(); }), refusal("Parallelizer::start", "No heuristic to start"));
  addThread(kForEver);
  EXPECT_EQ(failureOf([&] { (void)parallelizer.getHeuristic(1); }),
            refusal("Parallelizer::getHeuristic", "Wrong heuristic number."));
  EXPECT_EQ(parallelizer.getHeuristic(0), heuristics[0].get());
  parallelizer.start();
  EXPECT_EQ(failureOf([&] { parallelizer.start(); }), refusal("Parallelizer::start", "Heuristics already started"));
  EXPECT_EQ(failureOf([&] { parallelizer.addHeuristic(heuristics[0].get()); }),
            refusal("Parallelizer::addHeuristic", "You cannot add an heuristic during resolution"));
  EXPECT_EQ(failureOf([&] { parallelizer.clearHeuristics(); }),
            refusal("Parallelizer::clearHeuristics", "You cannot clear heuristics during resolution"));
  EXPECT_EQ(failureOf([&] { (void)parallelizer.getBestHeuristic(); }),
            refusal("Parallelizer::getBestHeuristic", "Solver must be paused or stopped to do this action"));
}

TEST_F(SomeThreads, EndsASingleThreadAtItsLimit) {
  addThread(100);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[0]->iterations, 100U);
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
}

TEST_F(SomeThreads, GivesAllThreadsTheSameNumberOfIterations) {
  addThread(5000);
  addThread(5000);
  addThread(5000);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  for (const auto& heuristic : heuristics) EXPECT_EQ(heuristic->iterations, 5000U);
}

TEST_F(SomeThreads, LetsTheFirstToEndFixTheCountOfTheOthers) {
  addThread(200000);
  addThread(kForEver);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[0]->iterations, 200000U);
  EXPECT_GE(heuristics[1]->iterations, 200000U);  // a thread that is ahead stops at its next boundary
}

TEST_F(SomeThreads, StopsAllWhenTheFirstEndsWithoutAnIteration) {
  addThread(0);
  addThread(kForEver);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[0]->iterations, 0U);
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
}

TEST_F(SomeThreads, HoldsAllThreadsInAPauseAndLetsThemGo) {
  addThread(kForEver);
  addThread(kForEver);
  parallelizer.start();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Running);
  parallelizer.pause();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Paused);
  const std::uint64_t held = heuristics[0]->iterations;
  EXPECT_EQ(parallelizer.getBestHeuristic(), heuristics[0].get());  // all equal
  EXPECT_EQ(heuristics[0]->iterations, held);
  parallelizer.resume();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Running);
  parallelizer.pause();
  EXPECT_GT(heuristics[0]->iterations, held);
}

TEST_F(SomeThreads, EndsEachThreadByItsOwnClock) {
  addThread(kForEver);
  addThread(kForEver);
  for (std::size_t i = 0; i < heuristics.size(); ++i) {
    heuristics[i]->setTimeLimit(1000);
    // The clock of both runs out, on the second thread only after many more iterations than the first one did.
    Heuristic& heuristic = *heuristics[i];
    const std::uint64_t last = i == 0 ? 100 : 50000;
    moves[i]->beforeApply = [&heuristic, last] {
      if (heuristic.iterations == last) heuristic.startTime -= 1000;
    };
  }
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[0]->iterations, 101U);
  EXPECT_GE(heuristics[1]->iterations, 101U);  // behind, it goes on to the count; ahead, it stops at its next boundary
}

TEST(Parallelizer, RaisesAtItsEndWhatASearchThreadHasStored) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.maximise(graph.add(NodeType::Sum, {graph.integer(), x}));
  Dag& dag = graph.build();
  RandomState state = 1;
  HeuristicDescent heuristic(dag);
  auto move = std::make_unique<FlipMove>(dag, state, std::vector<std::vector<NodeId>>{{x}});
  move->beforeApply = [] { raise<KernelException>(here<Parallelizer>(), "No way on."); };
  heuristic.addMove(std::move(move));
  std::string text;
  try {
    Parallelizer parallelizer;
    parallelizer.addHeuristic(&heuristic);
    parallelizer.start();
    while (parallelizer.status() != Parallelizer::Status::Ended) {
    }
  } catch (const KernelException& failure) {
    text = failure.getExplanation();
  }
  EXPECT_EQ(text, "No way on.");
}

TEST_F(SomeThreads, WakesPausedThreadsToStopThem) {
  addThread(kForEver);
  addThread(kForEver);
  parallelizer.start();
  parallelizer.pause();
  parallelizer.stopAndJoin();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
}

TEST_F(SomeThreads, RunsAgainAfterAStop) {
  addThread(50);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[0]->iterations, 50U);
}

TEST_F(SomeThreads, CarriesAFailureOfASearchThreadToTheCaller) {
  addThread(kForEver);
  addThread(kForEver);
  moves[1]->beforeApply = [this] {
    if (moves[1]->nbAttempted == 1000) raise<KernelException>(here<Parallelizer>(), "No way on.");
  };
  parallelizer.start();
  std::string text;
  try {
    while (!parallelizer.waitFor(1)) {
    }
  } catch (const QVException& failure) {
    text = failure.getExplanation();
  }
  EXPECT_EQ(text, "No way on.");
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
}

/// More iterations than any thread of these tests really does.
constexpr std::uint64_t kFar = 4000000000;

TEST_F(SomeThreads, ForgetsInAPauseThatAThreadHasEnded) {
  addThread(kFar + 1);
  addThread(kForEver);
  EndWatch watch;
  heuristics[0]->addCallback(&watch);
  moves[0]->beforeApply = [this] { heuristics[0]->iterations = kFar; };
  parallelizer.start();
  watch.ended.wait();
  parallelizer.pause();
  ASSERT_EQ(parallelizer.status(), Parallelizer::Status::Paused);
  // Past the count of the first, the second would stop at its next boundary; but it goes on to its own limit.
  heuristics[1]->iterations = 2 * kFar;
  heuristics[1]->setIterationLimit(2 * kFar + 500);
  parallelizer.resume();
  while (!parallelizer.waitFor(1)) {
  }
  EXPECT_EQ(heuristics[1]->iterations, 2 * kFar + 500);
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
  heuristics[0]->removeCallback(&watch);
}

TEST_F(SomeThreads, DropsInAPauseWhatASearchThreadHasStored) {
  addThread(kForEver);
  addThread(kForEver);
  Event stored;
  moves[0]->beforeApply = [this, &stored] {
    heuristics[0]->iterations = kFar;
    throw WatchedFailure(stored);
  };
  parallelizer.start();
  stored.wait();
  parallelizer.pause();
  ASSERT_EQ(parallelizer.status(), Parallelizer::Status::Paused);
  const std::uint64_t held = heuristics[1]->iterations;
  heuristics[1]->setIterationLimit(held + 500);
  parallelizer.resume();
  EXPECT_EQ(failureOf([&] {
              while (!parallelizer.waitFor(1)) {
              }
            }),
            "no failure");
  EXPECT_EQ(heuristics[1]->iterations, held + 500);
}

TEST_F(SomeThreads, StopsFromAnotherThreadWhileTheCallerWaits) {
  addThread(kForEver);
  addThread(kForEver);
  Event begun;
  moves[1]->beforeApply = [&begun] { begun.set(); };
  parallelizer.start();
  std::thread stopper([&] {
    begun.wait();
    parallelizer.stopAndJoin();
    EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
  });
  while (!parallelizer.waitFor(1)) {
  }
  stopper.join();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
  EXPECT_GT(moves[1]->nbAttempted, 0U);

  // Nothing of the stop is left for the next run.
  for (const auto& heuristic : heuristics) heuristic->setIterationLimit(50);
  parallelizer.start();
  while (!parallelizer.waitFor(1)) {
  }
  for (const auto& heuristic : heuristics) EXPECT_EQ(heuristic->iterations, 50U);
}

TEST_F(SomeThreads, StopsPausedThreadsFromAnotherThread) {
  addThread(kForEver);
  addThread(kForEver);
  parallelizer.start();
  parallelizer.pause();
  const std::vector<std::uint64_t> held = {heuristics[0]->iterations, heuristics[1]->iterations};
  const std::uint64_t furthest = std::max(held[0], held[1]);
  std::thread([this] { parallelizer.stopAndJoin(); }).join();
  EXPECT_EQ(parallelizer.status(), Parallelizer::Status::Ended);
  // The iteration behind the pause is the last one, unless the other thread has ended further on: its count is then the
  // goal of both.
  for (std::size_t i = 0; i < held.size(); ++i) {
    const std::uint64_t reached = heuristics[i]->iterations;
    EXPECT_TRUE(reached == held[i] + 1 || reached == furthest + 1) << i << ": " << reached << " from " << held[i];
  }
  EXPECT_TRUE(parallelizer.waitFor(0));
}

TEST_F(SomeThreads, RaisesWhatWasStoredInTheThreadThatStops) {
  addThread(kForEver);
  Event stored;
  moves[0]->beforeApply = [&stored] { throw WatchedFailure(stored); };
  parallelizer.start();
  stored.wait();
  Failure failure;
  std::thread([&] { failure = failureOf([this] { parallelizer.stopAndJoin(); }); }).join();
  EXPECT_EQ(failure.explanation, "No way on.");
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failureOf([this] { EXPECT_TRUE(parallelizer.waitFor(0)); }), "no failure") << "it is raised once";
}

TEST_F(SomeThreads, PrefersTheBetterSolutionThenTheEarlierOne) {
  addThread(1);
  addThread(3);
  addThread(3);
  moves[1]->play({{}, {}, {x}});
  moves[2]->play({{}, {x}, {}});
  for (const auto& heuristic : heuristics) {
    Parallelizer alone;
    alone.addHeuristic(heuristic.get());
    heuristic->removeCallback(&parallelizer);
    alone.start();
    while (!alone.waitFor(1)) {
    }
  }
  EXPECT_EQ(parallelizer.getBestHeuristic(), heuristics[2].get());
}

TEST(Parallelizer, ComparesAllObjectivesOfSearchesThatOptimisedTheFirst) {
  GraphBuilder graph;
  const auto x = graph.booleans(3);
  graph.maximise(graph.add(NodeType::Sum, {graph.integer(), x[0]}));
  graph.maximise(graph.add(NodeType::Sum, {graph.integer(), x[1]}));
  graph.maximise(graph.add(NodeType::Sum, {graph.integer(), x[2]}));
  graph.fixed.init();
  // All reach the same value of the first objective: the third tells the first two searches apart, and the second
  // objective outweighs the third.
  const std::vector<std::vector<NodeId>> flips = {{x[0]}, {x[0], x[2]}, {x[0], x[1]}};
  const auto bestOf = [&](std::size_t nbThreads) {
    std::vector<std::unique_ptr<Dag>> dags;
    std::vector<std::unique_ptr<HeuristicDescent>> heuristics;
    std::vector<RandomState> states(nbThreads, 1);
    Parallelizer parallelizer;
    for (std::size_t t = 0; t < nbThreads; ++t) {
      dags.push_back(std::make_unique<Dag>(graph.fixed));
      dags.back()->init();
      heuristics.push_back(std::make_unique<HeuristicDescent>(*dags.back()));
      HeuristicDescent& heuristic = *heuristics.back();
      heuristic.addMove(
          std::make_unique<FlipMove>(*dags.back(), states[t], std::vector<std::vector<NodeId>>{flips[t], {}}));
      heuristic.setOptimizedObjective(0);
      heuristic.setIterationLimit(2);
      parallelizer.addHeuristic(&heuristic);
    }
    parallelizer.start();
    while (!parallelizer.waitFor(1)) {
    }
    const Heuristic* best = parallelizer.getBestHeuristic();
    for (const auto& dag : dags) EXPECT_EQ(dag->propagation.optimizedLevel, 1U);
    std::size_t index = 0;
    while (heuristics[index].get() != best) ++index;
    parallelizer.clearHeuristics();
    return index;
  };
  EXPECT_EQ(bestOf(2), 1U);
  EXPECT_EQ(bestOf(3), 2U);
}

}  // namespace
}  // namespace quvex
