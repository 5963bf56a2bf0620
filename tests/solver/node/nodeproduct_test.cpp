#include "solver/node/nodeproduct.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

TEST(NodeProduct, MultipliesItsOperands) {
  AggregateStage product(NodeType::Product, "iib");
  EXPECT_EQ(product.set(0, 3, -9, 9).set(1, -4, -9, 9).set(2, 1).integer(), -12);
  EXPECT_EQ(product.commitInteger(1, 5), 15);
  EXPECT_TRUE(product.isInit());
}

TEST(NodeProduct, AZeroHidesTheOtherChanges) {
  AggregateStage product(NodeType::Product, "iii");
  product.set(0, 0, 0, 9).set(1, 2, 0, 9).set(2, 3, 0, 9).refresh();
  EXPECT_EQ(product.commitInteger(1, 4), 0);
  EXPECT_TRUE(product.isInit());
  EXPECT_EQ(product.commitInteger(0, 5), 60) << "the hidden product was kept up to date";
}

TEST(NodeProduct, TheLastZeroLeavesWithoutALookAtOthers) {
  AggregateStage product(NodeType::Product, "iii");
  product.set(0, 0, 0, 9).set(1, 2, 0, 9).set(2, 3, 0, 9).refresh();
  product.set(1, 7);  // behind its back
  EXPECT_EQ(product.move(0, 5).evalInteger(), 30);
}

TEST(NodeProduct, CountsItsZeros) {
  AggregateStage product(NodeType::Product, "iii");
  product.set(0, 0, 0, 9).set(1, 0, 0, 9).set(2, 3, 0, 9).refresh();
  EXPECT_EQ(product.commitInteger(0, 2), 0);
  EXPECT_EQ(product.dump(), "isZeroNodesInit= 1\nzeroNodes= 1\n");
  EXPECT_EQ(product.move(1, 4).move(2, 0).evalInteger(), 0);
  product.commit();
  EXPECT_EQ(product.dump(), "isZeroNodesInit= 1\nzeroNodes= 2\n");
  EXPECT_EQ(product.commitInteger(2, 5), 40);
  EXPECT_TRUE(product.isInit());
}

TEST(NodeProduct, EvalLeavesTheRunningProductAlone) {
  AggregateStage product(NodeType::Product, "ii");
  product.set(0, 2, 0, 9).set(1, 3, 0, 9).refresh();
  EXPECT_EQ(product.move(0, 5).evalInteger(), 15);
  product.rollback();
  EXPECT_TRUE(product.isInit());
  EXPECT_EQ(product.move(1, 4).evalInteger(), 8);
}

TEST(NodeProduct, IsInitTestsTheRunningProduct) {
  AggregateStage product(NodeType::Product, "iii");
  product.set(0, 0, 0, 9).set(1, 2, 0, 9).set(2, 3, 0, 9).refresh();
  product.set(1, 4);
  EXPECT_FALSE(product.isInit()) << "the value is still 0 and the zeros agree";
}

TEST(NodeProduct, WrapsSilently) {
  AggregateStage product(NodeType::Product, "ii");
  EXPECT_EQ(product.setInteger(0, std::int64_t{1} << 62).set(1, 4).integer(), 0);
  EXPECT_EQ(product.move(1, 2).evalInteger(), 0) << "what has wrapped to zero stays there";
}

TEST(NodeProduct, TheQuotientWithoutAValueIsAFailure) {
  AggregateStage product(NodeType::Product, "ii");
  product.setInteger(0, std::int64_t{1} << 62).set(1, -2).refresh();
  ASSERT_EQ(product.dag->nodeValue[product.id], kLowestInt);
  product.setInteger(0, -1);  // behind its back: the running product is still the lowest integer
  const Failure failure = failureOf([&] { product.move(0, 3).evalInteger(); });
  EXPECT_EQ(failure.function, "quvex::NodeProductTemplate<quvex::SubsetMASK<unsigned char>>::eval");
  EXPECT_TRUE(failure.isKernel);
}

