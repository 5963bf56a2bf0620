#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/qvstatistics.h"
#include "support/apipeer.h"
#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

/// Calls a function at every display of a search.
class OnDisplay {
 public:
  OnDisplay(Quvex& quvex, std::function<void()> onDisplay) : action(std::move(onDisplay)) {
    quvex.setDisplayCallback([](void* context) { static_cast<OnDisplay*>(context)->action(); }, this);
  }
  OnDisplay(const OnDisplay&) = delete;
  OnDisplay& operator=(const OnDisplay&) = delete;

 private:
  std::function<void()> action;
};

/// A model that can always go on: the computed bound of its objective is 3, and no solution has more than 1.
void buildEndlessModel(QVModel& model) {
  const auto x = createDecisions(model, 6);
  QVExpression* opposite = model.createExpression(QVOperator::Not, x[0]);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], opposite);
  sum->addOperand(model.createExpression(QVOperator::And, x[1], x[2]));
  model.addConstraint(model.createExpression(QVOperator::Leq, model.createExpression(QVOperator::Sum, x[1], x[2]),
                                             model.createConstant(1)));
  model.addObjective(sum, QVObjectiveDirection::Maximize);
}

/// All that a solve leaves behind, on one line each.
std::string resultOf(Quvex& quvex, const std::vector<QVExpression*>& decisions) {
  std::ostringstream text;
  for (const QVExpression* decision : decisions) text << decision->getValue();
  const QVStatistics& statistics = *quvex.getStatistics();
  text << "\n"
       << statistics.getNbIterations() << " " << statistics.getNbMoves() << " " << statistics.getNbAcceptedMoves()
       << " " << statistics.getNbImprovingMoves() << " " << statistics.getNbInfeasibleMoves() << "\n";
  for (std::size_t t = 0; t < ApiPeer::nbPools(quvex); ++t) ApiPeer::heuristic(quvex, t).printMoveTable(text);
  return text.str();
}

std::string solveKnapsack(int nbThreads, int seed, std::int64_t iterations) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, iterations, nbThreads);
  quvex.getParam()->setSeed(seed);
  quvex.solve();
  return resultOf(quvex, knapsack.decisions);
}

TEST(SolveDrive, SolvesAKnapsackEndToEnd) {
  for (const int nbThreads : {1, 2}) {
    Quvex quvex;
    const Knapsack knapsack(*quvex.getModel());
    closeQuietly(quvex, 20000, nbThreads);
    quvex.solve();
    EXPECT_EQ(quvex.getState(), QVState::Stopped);
    EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Feasible);
    EXPECT_EQ(knapsack.value->getValue(), 42);
    EXPECT_EQ(knapsack.weight->getValue(), 24);
    EXPECT_EQ(quvex.getStatistics()->getNbIterations(), 20000);
    EXPECT_EQ(quvex.getStatistics()->getNbMoves(), 20000 * nbThreads);
  }
}

TEST(SolveDrive, IsAFunctionOfSeedThreadsAndIterations) {
  for (const int nbThreads : {1, 2, 3}) {
    EXPECT_EQ(solveKnapsack(nbThreads, 11, 3000), solveKnapsack(nbThreads, 11, 3000));
    EXPECT_NE(solveKnapsack(nbThreads, 11, 3000), solveKnapsack(nbThreads, 12, 3000));
  }
}

TEST(SolveDrive, ThreadsDifferByTheirSeedsAlone) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 100, 2);
  quvex.getParam()->setSeed(1);
  quvex.solve();
  // The start satisfies all constraints, so the greedy pass draws nothing and the stream steps once per thread.
  RandomState state = 1;
  for (std::size_t t = 0; t < 2; ++t) {
    EXPECT_EQ(ApiPeer::heuristic(quvex, t).seed, scaleTo(randomStep(state), 2147483647U));
  }
}

