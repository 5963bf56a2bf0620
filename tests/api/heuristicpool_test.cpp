#include "api/heuristicpool.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/heuristicdescent.h"
#include "solver/move/moveweights.h"
#include "support/apipeer.h"
#include "support/failure.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

using Parameters = std::map<std::string, int>;

/// Without these the list of moves is the table's alone.
const Parameters kTableOnly = {{"advancedMovesEnabled", 0}};

/// The moves of a search, with their weights: "1-SimpleFlip 1".
std::vector<std::string> solvedMovesOf(Quvex& quvex) {
  quvex.setDisplayCallback(nullptr, nullptr);
  quvex.solve();
  std::vector<std::string> moves;
  for (const auto& move : ApiPeer::heuristic(quvex, 0).moves) {
    moves.push_back(move->name + " " + std::to_string(move->poolWeight));
  }
  return moves;
}

/// The same for a model with parameters that are set before it is closed.
std::vector<std::string> movesOf(void (*build)(QVModel&), const Parameters& parameters) {
  Quvex quvex;
  build(*quvex.getModel());
  for (const auto& [key, value] : parameters) quvex.getParam()->setAdvancedParam(key, value);
  closeQuietly(quvex, 1);
  return solvedMovesOf(quvex);
}

using Moves = std::vector<std::string>;

/// Three decisions, each in one slack sum over all of them; the computed bound of the objective is out of reach.
void buildOneSlackSum(QVModel& model) {
  const auto x = createDecisions(model, 3);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x[0], x[1], x[2]);
  model.addConstraint(model.createExpression(QVOperator::Leq, sum, model.createConstant(2)));
  model.addObjective(sum, QVObjectiveDirection::Maximize);
}

/// Two rows of three, of each exactly one.
void buildTwoEqualities(QVModel& model) {
  const auto x = createDecisions(model, 6);
  for (const std::size_t row : {0U, 3U}) {
    QVExpression* sum = model.createExpression(QVOperator::Sum, x[row], x[row + 1], x[row + 2]);
    model.addConstraint(model.createExpression(QVOperator::Eq, sum, model.createConstant(1)));
  }
  model.addObjective(model.createExpression(QVOperator::And, x[0], x[4]), QVObjectiveDirection::Maximize);
}

void buildWithoutConstraints(QVModel& model) {
  const auto x = createDecisions(model, 3);
  model.addObjective(model.createExpression(QVOperator::Sum, x[0], x[1], x[2]), QVObjectiveDirection::Maximize);
}

void buildWithoutDecisions(QVModel& model) {
  model.addObjective(model.createConstant(3), QVObjectiveDirection::Maximize);
}

TEST(HeuristicPool, FillsTheTableOfASlackSumInOrder) {
  EXPECT_EQ(movesOf(buildOneSlackSum, kTableOnly),
            (Moves{"1-SimpleFlip 1",                                                          //
                   "1-Balance 4",     "1-Swap 4",        "1-Flip 8",                          //
                   "2-Balance 2",     "2-Flip 8",        "2-Path 6",       "2-Cycle 2",       //
                   "3-Flip 2",        "3-Path 6",        "3-Cycle 4",                         //
                   "3-2-ForkCycle 2", "3-3-ForkCycle 1", "3-2-ForkPath 1", "3-3-ForkPath 1",  //
                   "4-Path 8",        "4-Cycle 8",                                            //
                   "5-Path 8",        "5-Cycle 8",                                            //
                   "6-Path 4",        "6-Cycle 4",                                            //
                   "7-Path 2",        "7-Cycle 2",                                            //
                   "8-Path 1",        "8-Cycle 1"}));
}

TEST(HeuristicPool, EqualitySumsBringRollsAndMirrorsAndTakeFlips) {
  const Moves moves = movesOf(buildTwoEqualities, {{"advancedMovesEnabled", 0}, {"neighborhoodSize", 3}});
  EXPECT_EQ(moves, (Moves{"1-SimpleFlip 1",                                                  //
                          "1-Balance 4", "1-Swap 4",                                         //
                          "2-Balance 2", "2-Swap 2", "2-Cycle 2", "2-Roll 8", "2-Mirror 8",  //
                          "3-Balance 1", "3-Swap 1", "3-Cycle 4", "3-2-ForkCycle 2", "3-3-ForkCycle 1"}));
}

