#include "solver/kernel/move.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>
#include <sstream>

#include "solver/kernel/objectivecompare.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

/// A move whose change is given by the test.
class ProbeMove : public Move {
 public:
  using Move::drawTarget;
  using Move::Move;
  std::function<bool(Dag&)> change = [](Dag&) { return true; };

  bool apply() override { return change(dag); }
};

/// A move that has its own idea of everything that it is asked.
class StubbornMove final : public ProbeMove {
 public:
  StubbornMove(std::uint32_t weight, Dag& moveDag, RandomState& state) : ProbeMove(weight, moveDag, state) {
    judgedByCommitted = false;
  }
  std::vector<Level> asked;

  bool evaluateLevel(Level stage) override {
    asked.push_back(stage);
    return false;
  }
  [[nodiscard]] bool objectiveWorse(std::uint32_t) const override { return true; }
  [[nodiscard]] bool objectiveBetter(std::uint32_t) const override { return true; }
};

/// The whole shuffle, with the whole array.
std::vector<std::uint32_t> shuffled(RandomState& state, std::uint32_t n, std::uint32_t k) {
  std::vector<std::uint32_t> all(n);
  std::iota(all.begin(), all.end(), 0U);
  std::vector<std::uint32_t> out;
  for (std::uint32_t i = 0; i < k; ++i) {
    const std::uint32_t r = rand(state, n - i);
    out.push_back(all[r]);
    all[r] = all[n - i - 1];
  }
  return out;
}

/// Three booleans, their sum as the objective.
class SumModel : public GraphBuilder {
 public:
  std::vector<NodeId> x = booleans(3);
  NodeId sum = add(NodeType::BooleanSum, x);
};

TEST(Move, RefusesADagThatIsNotInitialised) {
  SumModel model;
  model.minimise(model.sum);
  model.fixed.init();
  Dag dag(model.fixed);
  RandomState state = 1;
  EXPECT_EQ(failureOf([&] { ProbeMove move(1, dag, state); }),
            refusal("Move::Move", "Cannot create a move with an unitialized dag"));
}

TEST(Move, AsksAMoveWithAJudgementOfItsOwn) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 1;
  StubbornMove move(1, dag, state);
  EXPECT_FALSE(move.evaluateConstraints());
  move.evaluateObjective(0);
  EXPECT_EQ(move.asked, (std::vector<Level>{0, 1}));
  EXPECT_EQ(dag.propagation.doneLevel, 0U) << "nothing but the move was asked";
  EXPECT_TRUE(move.isObjectiveWorse(0));
  EXPECT_TRUE(move.isObjectiveBetter(0));
  EXPECT_FALSE(move.leavesConstraintsAlone());
}

TEST(Move, IsJudgedByTheCommittedStateWithoutOne) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  commitValues(dag, {{model.x[0], 1}});
  for (const NodeId id : model.x) {
    dag.flip(id);
    EXPECT_TRUE(move.evaluateConstraints());
    move.evaluateObjective(0);
    EXPECT_EQ(dag.propagation.doneLevel, 2U);
    EXPECT_EQ(move.isObjectiveBetter(0), id == model.x[0]);
    EXPECT_EQ(move.isObjectiveWorse(0), id != model.x[0]);
    EXPECT_TRUE(move.leavesConstraintsAlone());
    move.conclude(Outcome::Rejected);
  }
}

TEST(Move, BuildsNamesFromSizesAndWord) {
  EXPECT_EQ(moveName(2, "Path"), "2-Path");
  EXPECT_EQ(moveName(3, 2, "ForkCycle"), "3-2-ForkCycle");
}

TEST(Move, PrintsFiveZeroCountersWhenFresh) {
  SumModel model;
  model.minimise(model.sum);
  RandomState state = 1;
  ProbeMove move(3, model.build(), state);
  move.name = "2-Probe";
  std::ostringstream stream;
  move.printStatistics(stream);
  EXPECT_EQ(stream.str(),
            "Move :2-Probe\nNbImprovements : 0\nNbAccepted : 0\nNbRejected : 0\nNbInfeasibles : 0\nNbAttempted : 0\n");
  EXPECT_EQ(move.poolWeight, 3U);
  EXPECT_EQ(move.costFactor(), 1.0);
}