TEST(NodeProduct, PicksTakeAnyChangeOfAnyOperand) {
  AggregateStage product(NodeType::Product, "iii");
  product.refresh();
  for (RandomState state = 0; state < 20; ++state) {
    EXPECT_EQ(product.decrease(state * 99991), product.anyChange(state * 99991));
    EXPECT_EQ(product.increase(state * 99991), product.anyChange(state * 99991));
    EXPECT_EQ(product.change(state * 99991), product.anyChange(state * 99991));
  }
  EXPECT_EQ(product.node().nbDecreaseCandidates(*product.dag, product.id), 0U);
}

Bounds boundsOf(std::initializer_list<std::pair<std::int64_t, std::int64_t>> ranges) {
  AggregateStage product(NodeType::Product, std::string(ranges.size(), 'i'));
  OperandPos p = 0;
  for (const auto& [min, max] : ranges) product.setIntegerBounds(p++, min, max);
  return product.bounds();
}

TEST(NodeProduct, BoundsOfOneSignMultiplyTheEnds) {
  EXPECT_EQ(boundsOf({{2, 3}, {4, 5}}), (Bounds{8, 15}));
  EXPECT_EQ(boundsOf({{2, 3}, {-5, -4}}), (Bounds{-15, -8}));
  EXPECT_EQ(boundsOf({{-3, -2}, {-5, -4}}), (Bounds{8, 15}));
  EXPECT_EQ(boundsOf({{0, 1}, {0, 7}}), (Bounds{0, 7}));
}

TEST(NodeProduct, BoundsTurnRoundWhereItCostsLeast) {
  EXPECT_EQ(boundsOf({{-2, 3}, {1, 5}}), (Bounds{-10, 15}));
  EXPECT_EQ(boundsOf({{-2, 3}, {-9, 10}}), (Bounds{-27, 30})) << "9 of 10 is a better ratio than 2 of 3";
  EXPECT_EQ(boundsOf({{-5, 5}}), (Bounds{-5, 5})) << "the ends change places";
  EXPECT_EQ(boundsOf({{-1, 1}, {-3, -2}}), (Bounds{-3, 3}));
  EXPECT_EQ(boundsOf({{-4, 0}, {1, 2}}), (Bounds{-8, 0})) << "a maximum of 0 flips nothing";
}

TEST(NodeProduct, BoundsEncloseAllProductsOfSmallRanges) {
  RandomState state = 11;
  for (int i = 0; i < 2000; ++i) {
    std::int64_t min[3];
    std::int64_t max[3];
    for (int k = 0; k < 3; ++k) {
      min[k] = static_cast<std::int64_t>(rand(state, 9)) - 5;
      max[k] = min[k] + rand(state, 6);
    }
    const Bounds bounds = boundsOf({{min[0], max[0]}, {min[1], max[1]}, {min[2], max[2]}});
    for (int corner = 0; corner < 8; ++corner) {
      std::int64_t value = 1;
      for (int k = 0; k < 3; ++k) value *= ((corner >> k) & 1) != 0 ? max[k] : min[k];
      EXPECT_GE(value, bounds.min);
      EXPECT_LE(value, bounds.max);
    }
  }
}

TEST(NodeProduct, BoundsSaturateAndASaturatedProductIsNotDivided) {
  constexpr std::int64_t big = std::int64_t{1} << 40;
  EXPECT_EQ(boundsOf({{1, big}, {1, big}}), (Bounds{1, kHighestInt}));
  EXPECT_EQ(boundsOf({{1, big}, {1, big}, {-1, 2}}), (Bounds{-kHighestInt, kHighestInt}));
  // The whole range of integers: every product saturates at the lowest, whose negative is itself.
  EXPECT_EQ(boundsOf({{kLowestInt, kHighestInt}}), (Bounds{kLowestInt, kLowestInt}));
}

}  // namespace
}  // namespace quvex
