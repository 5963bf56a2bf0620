#include "api/quvex.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>

#include "api/qvexception.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/qvstatistics.h"
#include "support/apipeer.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

void closeTrivialModel(Quvex& quvex) {
  QVModel& model = *quvex.getModel();
  model.addObjective(model.createExpression(QVOperator::Bool), QVObjectiveDirection::Maximize);
  model.close();
}

TEST(Quvex, StartsInModelingWithAnEmptyModel) {
  Quvex quvex;
  EXPECT_EQ(quvex.getState(), QVState::Modeling);
  EXPECT_EQ(quvex.getModel()->getNbExpressions(), 0);
  EXPECT_EQ(quvex.getModel()->getQuvex(), &quvex);
  EXPECT_EQ(quvex.getParam()->getQuvex(), &quvex);
  EXPECT_FALSE(ApiPeer::isStopRequested(quvex));
  EXPECT_FALSE(ApiPeer::wasStarted(quvex));
}

TEST(Quvex, StateNumbersArePublic) {
  EXPECT_EQ(static_cast<int>(QVState::Modeling), 0);
  EXPECT_EQ(static_cast<int>(QVState::Running), 1);
  EXPECT_EQ(static_cast<int>(QVState::Paused), 2);
  EXPECT_EQ(static_cast<int>(QVState::Stopped), 3);
}

TEST(Quvex, ClosingAndOpeningTheModelSwitchTheState) {
  Quvex quvex;
  closeTrivialModel(quvex);
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(failureOf([&] { (void)quvex.getModel(); }), "no failure");
  quvex.getModel()->open();
  EXPECT_EQ(quvex.getState(), QVState::Modeling);
}

TEST(Quvex, FollowsTheStateRules) {
  using enum StateRule;
  Quvex quvex;
  closeTrivialModel(quvex);
  quvex.getParam()->setVerbosity(0);
  quvex.solve();
  const auto expect = [&](StateRule rule, const std::string& method, const auto& call) {
    expectRule(quvex, rule, "quvex::Quvex::" + method, call);
  };
  expect(NotRunning, "getModel", [&] { (void)quvex.getModel(); });
  expect(NotRunning, "getParam", [&] { (void)quvex.getParam(); });
  expect(NotRunning, "toString", [&] { (void)quvex.toString(); });
  expect(NotRunning, "saveEnvironment", [&] { quvex.saveEnvironment("unused.qvm"); });
  expect(PausedOrStopped, "getNbPhases", [&] { (void)quvex.getNbPhases(); });
  expect(PausedOrStopped, "getPhase", [&] { (void)quvex.getPhase(0); });
  expect(PausedOrStopped, "getSolution", [&] { (void)quvex.getSolution(); });
  expect(PausedOrStopped, "getStatistics", [&] { (void)quvex.getStatistics(); });
  expect(PausedOrStopped, "getInfo", [&] { (void)quvex.getInfo(); });
  expect(StoppedOnly, "createPhase", [&] { quvex.createPhase(); });
  expect(StoppedOnly, "solve", [&] { quvex.solve(); });
  expect(StoppedOnly, "setDisplayCallback", [&] { quvex.setDisplayCallback(nullptr, nullptr); });
  expect(ModelingOnly, "loadEnvironment", [&] { quvex.loadEnvironment("unused.qvm"); });
}

TEST(Quvex, FailuresTellTheirSource) {
  Quvex quvex;
  try {
    quvex.solve();
    FAIL() << "solve must refuse an open model";
  } catch (const QVException& failure) {
    EXPECT_NE(failure.getFileName().find("src/api/quvex"), std::string::npos);
    EXPECT_EQ(failure.getFunctionName(), "quvex::Quvex::solve");
    EXPECT_EQ(failure.getExplanation(), kStoppedOnlyText);
    EXPECT_GT(failure.getLineNumber(), 0);
    EXPECT_EQ(failure.what(), failure.toString());
  }
}

TEST(Quvex, PhasesAreKeptInOrderOfCreation) {
  Quvex quvex;
  closeTrivialModel(quvex);
  EXPECT_EQ(quvex.getNbPhases(), 0);
  EXPECT_EQ(failureOf([&] { (void)quvex.getPhase(0); }),
            refusal("Quvex::getPhase",
                    "The phase with index 0 does not exist.\nOnly indices from 0 to -1 are currently allowed."));
  QVPhase* first = quvex.createPhase();
  QVPhase* second = quvex.createPhase();
  EXPECT_EQ(quvex.getNbPhases(), 2);
  EXPECT_EQ(quvex.getPhase(0), first);
  EXPECT_EQ(quvex.getPhase(1), second);
  EXPECT_EQ(failureOf([&] { (void)quvex.getPhase(2); }),
            refusal("Quvex::getPhase",
                    "The phase with index 2 does not exist.\nOnly indices from 0 to 1 are currently allowed."));
}

TEST(Quvex, GivesTheObjectsItOwns) {
  Quvex quvex;
  closeTrivialModel(quvex);
  EXPECT_EQ(quvex.getSolution()->getQuvex(), &quvex);
  EXPECT_EQ(quvex.getStatistics()->getQuvex(), &quvex);
}