TEST(SolveDrive, StartsAnewAfterAnEvaluationThatFailedBeforeTheSearch) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 100);
  QVExpression* sum = model.createExpression(QVOperator::Sum);
  for (QVExpression* decision : x) sum->addOperand(decision);
  // The greedy pass has to raise the sum, at the end past the last element.
  QVExpression* array = model.createExpression(QVOperator::Array);
  for (int i = 0; i < 100; ++i) array->addOperand(model.createConstant(std::int64_t{i == 0 ? -46 : -50}));
  QVExpression* at = model.createExpression(QVOperator::At, array, sum);
  model.addConstraint(model.createExpression(QVOperator::Leq, at, model.createConstant(std::int64_t{-48})));
  model.addConstraint(model.createExpression(QVOperator::Geq, sum, model.createConstant(std::int64_t{100})));
  model.addObjective(at, QVObjectiveDirection::Minimize);
  closeQuietly(quvex, 1000, 1);
  const std::string first = explanationOf([&] { quvex.solve(); });
  EXPECT_NE(first, "");
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(explanationOf([&] { quvex.solve(); }), first) << "and not about an index that has grown";
  EXPECT_EQ(explanationOf([&] { quvex.solve(); }), first);
}

TEST(SolveDrive, CreatesAPhaseWithoutLimitsWhenThereIsNone) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 5);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], x[1], x[2]);
  model.addObjective(sum, QVObjectiveDirection::Maximize);
  model.close();
  quvex.getParam()->setVerbosity(0);
  quvex.solve();
  EXPECT_EQ(quvex.getNbPhases(), 1);
  EXPECT_EQ(quvex.getPhase(0)->toString(), "no time limit, no iteration limit, optimized objective = 0");
  EXPECT_EQ(sum->getValue(), 3);
  EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Optimal);
}

TEST(SolveDrive, AnObjectiveBoundEndsTheSearch) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  quvex.getModel()->close();
  quvex.getParam()->setVerbosity(0);
  quvex.getParam()->setObjectiveBound(0, 30);
  quvex.solve();
  EXPECT_GE(knapsack.value->getValue(), 30);
  EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Optimal);
}

TEST(SolveDrive, ContinuesFromTheFirstResult) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 20000);
  quvex.solve();
  ASSERT_EQ(knapsack.value->getValue(), 42);
  std::vector<std::string> infos;
  const OnDisplay watch(quvex, [&] { infos.push_back(quvex.getInfo()); });
  quvex.getPhase(0)->setIterationLimit(1);
  quvex.solve();
  EXPECT_EQ(knapsack.value->getValue(), 42);
  ASSERT_EQ(infos.size(), 2U);
  EXPECT_EQ(infos[0], "[0 sec, 0 itr]: obj = (42), mov = 0, inf < 0.1%, acc < 0.1%, imp = 0\n");
}

TEST(SolveDrive, StartsFromWhatTheCallerSet) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 1);
  knapsack.decisions[3]->setValue(1);
  knapsack.decisions[6]->setValue(1);
  std::vector<std::string> infos;
  const OnDisplay watch(quvex, [&] { infos.push_back(quvex.getInfo()); });
  quvex.solve();
  ASSERT_FALSE(infos.empty());
  EXPECT_NE(infos[0].find("obj = (23)"), std::string::npos);
}

/// At least four of six must be set, at the least cost.
void buildCover(QVModel& model) {
  const auto x = createDecisions(model, 6);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], x[1], x[2]);
  for (std::size_t i = 3; i < 6; ++i) sum->addOperand(x[i]);
  model.addConstraint(model.createExpression(QVOperator::Geq, sum, model.createConstant(4)));
  model.addObjective(sum, QVObjectiveDirection::Minimize);
}

TEST(SolveDrive, GreedyPassTriesForFeasibilityFirst) {
  for (const int enabled : {1, 0}) {
    Quvex quvex;
    buildCover(*quvex.getModel());
    closeQuietly(quvex, 1, 2);
    quvex.getParam()->setAdvancedParam("greedyEnabled", enabled);
    std::vector<std::string> infos;
    const OnDisplay watch(quvex, [&] { infos.push_back(quvex.getInfo()); });
    quvex.solve();
    ASSERT_FALSE(infos.empty());
    EXPECT_NE(infos[0].find(enabled != 0 ? "obj = (6)" : "infeas = (1)"), std::string::npos) << infos[0];
  }
}