TEST(HeuristicPool, SimpleFlipIsAlwaysThere) {
  EXPECT_EQ(movesOf(buildWithoutDecisions, {}).front(), "1-SimpleFlip 1");
  EXPECT_EQ(movesOf(buildWithoutDecisions, kTableOnly), Moves{"1-SimpleFlip 1"});
}

TEST(HeuristicPool, NeighborhoodSizeOneKeepsSingleMoves) {
  EXPECT_EQ(movesOf(buildOneSlackSum, {{"neighborhoodSize", 1}, {"advancedMovesEnabled", 0}}),
            (Moves{"1-SimpleFlip 1", "1-Balance 4", "1-Swap 4", "1-Flip 8"}));
  const Moves withAdvanced = movesOf(buildOneSlackSum, {{"neighborhoodSize", 1}});
  ASSERT_GT(withAdvanced.size(), 6U);
  EXPECT_EQ(Moves(withAdvanced.begin() + 4, withAdvanced.begin() + 7),
            (Moves{"2-MoveSequence 1", "3-MoveSequence 1", "4-MoveSequence 1"}));
}

TEST(HeuristicPool, SimulatingMovesComeWithAConstraintTree) {
  const Parameters noSequences = {{"neighborhoodSize", 0}, {"moveSequenceEnabled", 0}};
  EXPECT_EQ(movesOf(buildOneSlackSum, noSequences),
            (Moves{"1-SimpleFlip 1",                                      //
                   "2-BinPacking 1", "3-BinPacking 1", "4-BinPacking 1",  //
                   "2-EjectionChain 1", "3-EjectionChain 1", "4-EjectionChain 1"}));
  EXPECT_EQ(movesOf(buildWithoutDecisions, noSequences), Moves{"1-SimpleFlip 1"});
}

TEST(HeuristicPool, PutsTheAdvancedMovesLast) {
  const Moves moves = movesOf(buildOneSlackSum, {{"neighborhoodSize", 0}});
  EXPECT_EQ(moves, (Moves{"1-SimpleFlip 1",                                            //
                          "2-MoveSequence 1", "3-MoveSequence 1", "4-MoveSequence 1",  //
                          "2-BinPacking 1", "3-BinPacking 1", "4-BinPacking 1",        //
                          "2-EjectionChain 1", "3-EjectionChain 1", "4-EjectionChain 1"}));
}

TEST(HeuristicPool, RepairsNothingWithoutAConstraintTree) {
  const Moves moves = movesOf(buildWithoutDecisions, {});
  EXPECT_EQ(moves, (Moves{"1-SimpleFlip 1", "2-MoveSequence 1", "3-MoveSequence 1", "4-MoveSequence 1"}));
}

TEST(HeuristicPool, RepairsNothingOnAModelWithoutConstraints) {
  const Moves moves = movesOf(buildWithoutConstraints, {{"neighborhoodSize", 0}});
  EXPECT_EQ(moves, (Moves{"1-SimpleFlip 1", "2-MoveSequence 1", "3-MoveSequence 1", "4-MoveSequence 1"}));
}

TEST(HeuristicPool, RepairsNothingOnAModelThatWasClosedWithoutATree) {
  // Whether there is a tree is decided when the model is closed, what the pool holds when it is solved.
  for (const char* key : {"advancedMovesEnabled", "moveSequenceEnabled"}) {
    Quvex quvex;
    buildOneSlackSum(*quvex.getModel());
    QVParam& param = *quvex.getParam();
    param.setAdvancedParam("neighborhoodSize", 0);
    if (key == std::string("moveSequenceEnabled")) {
      param.setAdvancedParam("moveBinPackingEnabled", 0);
      param.setAdvancedParam("moveEjectionChainEnabled", 0);
    }
    param.setAdvancedParam(key, 0);
    closeQuietly(quvex, 1);
    for (const char* wanted : {key, "moveBinPackingEnabled", "moveEjectionChainEnabled"}) {
      param.setAdvancedParam(wanted, 1);
    }
    EXPECT_EQ(solvedMovesOf(quvex),
              (Moves{"1-SimpleFlip 1", "2-MoveSequence 1", "3-MoveSequence 1", "4-MoveSequence 1"}))
        << key;

    quvex.getModel()->open();
    quvex.getModel()->close();
    EXPECT_EQ(solvedMovesOf(quvex).size(), 10U) << "closed again, it has one";
  }
}