TEST(Quvex, DescribesModelParametersAndPhases) {
  Quvex quvex;
  EXPECT_EQ(quvex.toString(),
            "Model: \n"
            "  expressions = 0, operands = 0\n"
            "  decisions = 0, constraints = 0, objectives = 0\n\n"
            "Param: \n"
            "  no time limit, no iteration limit\n"
            "  seed = 0, nb threads = 2, annealing level = 1\n\n"
            "Objectives:\n\n"
            "Phases:\n"
            "  (no phases)\n\n");

  closeTrivialModel(quvex);
  quvex.createPhase()->setTimeLimit(10);
  quvex.createPhase()->setIterationLimit(7);
  const std::string text = quvex.toString();
  EXPECT_EQ(text.substr(text.find("Phases:")),
            "Phases:\n"
            "  Phase 0: time limit = 10 sec, no iteration limit, optimized objective = 0\n"
            "  Phase 1: no time limit, iteration limit = 7, optimized objective = 0\n\n");
}

TEST(Quvex, InfoNeedsASolveInAnyState) {
  Quvex quvex;
  const std::string text =
      refusal("Quvex::getInfo", "This method cannot be called if the solver has not been started at least once.");
  EXPECT_EQ(failureOf([&] { (void)quvex.getInfo(); }), text);
  closeTrivialModel(quvex);
  EXPECT_EQ(failureOf([&] { (void)quvex.getInfo(); }), text);
}

TEST(Quvex, StopWithoutASearchChangesNothing) {
  Quvex quvex;
  quvex.stop();
  EXPECT_FALSE(ApiPeer::isStopRequested(quvex));
  closeTrivialModel(quvex);
  quvex.stop();
  EXPECT_FALSE(ApiPeer::isStopRequested(quvex));
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
}

TEST(Quvex, StopAfterASearchChangesNothing) {
  Quvex quvex;
  closeTrivialModel(quvex);
  quvex.getParam()->setVerbosity(0);
  quvex.solve();
  quvex.stop();
  EXPECT_TRUE(ApiPeer::wasStarted(quvex));
  EXPECT_FALSE(ApiPeer::isStopRequested(quvex));
}

TEST(Quvex, AsksForTheStateBeforeTheIndexOfAPhase) {
  Quvex quvex;
  EXPECT_EQ(failureOf([&] { (void)quvex.getPhase(0); }), refusal("Quvex::getPhase", kPausedOrStoppedText));
}

TEST(Quvex, EnvironmentsNeedAFileName) {
  Quvex quvex;
  const std::string text = "Argument fileName cannot be an empty string.";
  EXPECT_EQ(failureOf([&] { quvex.saveEnvironment(""); }), refusal("Quvex::saveEnvironment", text));
  EXPECT_EQ(failureOf([&] { quvex.loadEnvironment(""); }), refusal("Quvex::loadEnvironment", text));
}

TEST(Quvex, EnvironmentsAreLoadedIntoAnEmptyOpenModelOnly) {
  Quvex quvex;
  (void)quvex.getModel()->createConstant(1);
  EXPECT_EQ(failureOf([&] { quvex.loadEnvironment("any.qvm"); }),
            refusal("Quvex::loadEnvironment", "Cannot load the given environment. The current model must be empty."));
  closeTrivialModel(quvex);
  EXPECT_EQ(failureOf([&] { quvex.loadEnvironment("any.qvm"); }), refusal("Quvex::loadEnvironment", kModelingOnlyText));
}

TEST(Quvex, EnvironmentsAreRecognisedByTheirFirstBytes) {
  std::ofstream("quvex_test_unknown.qvm") << "neither of the two formats";
  Quvex quvex;
  EXPECT_EQ(failureOf([&] { quvex.loadEnvironment("quvex_test_unknown.qvm"); }),
            refusal("Quvex::loadEnvironment", "The given file format is not recognized."));
}

TEST(Quvex, EnvironmentsSurviveAFile) {
  {
    Quvex quvex;
    const Knapsack knapsack(*quvex.getModel());
    knapsack.decisions[3]->setName("fourth");
    QVPhase* phase = closeQuietly(quvex, 500, 3);
    phase->setTimeLimit(77);
    quvex.getParam()->setSeed(5);
    quvex.getParam()->setAdvancedParam("moveSwapEnabled", 0);
    quvex.getParam()->setObjectiveBound(0, 42);
    knapsack.decisions[3]->setValue(1);
    quvex.saveEnvironment("quvex_test_knapsack.qvm");
  }
  Quvex quvex;
  quvex.loadEnvironment("quvex_test_knapsack.qvm");
  EXPECT_EQ(quvex.getState(), QVState::Stopped);
  EXPECT_EQ(quvex.getModel()->getNbDecisions(), 8);
  EXPECT_EQ(quvex.getModel()->getExpression("fourth")->getValue(), 1);
  EXPECT_EQ(quvex.getPhase(0)->getIterationLimit(), 500);
  EXPECT_EQ(quvex.getPhase(0)->getTimeLimit(), 77);
  EXPECT_EQ(quvex.getParam()->getSeed(), 5);
  EXPECT_EQ(quvex.getParam()->getNbThreads(), 3);
  EXPECT_EQ(quvex.getParam()->getAdvancedParam("moveSwapEnabled"), 0);
  EXPECT_EQ(quvex.getParam()->getObjectiveBound(0), 42);
}

TEST(Quvex, AnOpenModelIsSavedAndClosedByLoading) {
  {
    Quvex quvex;
    const Knapsack knapsack(*quvex.getModel());
    quvex.saveEnvironment("quvex_test_open.qvm");
    EXPECT_EQ(quvex.getState(), QVState::Modeling);
  }
  Quvex quvex;
  quvex.loadEnvironment("quvex_test_open.qvm");
  EXPECT_TRUE(quvex.getModel()->isClosed());
  EXPECT_EQ(quvex.getNbPhases(), 0);
}

}  // namespace
}  // namespace quvex