TEST(SolveDrive, InfeasibleResultsShowTheNumberOfViolatedConstraints) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 2);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], x[1]);
  model.addConstraint(model.createExpression(QVOperator::Geq, sum, model.createConstant(1)));
  model.addConstraint(model.createExpression(QVOperator::Leq, sum, model.createConstant(0)));
  model.addObjective(x[0], QVObjectiveDirection::Maximize);
  closeQuietly(quvex, 50);
  quvex.getParam()->setVerbosity(1);
  const CapturedOutput output;
  quvex.solve();
  EXPECT_NE(output.text().find("infeas = (1), mov = 50"), std::string::npos) << output.text();
  EXPECT_NE(output.text().find("Infeasible solution: infeas = (1)\n\n"), std::string::npos) << output.text();
  EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Infeasible);
}

TEST(SolveDrive, DoubleObjectivesArePrintedAsSuch) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 1);
  QVExpression* half = model.createExpression(QVOperator::Prod, x[0], model.createConstant(0.5));
  model.addObjective(half, QVObjectiveDirection::Maximize);
  model.addObjective(x[0], QVObjectiveDirection::Minimize);
  closeQuietly(quvex, 50);
  quvex.solve();
  EXPECT_EQ(half->getDoubleValue(), 0.5);
  EXPECT_NE(quvex.getInfo().find("obj = (0.5, 1), mov = "), std::string::npos) << quvex.getInfo();
}

TEST(SolveDrive, PrintsDescriptionProgressAndResult) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 20000);
  quvex.getParam()->setVerbosity(1);
  quvex.getParam()->setTimeBetweenDisplays(65535);
  std::string text;
  {
    const CapturedOutput output;
    quvex.solve();
    text = output.text();
  }
  text = std::regex_replace(text, std::regex("[0-9]+ sec(?!ond)"), "T sec");
  text = std::regex_replace(text, std::regex("[0-9]+ seconds"), "T seconds");
  const std::string statistics = quvex.getStatistics()->getInfo();
  EXPECT_EQ(text, "\n" + quvex.toString() +
                      "Phase 0:\n\n"
                      "[T sec, 0 itr]: obj = (0), mov = 0, inf < 0.1%, acc < 0.1%, imp = 0\n\n"
                      "[T sec, 20000 itr]: obj = (42), " +
                      statistics +
                      "\n\n"
                      "20000 iterations, 20000 moves performed in T seconds\n"
                      "Feasible solution: obj = (42)\n\n");
}

TEST(SolveDrive, PrintsNothingWithoutVerbosity) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 10, 2);
  quvex.getParam()->setAdvancedParam("traceEnabled", 1);
  const CapturedOutput output;
  quvex.solve();
  EXPECT_EQ(output.text(), "");
}

TEST(SolveDrive, TracingShowsTheGraphAndTheMoves) {
  Quvex quvex;
  const Knapsack knapsack(*quvex.getModel());
  closeQuietly(quvex, 10, 2);
  quvex.getParam()->setVerbosity(1);
  quvex.getParam()->setAdvancedParam("traceEnabled", 1);
  const CapturedOutput output;
  quvex.solve();
  const std::string text = output.text();
  std::size_t tables = 0;
  for (std::size_t at = text.find("Heur. stats"); at != std::string::npos; at = text.find("Heur. stats", at + 1)) {
    ++tables;
  }
  EXPECT_EQ(tables, 4U) << "one table per thread, at the start and at the end of the phase";
  EXPECT_LT(text.find("Phases:"), text.find("scalar_sum")) << "the graph's types come behind the description";
  EXPECT_LT(text.find("scalar_sum"), text.find("Phase 0:\n\n"));
  std::ostringstream lastTable;
  ApiPeer::heuristic(quvex, 1).printMoveTable(lastTable);
  EXPECT_NE(text.find(lastTable.str() + "\n\n10 iterations"), std::string::npos) << text;
}

