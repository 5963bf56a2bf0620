#include <gtest/gtest.h>

#include <memory>

#include "solver/move/movekcycle.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesimplekflip.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

/// A feasible assignment whose constant objective is on its bound: targeting never finds
/// anything.
class Targeting : public testing::Test {
 protected:
  AssignmentGraph model{5, Places::Limited};

  /// What an attempt changes, whether it is built, and the state that it leaves.
  struct Attempt {
    std::vector<NodeId> changed;
    bool isBuilt;
    RandomState state;
    friend bool operator==(const Attempt&, const Attempt&) = default;
  };

  Attempt attempt(Move& move, RandomState seed) {
    model.state() = seed;
    const bool isBuilt = move.apply();
    Attempt result{touched(*model.dag), isBuilt, model.state()};
    move.conclude(Outcome::Infeasible);
    return result;
  }

  /// At rate 100 the percentage is drawn and nothing follows from it; at rate 0 it is not drawn.
  void expectFallback(std::unique_ptr<Move> targeted, std::unique_ptr<Move> untargeted) {
    for (const RandomState seed : someSeeds(40)) {
      EXPECT_EQ(attempt(*targeted, seed), attempt(*untargeted, stepped(seed, 1))) << targeted->name;
    }
  }

  template <class Flip>
  void expectFlipFallback(std::uint32_t k) {
    expectFallback(std::make_unique<Flip>(k, 1, 100, *model.structure, *model.dag),
                   std::make_unique<Flip>(k, 1, 0, *model.structure, *model.dag));
  }
  template <class Chain>
  void expectChainFallback(std::uint32_t k) {
    expectFallback(std::make_unique<Chain>(k, 1, 100, *model.structure),
                   std::make_unique<Chain>(k, 1, 0, *model.structure));
  }
  template <class Fork>
  void expectForkFallback(std::uint32_t k) {
    expectFallback(std::make_unique<Fork>(k, 2, 1, 100, *model.structure),
                   std::make_unique<Fork>(k, 2, 1, 0, *model.structure));
  }
};

TEST_F(Targeting, FallsBackOnTheDrawnWayWhenNothingHasRoom) {
  NodeId decision = kNone;
  ASSERT_FALSE(pickTarget(*model.dag, model.state(), decision));
  expectFlipFallback<MoveSimpleKFlip>(2);
  expectFlipFallback<MoveKSwap>(3);
  expectChainFallback<MoveKPath>(3);
  expectChainFallback<MoveKCycle>(4);
  expectForkFallback<MoveKLForkPath>(3);
  expectForkFallback<MoveKLForkCycle>(4);
}

TEST_F(Targeting, IsNoPartOfRolls) {
  MoveKRoll targeted(3, 1, 100, *model.structure);
  MoveKRoll untargeted(3, 1, 0, *model.structure);
  for (const RandomState seed : someSeeds(40)) EXPECT_EQ(attempt(targeted, seed), attempt(untargeted, seed));
}

}  // namespace
}  // namespace quvex
