#include "solver/move/movesequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "solver/kernel/heuristicdescent.h"
#include "support/failure.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

std::vector<std::string> namesOf(const std::vector<std::unique_ptr<Move>>& moves) {
  std::vector<std::string> names;
  for (const auto& move : moves) names.push_back(move->name);
  return names;
}

/// The decisions of each commit.
class CommitRecorder : public DagListener {
 public:
  explicit CommitRecorder(Dag& ownDag) : dag(ownDag) { dag.propagation.addListener(this); }
  ~CommitRecorder() override { dag.propagation.removeListener(this); }
  void onCommit() override { steps.push_back(touched(dag)); }
  std::vector<Ids> steps;

 private:
  Dag& dag;
};

/// Two decisions without sums or operators, of which the first is wanted at 1. First steps: one swap that always fails
/// (weight 4), two flips of one (8 each), two flips of both (8 each), and flips of three and four that fail (2 and 1).
/// Next steps: two flips of one (8 each) that always ask for a target.
class TwoDecisions : public SearchGraph {
 public:
  Ids x = booleans(2);
  std::unique_ptr<HeuristicDescent> heuristic;

  /// With a second objective that wants the opposite of the first one: it decides nothing, but always has room.
  explicit TwoDecisions(bool hasOpposite = false) {
    maximise(x[0]);
    if (hasOpposite) minimise(x[0]);
    heuristic = std::make_unique<HeuristicDescent>(start());
  }
  void set(t_value first, t_value second) { commitValues(*dag, {{x[0], first}, {x[1], second}}); }
  [[nodiscard]] std::vector<t_value> values() const { return {dag->nodeValue[x[0]], dag->nodeValue[x[1]]}; }
};

/// A sequence of two steps on them, followed by hand.
struct FollowedSequence {
  std::vector<t_value> v;
  bool hasOpposite = false;
  std::vector<bool> touchedBits = {false, false};
  unsigned nbApplied = 0;
  bool isFirstBuilt = false;

  bool run(RandomState& state) {
    const t_value start = v[0];
    const std::uint32_t firstMove = rand(state, 39);
    std::vector<std::size_t> flips;
    if (firstMove >= 4 && firstMove < 20) flips = {rand(state, 2)};
    if (firstMove >= 20 && firstMove < 36) {
      const std::uint32_t drawn = rand(state, 2);
      flips = {drawn, 1 - drawn};
    }
    for (const std::size_t i : flips) flip(i);
    isFirstBuilt = !flips.empty();
    if (isFirstBuilt) {
      ++nbApplied;
      if (v[0] > start) return true;
    }

    (void)rand(state, 16);  // both next moves do the same here
    (void)rand(state, 100);
    const std::size_t i = v[0] == 0 || hasOpposite ? 0 : rand(state, 2);
    const bool isWorse = i == 0 && v[0] == 1;
    if (!touchedBits[i] && !isWorse) {
      ++nbApplied;
      flip(i);
    }
    return v[0] > start || nbApplied >= 2;
  }

  void flip(std::size_t i) {
    v[i] = 1 - v[i];
    touchedBits[i] = true;
  }
};

TEST(MoveSequence, RefusesARateAbove100) {
  TwoDecisions model;
  EXPECT_EQ(failureOf([&] { MoveSequence move(2, 0, 101, *model.heuristic, *model.structure, *model.dag); }),
            refusal("MoveSequence::MoveSequence", "Targeting rate must be smaller than 100."));
}

TEST(MoveSequence, IsJudgedAsAWhole) {
  TwoDecisions model;
  MoveSequence move(4, 2, 50, *model.heuristic, *model.structure, *model.dag);
  EXPECT_EQ(move.name, "4-MoveSequence");
  EXPECT_EQ(move.poolWeight, 1U);
  EXPECT_EQ(move.costFactor(), 0.125);
  EXPECT_TRUE(move.evaluateLevel(3));
  EXPECT_TRUE(move.evaluate());
  EXPECT_EQ(move.referenceNbViolated(), 0U);
  EXPECT_EQ(move.referenceViolation(), 0);
  EXPECT_EQ(move.referenceObjective(0), 0);
  model.set(1, 0);
  EXPECT_EQ(move.referenceObjective(0), 0) << "of the start, not of the committed state";
  EXPECT_TRUE(move.objectiveBetter(0));
}