TEST(SolveDrive, AnInconsistentModelIsReportedWithoutASearch) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 2);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], x[1]);
  model.addConstraint(model.createExpression(QVOperator::Geq, sum, model.createConstant(3)));
  model.addObjective(sum, QVObjectiveDirection::Maximize);
  model.close();
  {
    const CapturedOutput output;
    quvex.solve();
    EXPECT_EQ(output.text(), "\n" + quvex.toString() + "Inconsistent model.\n\n");
  }
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(quvex.getNbPhases(), 0);
  EXPECT_EQ(
      failureOf([&] { (void)quvex.getInfo(); }),
      refusal("Quvex::getInfo", "This method cannot be called if the solver has not been started at least once."));
}

// ------------------------------------------------------------------------------------------------------------- phases

/// A solver whose search never ends by itself.
class SolveDriveOfPhases : public testing::Test {
 protected:
  Quvex quvex;

  void SetUp() override {
    buildEndlessModel(*quvex.getModel());
    quvex.getModel()->close();
    quvex.getParam()->setVerbosity(0);
  }
  [[nodiscard]] std::int64_t iterationsOf(int phase) {
    return quvex.getPhase(phase)->getStatistics()->getNbIterations();
  }
};

TEST_F(SolveDriveOfPhases, IterationLimitsAddUp) {
  quvex.createPhase()->setIterationLimit(100);
  quvex.createPhase()->setIterationLimit(30);
  quvex.solve();
  EXPECT_EQ(iterationsOf(0), 100);
  EXPECT_EQ(iterationsOf(1), 30);
  EXPECT_EQ(quvex.getStatistics()->getNbIterations(), 130);
}

TEST_F(SolveDriveOfPhases, APhaseGetsTheTimeThatIsLeftOfTheSum) {
  quvex.createPhase()->setTimeLimit(10);
  quvex.createPhase()->setTimeLimit(20);
  quvex.getPhase(0)->setIterationLimit(10);
  quvex.getPhase(1)->setIterationLimit(10);
  int displays = 0;
  std::vector<std::uint32_t> limits;
  const OnDisplay watch(quvex, [&] {
    limits.push_back(ApiPeer::timeLimit(ApiPeer::heuristic(quvex, 0)));
    if (++displays == 2) ApiPeer::setRunningTime(*quvex.getStatistics(), 4);
  });
  quvex.solve();
  EXPECT_EQ(limits, (std::vector<std::uint32_t>{10, 10, 26, 26}));
}

TEST_F(SolveDriveOfPhases, APhaseWithoutTimeLeftIsSkippedSilently) {
  quvex.createPhase()->setTimeLimit(10);
  quvex.createPhase()->setTimeLimit(20);
  quvex.createPhase()->setTimeLimit(5);
  for (int i = 0; i < 3; ++i) quvex.getPhase(i)->setIterationLimit(10);
  quvex.getParam()->setVerbosity(1);
  int displays = 0;
  const OnDisplay watch(quvex, [&] {
    if (++displays == 2) ApiPeer::setRunningTime(*quvex.getStatistics(), 30);
  });
  const CapturedOutput output;
  quvex.solve();
  EXPECT_EQ(displays, 4);
  EXPECT_EQ(output.text().find("Phase 1:\n"), std::string::npos);
  EXPECT_NE(output.text().find("Phase 2:\n"), std::string::npos);
  EXPECT_EQ(iterationsOf(0), 10);
  EXPECT_EQ(iterationsOf(1), 0);
  EXPECT_EQ(quvex.getPhase(1)->getStatistics()->getNbMoves(), 0);
  EXPECT_EQ(iterationsOf(2), 20);
}

