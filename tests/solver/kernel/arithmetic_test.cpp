#include "solver/kernel/arithmetic.h"

#include <gtest/gtest.h>

namespace quvex {
namespace {

TEST(Arithmetic, WrapsWhereItIsTold) {
  EXPECT_EQ(wrapAdd(kHighestInt, 1), kLowestInt);
  EXPECT_EQ(wrapSub(kLowestInt, 1), kHighestInt);
  EXPECT_EQ(wrapMul(kHighestInt, 2), -2);
  EXPECT_EQ(wrapAbs(kLowestInt), kLowestInt);
  EXPECT_EQ(wrapAbs(-5), 5);
}

TEST(Arithmetic, SaturatesTheAbsoluteValueAndTheNegative) {
  EXPECT_EQ(saturatingAbs(kLowestInt), kHighestInt);
  EXPECT_EQ(saturatingAbs(-3), 3);
  EXPECT_EQ(saturatingNeg(kLowestInt), kHighestInt);
  EXPECT_EQ(saturatingNeg(4), -4);
}

TEST(Arithmetic, SaturatesSumsOfTheSameSign) {
  EXPECT_EQ(saturatingAdd(kHighestInt, 1), kHighestInt);
  EXPECT_EQ(saturatingAdd(kLowestInt, -1), kLowestInt);
  EXPECT_EQ(saturatingAdd(kLowestInt, kLowestInt), kLowestInt);
  EXPECT_EQ(saturatingAdd(kLowestInt, kHighestInt), -1);
  EXPECT_EQ(saturatingAdd(3, 4), 7);
}

TEST(Arithmetic, SaturatesProductsBySignificantBits) {
  EXPECT_EQ(saturatingMul(1LL << 31, 1LL << 30), 1LL << 61);    // 31 and 30 bits count
  EXPECT_EQ(saturatingMul(1LL << 31, 1LL << 31), kHighestInt);  // fits, but 62 bits count
  EXPECT_EQ(saturatingMul(1LL << 31, -(1LL << 31)), kLowestInt);
  EXPECT_EQ(saturatingMul(-(1LL << 40), -(1LL << 40)), kHighestInt);
  EXPECT_EQ(saturatingMul(-7, 6), -42);
}

TEST(Arithmetic, LetsAZeroFactorAgainstAHugeOneGiveTheLowestInteger) {
  EXPECT_EQ(saturatingMul(0, kHighestInt), kLowestInt);
  EXPECT_EQ(saturatingMul(kLowestInt, 0), kLowestInt);
  EXPECT_EQ(saturatingMul(0, 1LL << 40), 0);
}

}  // namespace
}  // namespace quvex
