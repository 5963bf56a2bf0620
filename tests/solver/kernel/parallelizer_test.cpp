#include "solver/kernel/parallelizer.h"

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicdescent.h"
#include "support/failure.h"
#include "support/flipmove.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

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

}  // namespace
}  // namespace quvex
