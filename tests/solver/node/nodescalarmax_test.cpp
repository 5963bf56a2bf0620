#include "solver/node/nodescalarmax.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeScalarMax, MirrorsTheMinimum) {
  AggregateStage max(NodeType::ScalarMax, "iii", {2, -1, 0});
  max.set(0, 3, 0, 9).set(1, 4, 0, 9).set(2, 5, 0, 9).refresh();
  EXPECT_EQ(max.dag->nodeValue[max.id], 6);
  EXPECT_EQ(max.bounds(), (Bounds{0, 18}));
  EXPECT_EQ(max.commitInteger(0, 0), 0);
  EXPECT_EQ(
      max.dump(),
      "isSupportsInit=1\nisIncreaseCandidatesInit=1\nsupports= 0 2\nincreaseCandidates= 0\ncoefficients 2 -1 0\n");
}

TEST(NodeScalarMax, ANegativeCoefficientTurnsTheRequestRound) {
  AggregateStage max(NodeType::ScalarMax, "ii", {2, -1});
  max.set(0, -9, -9, -9).set(1, 3, 0, 9).refresh();
  EXPECT_EQ(max.increase(), "b- 0");
  EXPECT_EQ(max.decrease(), "b+ 0");
}

}  // namespace
}  // namespace quvex
