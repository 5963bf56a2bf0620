#include "solver/node/nodenot.h"

#include <gtest/gtest.h>

#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeNot, IsOneExactlyWhereItsOperandIsZero) {
  NodeStage negation(NodeType::Not, "b");
  EXPECT_EQ(negation.set(0, 0).integer(), 1);
  EXPECT_EQ(negation.set(0, 1).integer(), 0);
  EXPECT_EQ(negation.setTentative(0, 0).evalInteger(), 1);
}

TEST(NodeNot, IsFixedWithItsOperand) {
  NodeStage negation(NodeType::Not, "b");
  EXPECT_EQ(negation.setIntegerBounds(0, 0, 0).bounds(), (Bounds{1, 1}));
  EXPECT_EQ(negation.setIntegerBounds(0, 1, 1).bounds(), (Bounds{0, 0}));
  EXPECT_EQ(negation.setIntegerBounds(0, 0, 1).bounds(), (Bounds{0, 1}));
}

TEST(NodeNot, TurnsPicksAround) {
  NodeStage negation(NodeType::Not, "b");
  negation.set(0, 0).refresh();
  EXPECT_EQ(negation.decrease(), "a+ 0");
  EXPECT_EQ(negation.increase(), "none 0");
  EXPECT_EQ(negation.change(), "a~ 0");
  negation.set(0, 1).refresh();
  EXPECT_EQ(negation.decrease(), "none 0");
  EXPECT_EQ(negation.increase(), "a- 0");
}

TEST(NodeNot, PicksReadItsCommittedValue) {
  NodeStage negation(NodeType::Not, "b");
  negation.set(0, 0).refresh();
  negation.dag->tentativeValue[negation.id] = 0;
  EXPECT_EQ(negation.decrease(), "a+ 0");
}

}  // namespace
}  // namespace quvex
