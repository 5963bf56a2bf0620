#include "plainclient.h"

#include <gtest/gtest.h>

namespace {

TEST(PlainClient, SolvesAModelFromCAndGetsItsMistakesReported) {
  const PlainResult result = runPlainClient();
  EXPECT_EQ(result.best, 4);
  EXPECT_EQ(result.nbFailures, 2);
  EXPECT_EQ(result.nbNullTexts, 1);
  EXPECT_STREQ(result.function, "quvex::Quvex::getPhase");
  EXPECT_STREQ(result.text, "3.0.20130522-Win64");
}

}  // namespace