TEST(Move, CountsAndEndsEachOutcome) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  move.change = [&](Dag& d) {
    d.flip(model.x[0]);
    return true;
  };
  const auto attempt = [&](Outcome outcome) {
    EXPECT_TRUE(move.apply());
    EXPECT_TRUE(move.evaluate());
    move.conclude(outcome);
    EXPECT_TRUE(isWholeGraphInit(dag));
    return dag.nodeValue[model.sum];
  };
  EXPECT_EQ(attempt(Outcome::Rejected), 0);
  EXPECT_EQ(attempt(Outcome::Infeasible), 0);
  EXPECT_EQ(attempt(Outcome::Accepted), 1);
  EXPECT_EQ(attempt(Outcome::Improved), 0);
  EXPECT_EQ(move.nbAttempted, 4U);
  EXPECT_EQ(move.nbRejected, 1U);
  EXPECT_EQ(move.nbInfeasibles, 1U);
  EXPECT_EQ(move.nbAccepted, 2U);
  EXPECT_EQ(move.nbImprovements, 1U);

  move.resetStatistics();
  EXPECT_EQ(move.nbAttempted + move.nbRejected + move.nbInfeasibles + move.nbAccepted + move.nbImprovements, 0U);
}

TEST(Move, CountsAnUnknownOutcomeAsAttemptedAndEndsNothing) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  dag.flip(model.x[1]);
  move.conclude(static_cast<Outcome>(4));
  EXPECT_EQ(move.nbAttempted, 1U);
  EXPECT_EQ(move.nbRejected + move.nbInfeasibles + move.nbAccepted + move.nbImprovements, 0U);
  EXPECT_EQ(dag.propagation.touchedDecisions, std::vector<NodeId>{model.x[1]});
  EXPECT_EQ(dag.tentativeValue[model.x[1]], 1);
}

TEST(Move, EvaluatesStageByStage) {
  SumModel model;
  const NodeId limit = model.add(NodeType::Leq, {model.sum, model.constant(1)});
  model.constraint(limit);
  const NodeId second = model.add(NodeType::BooleanSum, {model.x[0], model.x[2]});
  model.maximise(second);
  Dag& dag = model.build();
  dag.propagation.activateAllConstraints();
  RandomState state = 1;
  ProbeMove move(1, dag, state);

  dag.flip(model.x[0]);
  EXPECT_TRUE(move.evaluateLevel(0));
  EXPECT_EQ(dag.tentativeValue[model.sum], 1);
  EXPECT_EQ(dag.tentativeValue[second], 0) << "serves the objective alone, so stage 0 leaves it";
  EXPECT_TRUE(move.evaluateLevel(1));
  EXPECT_EQ(dag.tentativeValue[second], 1);
  move.conclude(Outcome::Accepted);

  dag.flip(model.x[1]);
  EXPECT_FALSE(move.evaluate()) << "the limit is hard";
  move.conclude(Outcome::Infeasible);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Move, ComparesCountsAndViolationsOfConstraints) {
  SumModel model;
  const NodeId first = model.add(NodeType::Geq, {model.sum, model.constant(3)});
  model.constraint(first);
  model.minimise(model.constant(0));
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  ASSERT_EQ(move.referenceNbViolated(), 1U);
  ASSERT_EQ(move.referenceViolation(), 3);

  EXPECT_FALSE(move.constraintsBetter());
  EXPECT_FALSE(move.constraintsWorse());
  dag.flip(model.x[0]);
  ASSERT_TRUE(move.evaluate());
  EXPECT_TRUE(move.constraintsBetter()) << "the same count, a lower sum";
  EXPECT_FALSE(move.constraintsWorse());
  move.conclude(Outcome::Improved);

  dag.flip(model.x[0]);
  ASSERT_TRUE(move.evaluate());
  EXPECT_FALSE(move.constraintsBetter());
  EXPECT_TRUE(move.constraintsWorse());
  move.conclude(Outcome::Rejected);

  dag.propagation.tentativeNbViolated = 2;
  dag.propagation.tentativeViolation = 0;
  EXPECT_TRUE(move.constraintsWorse()) << "a higher count is worse whatever the sum";
  EXPECT_FALSE(move.constraintsBetter());
}