TEST(MoveSequence, MakesItsOwnMovesForTiedModels) {
  AssignmentGraph model(3);
  HeuristicDescent heuristic(*model.dag);
  const MoveSequence move(2, 0, 50, heuristic, *model.structure, *model.dag);
  EXPECT_EQ(
      namesOf(move.getFirstMoves()),
      (std::vector<std::string>{"1-Balance", "1-Swap", "1-SimpleFlip",             //
                                "2-Balance", "2-Swap", "2-Cycle", "2-SimpleFlip",  //
                                "3-Balance", "3-Swap", "3-Cycle", "3-2-ForkCycle", "3-3-ForkCycle", "3-SimpleFlip",
                                "4-Balance", "4-Swap", "4-Cycle", "4-2-ForkCycle", "4-3-ForkCycle", "4-SimpleFlip"}));
  const std::vector<std::uint32_t> expectedWeights = {4, 4, 8, 2, 2, 2, 8, 1, 1, 4, 2, 1, 2, 1, 1, 8, 0, 0, 1};
  for (std::size_t i = 0; i < expectedWeights.size(); ++i) {
    EXPECT_EQ(move.getFirstMoves()[i]->poolWeight, expectedWeights[i]) << move.getFirstMoves()[i]->name;
  }
  EXPECT_EQ(namesOf(move.getNextMoves()), std::vector<std::string>{"1-SimpleFlip"}) << "no decision is free";
}

TEST(MoveSequence, MakesPathsWhereSumsHaveSlack) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  model.limitedSum(x, 2);
  HeuristicDescent heuristic(model.start());
  const MoveSequence move(2, 0, 50, heuristic, *model.structure, *model.dag);
  EXPECT_EQ(
      namesOf(move.getFirstMoves()),
      (std::vector<std::string>{"1-Balance",    "1-Swap",       "1-Flip",        "1-SimpleFlip",                    //
                                "2-Balance",    "2-Flip",       "2-Path",        "2-Cycle",       "2-SimpleFlip",   //
                                "3-Flip",       "3-Path",       "3-Cycle",       "3-2-ForkCycle", "3-3-ForkCycle",  //
                                "3-2-ForkPath", "3-3-ForkPath", "3-SimpleFlip",                                     //
                                "4-Path",       "4-Cycle",      "4-2-ForkCycle", "4-3-ForkCycle",                   //
                                "4-2-ForkPath", "4-3-ForkPath", "4-SimpleFlip"}));
  EXPECT_EQ(namesOf(move.getNextMoves()), (std::vector<std::string>{"1-Flip", "1-SimpleFlip"}));
  for (const auto& next : move.getNextMoves()) EXPECT_EQ(next->poolWeight, 8U);
}

TEST(MoveSequence, FollowsItsDraws) {
  TwoDecisions model;
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  int nbBuilt = 0;
  int nbOneStep = 0;
  int nbUndone = 0;
  int nbSecondUndone = 0;
  for (const RandomState seed : someSeeds(300)) {
    model.set(seed >> 31U, (seed >> 30U) & 1U);
    FollowedSequence followed{.v = model.values()};
    RandomState expected = seed;
    const bool built = followed.run(expected);
    const std::vector<t_value> before = model.values();
    model.state() = seed;
    CommitRecorder commits(*model.dag);
    ASSERT_EQ(move.apply(), built);
    EXPECT_EQ(model.state(), expected);
    EXPECT_EQ(model.values(), followed.v) << "steps are committed at once";
    EXPECT_EQ(commits.steps.size(), followed.nbApplied);
    EXPECT_TRUE(touched(*model.dag).empty());
    if (built) {
      move.conclude(Outcome::Accepted);
      EXPECT_EQ(model.values(), followed.v);
      ++nbBuilt;
      if (followed.nbApplied == 1 && followed.isFirstBuilt) ++nbOneStep;
    } else {
      move.conclude(Outcome::Infeasible);
      EXPECT_EQ(model.values(), before);
      if (followed.nbApplied == 1) ++(followed.isFirstBuilt ? nbUndone : nbSecondUndone);
    }
    EXPECT_TRUE(isWholeGraphInit(*model.dag));
  }
  EXPECT_GT(nbBuilt, 0);
  EXPECT_GT(nbOneStep, 0) << "a first step that is better than the start ends the sequence";
  EXPECT_GT(nbUndone, 0) << "a single step that is no better is undone";
  EXPECT_GT(nbSecondUndone, 0) << "so is one behind a first step that can't be built";
  EXPECT_EQ(move.nbAttempted, 300U);
  EXPECT_EQ(move.nbAccepted, static_cast<std::uint32_t>(nbBuilt));
  EXPECT_EQ(move.nbImprovements, 0U);
}

