#include "builder/valuetools.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/failure.h"

namespace quvex {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

t_value word(double value) { return doubleToWord(value); }

TEST(ValueTools, TakesTheSmallerWord) {
  EXPECT_EQ(ValueTools::minValue(kInteger, 3, -2), -2);
  EXPECT_EQ(ValueTools::minValue(kBoolean, 0, 1), 0);
  EXPECT_EQ(ValueTools::minValue(kDouble, word(-1.5), word(-2.5)), word(-2.5));
  EXPECT_EQ(ValueTools::minValue(kDouble, word(1.0), word(2.0)), word(1.0));
}

TEST(ValueTools, TakesTheLargerWord) {
  EXPECT_EQ(ValueTools::maxValue(kInteger, 3, -2), 3);
  EXPECT_EQ(ValueTools::maxValue(kInteger, -3, -2), -2);
  EXPECT_EQ(ValueTools::maxValue(kBoolean, 0, 1), 1);
  EXPECT_EQ(ValueTools::maxValue(kDouble, word(-1.5), word(-2.5)), word(-1.5));
}

TEST(ValueTools, ANotANumberLosesToTheSideThatTheTestNames) {
  EXPECT_EQ(ValueTools::minValue(kDouble, word(kNan), word(1.0)), word(kNan));
  EXPECT_EQ(ValueTools::maxValue(kDouble, word(kNan), word(1.0)), word(1.0));
}

TEST(ValueTools, ComparesIntegersExactly) {
  EXPECT_EQ(ValueTools::compare(kInteger, 1000000, 1000001), -1);
  EXPECT_EQ(ValueTools::compare(kInteger, 5, 5), 0);
  EXPECT_EQ(ValueTools::compare(kBoolean, 1, 0), 1);
}

TEST(ValueTools, ComparesDoublesWithinTheTolerance) {
  EXPECT_EQ(ValueTools::compare(kDouble, word(1.0), word(1.0000001)), 0);
  EXPECT_EQ(ValueTools::compare(kDouble, word(1.0), word(1.1)), -1);
  EXPECT_EQ(ValueTools::compare(kDouble, word(1.1), word(1.0)), 1);
  EXPECT_EQ(ValueTools::compare(kDouble, word(kNan), word(1.0)), 0);
}

TEST(ValueTools, RefusesOtherTypes) {
  for (const ValueType type : {ValueType{0}, ValueType{3}, kArray}) {
    EXPECT_EQ(explanationOf([type] { (void)ValueTools::minValue(type, 0, 0); }), "ValueType not supported");
    EXPECT_EQ(explanationOf([type] { (void)ValueTools::maxValue(type, 0, 0); }), "ValueType not supported");
    const Failure failure = failureOf([type] { (void)ValueTools::compare(type, 0, 0); });
    EXPECT_EQ(failure.explanation, "ValueType not supported");
    EXPECT_EQ(failure.function, "quvex::ValueTools::compare");
    EXPECT_TRUE(failure.isKernel);
  }
}

TEST(ValueTools, ReadsAWordAsADouble) {
  EXPECT_EQ(ValueTools::toDouble(kInteger, -3), -3.0);
  EXPECT_EQ(ValueTools::toDouble(kDouble, word(2.5)), 2.5);
}

}  // namespace
}  // namespace quvex