TEST(Move, ComparesIntegerObjectivesByDirection) {
  SumModel model;
  model.minimise(model.sum);
  model.maximise(model.add(NodeType::Sum, model.x));
  model.fixed.addObjective(model.add(NodeType::BooleanSum, {model.x[0], model.x[1]}), 7);
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  dag.flip(model.x[0]);
  ASSERT_TRUE(move.evaluate());
  EXPECT_EQ(move.referenceObjective(0), 0);
  EXPECT_TRUE(move.objectiveWorse(0));
  EXPECT_FALSE(move.objectiveBetter(0));
  EXPECT_FALSE(move.objectiveWorse(1));
  EXPECT_TRUE(move.objectiveBetter(1));
  EXPECT_FALSE(move.objectiveWorse(2)) << "an unknown direction prefers nothing";
  EXPECT_FALSE(move.objectiveBetter(2));
}

TEST(Move, TreatsNearlyEqualDoublesAsATie) {
  GraphBuilder model;
  const NodeId x = model.boolean();
  const NodeId y = model.boolean();
  const NodeId cost = model.add(NodeType::DoubleScalarSum, {x, y, model.constantDouble(1000.0)},
                                {doubleToWord(1e-4), doubleToWord(1.0), doubleToWord(1.0)});
  model.minimise(cost);
  Dag& dag = model.build();
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  dag.flip(x);
  ASSERT_TRUE(move.evaluate());
  EXPECT_FALSE(move.objectiveWorse(0)) << "1000.0001 against 1000";
  EXPECT_FALSE(move.objectiveBetter(0));
  dag.propagation.rollbackAll(dag);
  dag.flip(y);
  ASSERT_TRUE(move.evaluate());
  EXPECT_TRUE(move.objectiveWorse(0));
  EXPECT_FALSE(move.objectiveBetter(0));
}

TEST(SampleDistinct, IsAShuffleCutAfterKSteps) {
  RandomState seeds = 7;
  std::vector<std::uint32_t> out;
  for (int round = 0; round < 2000; ++round) {
    const std::uint32_t n = 1 + rand(seeds, 40);
    const std::uint32_t k = rand(seeds, n + 1);
    RandomState state = randomStep(seeds);
    RandomState expectedState = state;
    sampleDistinct(state, n, k, out);
    EXPECT_EQ(out, shuffled(expectedState, n, k)) << "n " << n << " k " << k;
    EXPECT_EQ(state, expectedState);
  }
}

TEST(SampleDistinct, DrawsKTimesButNotForTheLastOne) {
  std::vector<std::uint32_t> out;
  RandomState state = 5;
  sampleDistinct(state, 10, 3, out);
  EXPECT_EQ(state, [] {
    RandomState s = 5;
    for (int i = 0; i < 3; ++i) randomStep(s);
    return s;
  }());

  state = 5;
  sampleDistinct(state, 4, 4, out);
  EXPECT_EQ(state, [] {
    RandomState s = 5;
    for (int i = 0; i < 3; ++i) randomStep(s);
    return s;
  }()) << "the fourth of four is certain";
  EXPECT_EQ(std::set<std::uint32_t>(out.begin(), out.end()), (std::set<std::uint32_t>{0, 1, 2, 3}));

  state = 5;
  sampleDistinct(state, 1, 1, out);
  EXPECT_EQ(state, 5U);
  EXPECT_EQ(out, std::vector<std::uint32_t>{0});
  sampleDistinct(state, 9, 0, out);
  EXPECT_EQ(state, 5U);
  EXPECT_TRUE(out.empty());
}

TEST(SampleDistinct, TakesMoreThanTheUsualSizes) {
  std::vector<std::uint32_t> out;
  RandomState state = 11;
  RandomState expectedState = 11;
  sampleDistinct(state, 1000000, 100, out);
  EXPECT_EQ(std::set<std::uint32_t>(out.begin(), out.end()).size(), 100U);
  EXPECT_EQ(out, shuffled(expectedState, 1000000, 100));
  EXPECT_EQ(state, expectedState);
}

TEST(PickTarget, FailsWhenTheOnlyObjectiveIsOnItsBound) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 9;
  NodeId decision = 77;
  EXPECT_FALSE(pickTarget(dag, state, decision));
  EXPECT_EQ(decision, 77U);
  EXPECT_EQ(state, 9U) << "no draw";
}