TEST(MoveSequence, ComparesObjectivesInTheirOrder) {
  TwoDecisions model(true);
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(300)) {
    model.set(seed >> 31U, (seed >> 30U) & 1U);
    FollowedSequence followed{.v = model.values(), .hasOpposite = true};
    RandomState expected = seed;
    const bool built = followed.run(expected);
    model.state() = seed;
    ASSERT_EQ(move.apply(), built);
    EXPECT_EQ(model.state(), expected);
    EXPECT_EQ(model.values(), followed.v);
    move.conclude(built ? Outcome::Accepted : Outcome::Infeasible);
    if (built) ++nbBuilt;
  }
  EXPECT_GT(nbBuilt, 0);
  EXPECT_LT(nbBuilt, 300);
}

/// Two decisions, of which the second must be 1 and is wanted at 0: constraints weigh more than the objective.
class WantedViolation : public SearchGraph {
 public:
  Ids x = booleans(2);
  std::unique_ptr<HeuristicDescent> heuristic;

  WantedViolation() {
    constraint(x[1]);
    minimise(x[1]);
    heuristic = std::make_unique<HeuristicDescent>(start());
  }
};

TEST(MoveSequence, WeighsConstraintsBeforeObjectives) {
  WantedViolation model;
  Dag& dag = *model.dag;
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, dag);
  std::set<std::size_t> nbStepsOfRepairs;
  int nbRefused = 0;
  for (const RandomState seed : someSeeds(300)) {
    dag.propagation.deactivateAllConstraints();
    const bool isFeasible = seed >> 31U != 0;
    commitValues(dag, {{model.x[0], 0}, {model.x[1], isFeasible ? 1 : 0}});
    if (isFeasible) dag.propagation.activateAllConstraints();

    // The first moves are those of two decisions; the second step always targets the second decision.
    RandomState expected = seed;
    const std::uint32_t firstMove = rand(expected, 39);
    Ids first;
    if (firstMove >= 4 && firstMove < 20) first = {model.x[rand(expected, 2)]};
    if (firstMove >= 20 && firstMove < 36) {
      const std::uint32_t drawn = rand(expected, 2);
      first = {model.x[drawn], model.x[1 - drawn]};
    }
    std::vector<Ids> steps;
    if (!first.empty()) steps.push_back(first);
    const bool isFlipped = std::ranges::count(first, model.x[1]) == 1;
    bool isBetter = isFlipped && !isFeasible;
    if (!isBetter) {
      expected = stepped(expected, 2);  // the next move and its percentage
      if (!isFlipped && !isFeasible) {
        steps.push_back({model.x[1]});
        isBetter = true;
      } else if (!isFlipped) {
        ++nbRefused;  // better by the objective, worse by the constraint
      }
    }
    model.state() = seed;
    bool isBuilt = false;
    {
      CommitRecorder commits(dag);
      isBuilt = move.apply();
      EXPECT_EQ(commits.steps, steps);
    }
    EXPECT_EQ(isBuilt, isBetter || steps.size() >= 2);
    EXPECT_EQ(model.state(), expected);
    if (isBetter) nbStepsOfRepairs.insert(steps.size());
    move.conclude(isBetter ? Outcome::Improved : Outcome::Infeasible);
    EXPECT_EQ(dag.propagation.allConstraintsActive(), isFeasible);
  }
  EXPECT_EQ(nbStepsOfRepairs, (std::set<std::size_t>{1, 2}));
  EXPECT_GT(nbRefused, 0);
}

TEST(MoveSequence, IsNotBuiltWithoutDecisions) {
  SearchGraph model;
  model.minimise(model.integer());
  HeuristicDescent heuristic(model.start(5));
  MoveSequence move(2, 0, 0, heuristic, *model.structure, *model.dag);
  EXPECT_TRUE(move.getNextMoves().empty());
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
  move.conclude(Outcome::Infeasible);
  EXPECT_EQ(move.nbInfeasibles, 1U);
}