TEST(SolveDrive, APhaseIgnoresObjectivesBehindItsOwn) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, 4);
  model.addObjective(model.createExpression(QVOperator::Sum, x[0], x[1]), QVObjectiveDirection::Maximize);
  model.addObjective(model.createExpression(QVOperator::Sum, x[2], x[3]), QVObjectiveDirection::Maximize);
  model.close();
  quvex.getParam()->setVerbosity(0);
  quvex.getParam()->setNbThreads(1);
  quvex.createPhase()->setOptimizedObjective(0);
  quvex.createPhase();
  std::vector<std::string> infos;
  const OnDisplay watch(quvex, [&] { infos.push_back(quvex.getInfo()); });
  quvex.solve();
  ASSERT_EQ(infos.size(), 4U);
  EXPECT_NE(infos[1].find("obj = (2, "), std::string::npos) << "the first phase ends at the bound of its objective";
  EXPECT_NE(infos[3].find("obj = (2, 2)"), std::string::npos);
}

TEST_F(SolveDriveOfPhases, ASkippedPhaseHasNoStatistics) {
  quvex.createPhase()->setTimeLimit(10);
  quvex.createPhase()->setTimeLimit(20);
  for (int i = 0; i < 2; ++i) quvex.getPhase(i)->setIterationLimit(50);
  quvex.setDisplayCallback(nullptr, nullptr);
  quvex.solve();
  const QVStatistics& skipped = *quvex.getPhase(1)->getStatistics();
  EXPECT_EQ(skipped.getNbIterations(), 50);
  EXPECT_GT(skipped.getNbAcceptedMoves(), 0);

  // The first phase takes all the time of both, so that the figures of the earlier solve must be gone.
  int displays = 0;
  const OnDisplay watch(quvex, [&] {
    if (++displays == 2) ApiPeer::setRunningTime(*quvex.getStatistics(), 30);
    ApiPeer::setRunningTime(*quvex.getPhase(1)->getStatistics(), 0);
  });
  quvex.solve();
  EXPECT_EQ(displays, 2);
  EXPECT_EQ(skipped.getRunningTime(), 0);
  EXPECT_EQ(skipped.getNbIterations(), 0);
  EXPECT_EQ(skipped.getNbMoves(), 0);
  EXPECT_EQ(skipped.getNbAcceptedMoves(), 0);
  EXPECT_EQ(skipped.getNbImprovingMoves(), 0);
  EXPECT_EQ(skipped.getNbInfeasibleMoves(), 0);
  EXPECT_EQ(skipped.getNbRejectedMoves(), 0);
  for (const double percent : {skipped.getPercentAcceptedMoves(), skipped.getPercentImprovingMoves(),
                               skipped.getPercentRejectedMoves(), skipped.getPercentInfeasibleMoves()}) {
    EXPECT_EQ(percent, 0.0);
  }
  EXPECT_EQ(skipped.toString(),
            "running time = 0 sec, nb iterations = 0, nb moves = 0\n"
            "accepted = 0 (0%), improving = 0 (0%)\n"
            "rejected = 0 (0%), infeasible = 0 (0%)\n");
  EXPECT_EQ(quvex.getPhase(0)->getStatistics()->getNbIterations(), 50);
  EXPECT_EQ(quvex.getStatistics()->getNbIterations(), 50);
}

TEST(SolveDrive, APhaseOfTheFirstObjectiveIsComparedByAll) {
  // The first objective can be improved once, to 1, and never reaches its computed bound of 2.
  int nbByTheFirst = 0;
  int nbByOthers = 0;
  for (int seed = 1; seed <= 40; ++seed) {
    Quvex quvex;
    QVModel& model = *quvex.getModel();
    const auto x = createDecisions(model, 7);
    model.addConstraint(model.createExpression(QVOperator::Leq, model.createExpression(QVOperator::Sum, x[1], x[2]),
                                               model.createConstant(1)));
    const std::vector<QVExpression*> objectives = {
        model.createExpression(QVOperator::Sum, x[0], model.createExpression(QVOperator::And, x[1], x[2])),
        model.createExpression(QVOperator::Sum, x[3], x[4]), model.createExpression(QVOperator::Sum, x[5], x[6])};
    for (QVExpression* objective : objectives) model.addObjective(objective, QVObjectiveDirection::Maximize);
    closeQuietly(quvex, 30, 2)->setOptimizedObjective(0);
    quvex.getParam()->setSeed(seed);
    quvex.solve();
    const std::vector<t_value>& first = ApiPeer::heuristic(quvex, 0).bestSolution.objectives;
    const std::vector<t_value>& second = ApiPeer::heuristic(quvex, 1).bestSolution.objectives;
    if (second > first) ++(second[0] > first[0] ? nbByTheFirst : nbByOthers);
    std::vector<t_value> reported;
    for (const QVExpression* objective : objectives) reported.push_back(objective->getValue());
    EXPECT_EQ(reported, std::max(first, second));
  }
  EXPECT_GT(nbByTheFirst, 0);
  EXPECT_GT(nbByOthers, 0) << "a tie in the optimised objective is settled by those behind it";
}