TEST(PickTarget, FollowsTheDirectionOfTheObjective) {
  SumModel model;
  model.maximise(model.sum);
  Dag& dag = model.build();
  commitValues(dag, {{model.x[0], 1}, {model.x[2], 1}});
  RandomState state = 9;
  NodeId decision = kNone;
  ASSERT_TRUE(pickTarget(dag, state, decision));
  EXPECT_EQ(decision, model.x[1]) << "the only one that can rise";
  EXPECT_EQ(state, 9U) << "a certain choice draws nothing";
}

TEST(PickTarget, GoesOnToTheNextObjectiveWhenOneIsOnItsBound) {
  SumModel model;
  const NodeId other = model.add(NodeType::BooleanSum, {model.x[1], model.x[2]});
  model.minimise(other);
  model.minimise(model.x[0]);
  Dag& dag = model.build();
  commitValues(dag, {{model.x[0], 1}});
  RandomState state = 9;
  NodeId decision = kNone;
  ASSERT_TRUE(pickTarget(dag, state, decision));
  EXPECT_EQ(decision, model.x[0]);

  dag.propagation.optimizedLevel = 1;
  EXPECT_FALSE(pickTarget(dag, state, decision)) << "the second objective is not optimised";
  dag.propagation.optimizedLevel = 0;
  EXPECT_FALSE(pickTarget(dag, state, decision));
}

TEST(PickTarget, RaisesARandomViolatedConstraintFirst) {
  GraphBuilder model;
  const std::vector<NodeId> x = model.booleans(4);
  for (const NodeId id : x) model.constraint(id);
  model.maximise(model.add(NodeType::BooleanSum, x));
  Dag& dag = model.build();
  commitValues(dag, {{x[0], 1}});
  const IndexedSet& violated = dag.propagation.violatedConstraints;
  ASSERT_EQ(violated.size(), 3U);
  for (RandomState seed = 1; seed < 20; ++seed) {
    RandomState state = seed;
    RandomState expectedState = seed;
    const NodeId expected = x[violated[rand(expectedState, 3)]];
    NodeId decision = kNone;
    ASSERT_TRUE(pickTarget(dag, state, decision));
    EXPECT_EQ(decision, expected);
    EXPECT_EQ(state, expectedState);
  }
}

TEST(PickTarget, CostsNoDrawAtRate0AndOneAtRate100) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  RandomState state = 9;
  ProbeMove move(1, dag, state);
  EXPECT_EQ(move.drawTarget(0), kNone);
  EXPECT_EQ(state, 9U);
  EXPECT_EQ(move.drawTarget(100), kNone) << "nothing has room";
  RandomState expected = 9;
  randomStep(expected);
  EXPECT_EQ(state, expected) << "the percentage is drawn all the same";
  commitValues(dag, {{model.x[1], 1}});
  EXPECT_EQ(move.drawTarget(100), model.x[1]);
}

TEST(PickTarget, PassesThePercentageTestBelowTheRateOnly) {
  SumModel model;
  model.minimise(model.sum);
  Dag& dag = model.build();
  commitValues(dag, {{model.x[1], 1}});
  RandomState state = 1;
  ProbeMove move(1, dag, state);
  for (RandomState seed = 1; seed < 200; ++seed) {
    state = seed;
    RandomState drawn = seed;
    const bool passes = rand(drawn, 100) < 50;
    EXPECT_EQ(move.drawTarget(50), passes ? model.x[1] : kNone);
  }
}

TEST(FirstImprovableObjective, ReadsDoublesWithinTolerance) {
  GraphBuilder model;
  const NodeId x = model.boolean();
  const NodeId y = model.boolean();
  const auto weighted = [&](double weight) {
    return model.add(NodeType::DoubleScalarSum, {x, model.constantDouble(1000.0)},
                     {doubleToWord(weight), doubleToWord(1.0)});
  };
  model.minimise(weighted(1e-4));
  model.maximise(weighted(-1e-4));
  model.minimise(weighted(1.0));
  model.maximise(y);
  Dag& dag = model.build();
  EXPECT_EQ(firstImprovableObjective(dag, 4), 3U);
  commitValues(dag, {{x, 1}});
  EXPECT_EQ(firstImprovableObjective(dag, 4), 2U) << "the first two are within tolerance of their bounds";
  EXPECT_EQ(firstImprovableObjective(dag, 2), kNone);
  commitValues(dag, {{x, 0}, {y, 1}});
  EXPECT_EQ(firstImprovableObjective(dag, 4), kNone);
}

}  // namespace
}  // namespace quvex
