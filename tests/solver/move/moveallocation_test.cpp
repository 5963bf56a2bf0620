#include <gtest/gtest.h>

#include <memory>

#include "allocationcounter.h"
#include "solver/kernel/heuristicdescent.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movefilter.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesimplekflip.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

class MoveAllocation : public testing::Test {
 protected:
  AssignmentGraph model{12, Places::Limited};
  HeuristicDescent heuristic{*model.dag};

  void attempt(Move& move, int times) {
    for (int i = 0; i < times; ++i) {
      const bool isBuilt = move.apply() && move.evaluateLevel(0);
      move.conclude(isBuilt && !move.constraintsWorse() ? Outcome::Accepted : Outcome::Infeasible);
    }
  }

  void expectNone(std::unique_ptr<Move> move) {
    attempt(*move, 2000);
    const std::size_t before = allocationCount();
    attempt(*move, 2000);
    EXPECT_EQ(allocationCount() - before, 0U) << move->name;
  }
};

TEST_F(MoveAllocation, IsOverAfterWarmUp) {
  AutonomousStructure& structure = *model.structure;
  Dag& dag = *model.dag;
  expectNone(std::make_unique<MoveKFlip>(1, 1, 50, structure, dag));
  for (const std::uint32_t k : {1U, 2U, 5U, 8U}) {
    expectNone(std::make_unique<MoveSimpleKFlip>(k, 1, 50, structure, dag));
    expectNone(std::make_unique<MoveKSwap>(k, 1, 50, structure, dag));
    expectNone(std::make_unique<MoveKBalance>(k, 1, structure, dag));
  }
  for (const std::uint32_t k : {2U, 3U, 4U, 8U}) {
    expectNone(std::make_unique<MoveKPath>(k, 1, 50, structure));
    expectNone(std::make_unique<MoveKCycle>(k, 1, 50, structure));
    expectNone(std::make_unique<MoveKLForkPath>(k, 2, 1, 50, structure));
    expectNone(std::make_unique<MoveKLForkCycle>(k, 2, 1, 50, structure));
    expectNone(std::make_unique<MoveKRoll>(k, 1, 50, structure));
    expectNone(std::make_unique<MoveKMirror>(k, 1, 50, structure));
  }
  expectNone(std::make_unique<MoveSequence>(4, 2, 50, heuristic, structure, dag));
}

TEST_F(MoveAllocation, IsOverForRepairsAfterWarmUp) {
  // A simulation over the same graph, told of every commit.
  DagStructures withTree;
  withTree.build(model.fixed, true);
  AutonomousStructure structure(*model.dag, 1, withTree);
  for (const std::uint32_t size : {2U, 3U, 4U}) {
    expectNone(std::make_unique<MoveBinPacking>(50, size, size, 1, structure, *model.dag));
    expectNone(std::make_unique<MoveEjectionChain>(50, size, size, 1, structure, *model.dag));
    expectNone(std::make_unique<MoveKSwap>(size, 1, 50, structure, *model.dag));
  }
}

TEST_F(MoveAllocation, IsOverForTheFilterAfterWarmUp) {
  for (std::uint32_t k = 1; k <= 8; ++k) {
    heuristic.addMove(std::make_unique<MoveSimpleKFlip>(k, 4, 50, *model.structure, *model.dag));
  }
  MoveFilter filter(heuristic, true);
  filter.onStart();
  const auto adapt = [&](int times) {
    for (int i = 0; i < times; ++i) {
      for (const auto& move : heuristic.moves) attempt(*move, 3);
      heuristic.iterations += 1000;
      filter.onIteration();
    }
  };
  adapt(300);
  const std::size_t before = allocationCount();
  adapt(300);
  EXPECT_EQ(allocationCount() - before, 0U);
}

}  // namespace
}  // namespace quvex