TEST_F(SolveDriveOfPhases, DisplaysAreMadeInStatePaused) {
  quvex.createPhase()->setIterationLimit(5);
  std::vector<QVState> states;
  const OnDisplay watch(quvex, [&] {
    states.push_back(quvex.getState());
    EXPECT_EQ(failureOf([&] { quvex.getParam()->setSeed(1); }), refusal("QVParam::setSeed", kStoppedOnlyText));
    EXPECT_EQ(failureOf([&] { quvex.solve(); }), refusal("Quvex::solve", kStoppedOnlyText));
    EXPECT_EQ(failureOf([&] { (void)quvex.getSolution()->getStatus(); }), "no failure");
    EXPECT_EQ(failureOf([&] { quvex.getModel()->createConstant(1); }),
              refusal("QVModel::createConstant", kModelingOnlyText));
  });
  quvex.solve();
  EXPECT_EQ(states, (std::vector<QVState>{QVState::Paused, QVState::Paused}));
}

TEST_F(SolveDriveOfPhases, DisplaysMayBeSwitchedOff) {
  quvex.createPhase()->setIterationLimit(5);
  quvex.getParam()->setVerbosity(1);
  quvex.setDisplayCallback(nullptr, nullptr);
  const CapturedOutput output;
  quvex.solve();
  EXPECT_EQ(output.text().find("itr]"), std::string::npos);
  EXPECT_EQ(iterationsOf(0), 5);
}

TEST_F(SolveDriveOfPhases, ADisplayEverySecondChangesNoResult) {
  // Long enough for a few displays, and still a function of the iteration limit.
  const auto run = [](int secondsBetweenDisplays) {
    Quvex solver;
    const Knapsack knapsack(*solver.getModel());
    closeQuietly(solver, 400000, 2);
    solver.getParam()->setTimeBetweenDisplays(secondsBetweenDisplays);
    solver.solve();
    return resultOf(solver, knapsack.decisions);
  };
  EXPECT_EQ(run(1), run(65535));
}

// --------------------------------------------------------------------------------------------------------------- stop

TEST_F(SolveDriveOfPhases, StopAtADisplayEndsBehindTheFirstPhase) {
  quvex.createPhase()->setIterationLimit(10);
  quvex.createPhase()->setIterationLimit(10);
  const OnDisplay watch(quvex, [&] { quvex.stop(); });
  quvex.solve();
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(iterationsOf(0), 10);
  EXPECT_EQ(iterationsOf(1), 0);
}

TEST_F(SolveDriveOfPhases, ASolveBehindAStopRunsItsFirstPhaseOnly) {
  quvex.createPhase()->setIterationLimit(10);
  quvex.createPhase()->setIterationLimit(10);
  {
    const OnDisplay watch(quvex, [&] { quvex.stop(); });
    quvex.solve();
  }
  quvex.setDisplayCallback(nullptr, nullptr);
  quvex.solve();
  EXPECT_TRUE(ApiPeer::isStopRequested(quvex));
  EXPECT_EQ(iterationsOf(0), 10);
  EXPECT_EQ(iterationsOf(1), 0);
}