TEST(HeuristicPool, SizesBeyondTheTableAddNothing) {
  EXPECT_EQ(movesOf(buildTwoEqualities, {{"neighborhoodSize", 2147483647}}),
            movesOf(buildTwoEqualities, {{"neighborhoodSize", 11}}));
  EXPECT_EQ(weightOf(kRollWeights, 11), 8U);
  EXPECT_EQ(weightOf(kRollWeights, 12), 0U);
  EXPECT_EQ(weightOf(kRollWeights, 0), 0U);
}

TEST(HeuristicPool, EverySwitchTakesItsMovesOut) {
  const std::map<std::string, std::string> words = {
      {"moveBalanceEnabled", "-Balance"},
      {"moveSwapEnabled", "-Swap"},
      {"moveFlipEnabled", "-Flip"},
      {"movePathEnabled", "-Path"},
      {"moveCycleEnabled", "-Cycle"},
      {"moveForkCycleEnabled", "-ForkCycle"},
      {"moveForkPathEnabled", "-ForkPath"},
      {"moveSequenceEnabled", "-MoveSequence"},
      {"moveBinPackingEnabled", "-BinPacking"},
      {"moveEjectionChainEnabled", "-EjectionChain"},
  };
  const Moves all = movesOf(buildOneSlackSum, {});
  for (const auto& [key, word] : words) {
    Moves expected;
    for (const std::string& move : all) {
      if (move.find(word) == std::string::npos) expected.push_back(move);
    }
    EXPECT_LT(expected.size(), all.size()) << key;
    EXPECT_EQ(movesOf(buildOneSlackSum, {{key, 0}}), expected) << key;
  }
  for (const char* key : {"moveRollEnabled", "moveMirrorEnabled"}) {
    EXPECT_EQ(movesOf(buildTwoEqualities, {{key, 0}}).size() + 1, movesOf(buildTwoEqualities, {}).size()) << key;
  }
}

TEST(HeuristicPool, AnnealingLevelSelectsTheHeuristic) {
  for (const int level : {0, 1, 9}) {
    Quvex quvex;
    buildOneSlackSum(*quvex.getModel());
    closeQuietly(quvex, 1);
    quvex.getParam()->setAnnealingLevel(level);
    quvex.solve();
    Heuristic& heuristic = ApiPeer::heuristic(quvex, 0);
    EXPECT_EQ(dynamic_cast<HeuristicDescent*>(&heuristic) != nullptr, level == 0);
    const auto* annealing = dynamic_cast<HeuristicAutoAnnealing*>(&heuristic);
    if (level > 0) {
      ASSERT_NE(annealing, nullptr);
      EXPECT_EQ(annealing->getMemorySize(), static_cast<std::uint32_t>(level) + 1);
    }
  }
}

TEST(HeuristicPool, TargetingLevelsAboveTenAreRefusedByTheMoves) {
  const std::string text = "Targeting rate must be smaller than 100.";
  EXPECT_EQ(failureOf([] { movesOf(buildOneSlackSum, {{"targetingLevel", 10}}); }), "no failure");
  EXPECT_EQ(failureOf([] {
              movesOf(buildOneSlackSum, {{"targetingLevel", 11}});
            }),
            refusal("MoveKFlip::MoveKFlip", text));
  EXPECT_EQ(failureOf([] {
              movesOf(buildOneSlackSum, {{"targetingLevel", 11}, {"neighborhoodSize", 0}});
            }),
            refusal("MoveSequence::MoveSequence", text));
}

TEST(HeuristicPool, WithoutDecisionsEveryIterationIsInfeasible) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  // The bounds of a cosine are -1 and 1, whatever its operand: the search goes on.
  model.addObjective(model.createExpression(QVOperator::Cos, model.createConstant(1.0)),
                     QVObjectiveDirection::Maximize);
  quvex.getParam()->setAdvancedParam("preprocessEnabled", 0);
  quvex.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  closeQuietly(quvex, 20);
  quvex.solve();
  std::uint32_t nbAttempted = 0;
  for (const auto& move : ApiPeer::heuristic(quvex, 0).moves) {
    nbAttempted += move->nbAttempted;
    EXPECT_EQ(move->nbInfeasibles, move->nbAttempted) << move->name;
  }
  EXPECT_EQ(nbAttempted, 20U);
}

}  // namespace
}  // namespace quvex