/// Four decisions whose sum is tied to 2: every single flip breaks the constraint.
class TiedPairs : public SearchGraph {
 public:
  Ids x = booleans(4);
  NodeId sum = tiedSum(x, 2);
  std::unique_ptr<HeuristicDescent> heuristic;

  TiedPairs() {
    minimise(add(NodeType::ScalarSum, x, {1, 2, 3, 4}));
    Dag& built = start();
    commitValues(built, {{x[2], 1}, {x[3], 1}});
    heuristic = std::make_unique<HeuristicDescent>(built);
    built.propagation.activateAllConstraints();
  }
  [[nodiscard]] std::vector<t_value> values() const {
    std::vector<t_value> all;
    for (const NodeId id : x) all.push_back(dag->nodeValue[id]);
    return all;
  }
  [[nodiscard]] const Propagation& propagation() const { return dag->propagation; }
};

TEST(MoveSequence, PassesThroughViolatedConstraintsAndActivatesThemAgain) {
  TiedPairs model;
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  bool sawInfeasible = false;
  bool sawRepair = false;
  for (const RandomState seed : someSeeds(300)) {
    const std::vector<t_value> before = model.values();
    model.state() = seed;
    const bool built = move.apply();
    EXPECT_EQ(model.propagation().activeConstraints.count, 0U);
    if (built && !move.constraintsWorse()) {
      sawRepair = true;
      move.conclude(Outcome::Accepted);
      EXPECT_EQ(model.propagation().committedNbViolated, 0);
    } else {
      if (model.propagation().committedNbViolated > 0) sawInfeasible = true;
      move.conclude(seed % 2 == 0 ? Outcome::Infeasible : Outcome::Rejected);
      EXPECT_EQ(model.values(), before);
    }
    EXPECT_TRUE(model.propagation().allConstraintsActive());
    EXPECT_TRUE(model.propagation().violatedConstraints.empty());
    EXPECT_TRUE(isWholeGraphInit(*model.dag));
  }
  EXPECT_TRUE(sawInfeasible);
  EXPECT_TRUE(sawRepair);
}

TEST(MoveSequence, FailsToKeepAViolatedEndOfAFeasibleStart) {
  TiedPairs model;
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  for (const RandomState seed : someSeeds(300)) {
    model.state() = seed;
    (void)move.apply();
    if (model.propagation().committedNbViolated == 0) {
      move.conclude(Outcome::Infeasible);
      continue;
    }
    EXPECT_TRUE(move.constraintsWorse()) << "which makes every verdict negative";
    EXPECT_EQ(failureOf([&] { move.conclude(Outcome::Accepted); }),
              refusal("Propagation::activateAllConstraints", "One or more constraints are violated"));
    return;
  }
  FAIL() << "no sequence ended with a violated constraint";
}

TEST(MoveSequence, IsInfeasibleInASearchWhenItEndsWithAViolatedConstraint) {
  TiedPairs model;
  HeuristicDescent& heuristic = *model.heuristic;
  heuristic.addMove(std::make_unique<MoveSequence>(2, 0, 0, heuristic, *model.structure, *model.dag));
  std::uint32_t nbViolatedEnds = 0;
  for (const RandomState seed : someSeeds(300)) {
    const std::vector<t_value> before = model.values();
    const std::uint32_t nbInfeasibles = heuristic.getMove(0).nbInfeasibles;
    {
      CommitRecorder commits(*model.dag);
      model.state() = seed;
      heuristic.seed = seed;
      heuristic.setIterationLimit(1);
      EXPECT_EQ(failureOf([&] { heuristic.run(); }), "no failure");
      // Two committed steps that change an odd number of decisions break the tie; the third commit takes them back.
      if (commits.steps.size() == 3 && (commits.steps[0].size() + commits.steps[1].size()) % 2 == 1) {
        ++nbViolatedEnds;
        EXPECT_EQ(heuristic.getMove(0).nbInfeasibles, nbInfeasibles + 1);
        EXPECT_EQ(model.values(), before);
      }
    }
    EXPECT_EQ(model.propagation().committedNbViolated, 0);
    EXPECT_TRUE(model.propagation().allConstraintsActive());
  }
  EXPECT_GT(nbViolatedEnds, 0U);
}

