#include "cli/nearest.h"

#include <gtest/gtest.h>

#include <vector>

namespace quvex::cli {

TEST(Nearest, DistanceCountsSingleEdits) {
  EXPECT_EQ(editDistance("", ""), 0U);
  EXPECT_EQ(editDistance("", "abc"), 3U);
  EXPECT_EQ(editDistance("abc", ""), 3U);
  EXPECT_EQ(editDistance("summ", "sum"), 1U);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(Nearest, FindsTheClosestName) {
  const std::vector<std::string> names = {"solve", "check", "info"};
  EXPECT_EQ(nearestName("slove", names), "solve");
  EXPECT_EQ(nearestName("chek", names), "check");
}

TEST(Nearest, SuggestsNothingForADistantWord) {
  const std::vector<std::string> names = {"solve", "check", "or"};
  EXPECT_EQ(nearestName("optimise", names), "");
  EXPECT_EQ(nearestName("ab", names), "");
  EXPECT_EQ(didYouMean("optimise", names), "");
}

TEST(Nearest, AsksAQuestion) {
  const std::vector<std::string> names = {"sum"};
  EXPECT_EQ(didYouMean("summ", names), "; did you mean \"sum\"?");
}

}  // namespace quvex::cli
