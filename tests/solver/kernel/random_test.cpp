#include "solver/kernel/random.h"

#include <gtest/gtest.h>

namespace quvex {
namespace {

TEST(Random, StepsByTheLinearCongruence) {
  RandomState state = 0;
  EXPECT_EQ(randomStep(state), 1013904223U);
  EXPECT_EQ(randomStep(state), 1196435762U);
  EXPECT_EQ(state, 1196435762U);
}

TEST(Random, TakesTheHighHalfOfTheProduct) {
  RandomState state = 0;
  EXPECT_EQ(rand(state, 10), 2U);  // 1013904223 * 10 / 2^32
  EXPECT_EQ(state, 1013904223U);
}

TEST(Random, DrawsNothingForACertainChoice) {
  RandomState state = 7;
  EXPECT_EQ(rand(state, 0), 0U);
  EXPECT_EQ(rand(state, 1), 0U);
  EXPECT_EQ(state, 7U);
}

TEST(Random, TossesACoinByTheTopBit) {
  RandomState state = 0;
  EXPECT_FALSE(coin(state));  // 0x3C6EF35F
  EXPECT_EQ(state, 0x3C6EF35FU);
  state = 2000000000U;
  const RandomState next = 2000000000U * 1664525U + 1013904223U;
  EXPECT_EQ(coin(state), next >> 31U == 1);
}

TEST(Random, GivesRealsBelowOneThroughSinglePrecision) {
  EXPECT_EQ(realOf(0), 0.0);
  EXPECT_EQ(realOf(0x80000000U), static_cast<double>(static_cast<float>(1073741823 / 2147483647.0)));
  // The largest state rounds up to 1 in single precision.
  EXPECT_EQ(realOf(0xFFFFFFFFU), 1.0);
}

}  // namespace
}  // namespace quvex