TEST(MoveSequence, LeavesConstraintsInactiveWhenItStartedInfeasible) {
  TiedPairs model;
  model.dag->propagation.deactivateAllConstraints();
  commitValues(*model.dag, {{model.x[3], 0}});
  ASSERT_EQ(model.propagation().committedNbViolated, 1);
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  EXPECT_EQ(move.referenceNbViolated(), 1U) << "before the first attempt too";
  EXPECT_EQ(move.referenceViolation(), 1);
  for (const RandomState seed : someSeeds(100)) {
    const std::vector<t_value> before = model.values();
    model.state() = seed;
    (void)move.apply();
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.values(), before);
    EXPECT_EQ(model.propagation().committedNbViolated, 1);
    EXPECT_EQ(model.propagation().activeConstraints.count, 0U);
  }
  EXPECT_EQ(move.nbRejected, 100U);
}

TEST(MoveSequence, StopsAtHardConstraintsUnlessItRelaxesThem) {
  TiedPairs model;
  MoveSequence move(2, 0, 0, *model.heuristic, *model.structure, *model.dag);
  move.relaxConstraints = false;
  std::uint32_t nbBroken = 0;
  for (const RandomState seed : someSeeds(100)) {
    model.state() = seed;
    (void)move.apply();
    EXPECT_EQ(model.propagation().committedNbViolated, 0);
    move.conclude(Outcome::Rejected);
  }
  for (const auto& first : move.getFirstMoves()) {
    nbBroken += first->nbInfeasibles;
    if (first->name == "1-SimpleFlip") {
      EXPECT_EQ(first->nbInfeasibles, first->nbAttempted) << "a step that breaks is infeasible, not rejected";
    }
  }
  EXPECT_GT(nbBroken, 0U);
  EXPECT_TRUE(isWholeGraphInit(*model.dag));
}

TEST(MoveSequence, RejectsStepsBelowTheStartWhenItChecks) {
  TwoDecisions model;
  model.set(1, 0);
  MoveSequence move(3, 2, 0, *model.heuristic, *model.structure, *model.dag);
  move.skipStartCheck = false;
  for (const RandomState seed : someSeeds(200)) {
    model.state() = seed;
    (void)move.apply();
    EXPECT_EQ(model.values()[0], 1) << "no step takes it away";
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.values(), (std::vector<t_value>{1, 0}));
  }
}

TEST(MoveSequence, LetsFreeStepsBeWorse) {
  TwoDecisions model;
  // Whether a second step ever takes x[0] away, after a first one that left it.
  const auto mayEndWorse = [&](std::uint32_t freeSteps) {
    MoveSequence move(2, freeSteps, 0, *model.heuristic, *model.structure, *model.dag);
    for (const RandomState seed : someSeeds(300)) {
      model.set(1, 0);
      model.state() = seed;
      CommitRecorder commits(*model.dag);
      (void)move.apply();
      const std::vector<Ids> steps = commits.steps;
      move.conclude(Outcome::Rejected);
      if (steps == std::vector<Ids>{{model.x[1]}, {model.x[0]}}) return true;
    }
    return false;
  };
  EXPECT_TRUE(mayEndWorse(1));
  EXPECT_FALSE(mayEndWorse(0)) << "the step after the free ones must not be worse than the state that it finds";
}

TEST(MoveSequence, NeverChangesADecisionTwice) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  model.minimise(model.booleanSum(x));
  HeuristicDescent heuristic(model.start());
  MoveSequence move(4, 3, 50, heuristic, *model.structure, *model.dag);
  for (const RandomState seed : someSeeds(300)) {
    model.state() = seed;
    bool built = false;
    Ids changed;
    {
      CommitRecorder commits(*model.dag);
      built = move.apply();
      for (const Ids& step : commits.steps) changed.insert(changed.end(), step.begin(), step.end());
    }
    std::ranges::sort(changed);
    EXPECT_EQ(std::ranges::adjacent_find(changed), changed.end());
    move.conclude(built ? Outcome::Accepted : Outcome::Infeasible);
  }
}

}  // namespace
}  // namespace quvex