TEST_F(SolveDriveOfPhases, StopFromAnotherThreadEndsAnEndlessSearch) {
  quvex.createPhase();
  quvex.createPhase();
  quvex.getParam()->setTimeBetweenDisplays(65535);
  std::string refusalWhileRunning;
  std::thread stopper([&] {
    while (quvex.getState() != QVState::Running) std::this_thread::yield();
    refusalWhileRunning = failureOf([&] { (void)quvex.getModel(); }).message();
    quvex.stop();
  });
  quvex.solve();
  stopper.join();
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(refusalWhileRunning, refusal("Quvex::getModel", kNotRunningText));
  EXPECT_EQ(iterationsOf(1), 0);
  EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Feasible);
}

TEST_F(SolveDriveOfPhases, StopFromAnotherThreadDuringADisplayReturnsAndEndsTheSearch) {
  quvex.createPhase();
  int displays = 0;
  const OnDisplay watch(quvex, [&] {
    if (++displays == 2) std::thread([&] { quvex.stop(); }).join();
  });
  quvex.solve();
  EXPECT_EQ(displays, 3) << "at the start, where the stop came, and at the end";
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
}

// ----------------------------------------------------------------------------------------------------------- failures

/// 100 / (2 - number of decisions set), which the search drives toward its division by zero.
std::vector<QVExpression*> buildFailingModel(Quvex& quvex) {
  QVModel& model = *quvex.getModel();
  std::vector<QVExpression*> x = createDecisions(model, 2);
  QVExpression* divisor = weightedSum(model, x, {-1, -1});
  divisor->addOperand(2);
  model.addObjective(model.createExpression(QVOperator::Div, model.createConstant(100), divisor),
                     QVObjectiveDirection::Maximize);
  closeQuietly(quvex, 100000, 2);
  return x;
}

TEST(SolveDrive, AFailureOnASearchThreadReachesTheCaller) {
  Quvex quvex;
  buildFailingModel(quvex);
  try {
    quvex.solve();
    FAIL() << "the division by zero was lost";
  } catch (const KernelException& failure) {
    EXPECT_EQ(failure.getExplanation(), "Division by zero.");
  }
  EXPECT_EQ(quvex.getState(), QVState::Running) << "nothing restores the state";
  quvex.stop();
}

TEST(SolveDrive, AFailureAtTheStartLeavesNoHalfSearch) {
  Quvex quvex;
  for (QVExpression* decision : buildFailingModel(quvex)) decision->setValue(1);
  EXPECT_EQ(failureOf([&] { quvex.solve(); }).explanation, "Division by zero.");
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_FALSE(ApiPeer::wasStarted(quvex));
}

TEST_F(SolveDriveOfPhases, AFailingDisplayLeavesThroughSolveAndTheThreadsEndWithTheObject) {
  quvex.createPhase();
  int displays = 0;
  const OnDisplay watch(quvex, [&] {
    if (++displays == 2) raise<QVException>(here<Quvex>(), "display failed");
  });
  EXPECT_THROW(quvex.solve(), QVException);
  EXPECT_EQ(quvex.getState(), QVState::Paused);
}

// --------------------------------------------------------------------------------------------------------------- dump

TEST(SolveDrive, DumpsTheEnvironmentOnce) {
  std::filesystem::remove("dump.qvm.gz");
  {
    Quvex quvex;
    const Knapsack knapsack(*quvex.getModel());
    closeQuietly(quvex, 10);
    quvex.getParam()->setAdvancedParam("dumpEnabled", 1);
    quvex.solve();
    EXPECT_EQ(quvex.getParam()->getAdvancedParam("dumpEnabled"), 0);
  }
  ASSERT_TRUE(std::filesystem::exists("dump.qvm.gz"));
  Quvex quvex;
  quvex.loadEnvironment("dump.qvm.gz");
  EXPECT_EQ(quvex.getModel()->getNbDecisions(), 8);
  EXPECT_EQ(quvex.getParam()->getAdvancedParam("dumpEnabled"), 0) << "the dump does not ask for a dump";
  EXPECT_EQ(quvex.getPhase(0)->getIterationLimit(), 10);
  std::filesystem::remove("dump.qvm.gz");
}

}  // namespace
}  // namespace quvex
