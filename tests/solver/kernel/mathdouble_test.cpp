#include "solver/kernel/mathdouble.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <limits>

#include "solver/kernel/types.h"
#include "support/failure.h"

namespace quvex {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(MathDouble, ComparesAbsolutelyBesideZero) {
  EXPECT_TRUE(MathDouble::isEqual(0.0, 1e-7));
  EXPECT_FALSE(MathDouble::isEqual(0.0, 1e-5));
  EXPECT_TRUE(MathDouble::isEqual(-0.0, 0.0));
  EXPECT_FALSE(MathDouble::isEqual(0.0, kInfinity));
}

TEST(MathDouble, ComparesRelativelyElsewhere) {
  EXPECT_TRUE(MathDouble::isEqual(1000000.0, 1000000.5));
  EXPECT_FALSE(MathDouble::isEqual(1000000.0, 1000004.0));
  EXPECT_FALSE(MathDouble::isEqual(1e-8, 3e-8));
  EXPECT_FALSE(MathDouble::isEqual(1.0, -1.0));
}

TEST(MathDouble, ComparesAbsolutelyWhereTheProductUnderflows) { EXPECT_TRUE(MathDouble::isEqual(1e-200, 3e-200)); }

TEST(MathDouble, KnowsInfinities) {
  EXPECT_TRUE(MathDouble::isEqual(kInfinity, kInfinity));
  EXPECT_FALSE(MathDouble::isEqual(kInfinity, -kInfinity));
  EXPECT_FALSE(MathDouble::isEqual(kInfinity, 1e300));
}

TEST(MathDouble, NotANumberEqualsNothing) {
  EXPECT_FALSE(MathDouble::isEqual(kNan, kNan));
  EXPECT_FALSE(MathDouble::isEqual(kNan, 0.0));
  EXPECT_FALSE(MathDouble::isEqual(1.0, kNan));
  EXPECT_FALSE(MathDouble::isNearlyZero(kNan));
}

TEST(MathDouble, NearlyZeroIsEqualityWithZero) {
  for (const double x : {0.0, -0.0, 1e-7, -1e-7, 1e-6, -1e-6, 1e-5, 1.0, kInfinity, kNan}) {
    EXPECT_EQ(MathDouble::isNearlyZero(x), MathDouble::isEqual(x, 0.0)) << x;
  }
}

TEST(MathDouble, StrictOrderExcludesTies) {
  EXPECT_FALSE(MathDouble::isGreater(1.0000001, 1.0));
  EXPECT_TRUE(MathDouble::isGreater(1.001, 1.0));
  EXPECT_FALSE(MathDouble::isGreater(1.0, 1.001));
}

TEST(MathDouble, WeakOrderIncludesTies) {
  EXPECT_TRUE(MathDouble::isGreaterOrEqual(1.0, 1.0000001));
  EXPECT_TRUE(MathDouble::isGreaterOrEqual(1.001, 1.0));
  EXPECT_FALSE(MathDouble::isGreaterOrEqual(1.0, 1.001));
}

TEST(MathDouble, RoundsToAnIntegerFromEitherSide) {
  EXPECT_EQ(MathDouble::ceil(2.0), 2);
  EXPECT_EQ(MathDouble::ceil(2.000002), 3);
  EXPECT_EQ(MathDouble::ceil(3.0000001), 3);
  EXPECT_EQ(MathDouble::floor(2.9999999), 3);
  EXPECT_EQ(MathDouble::floor(2.9), 2);
  EXPECT_EQ(MathDouble::floor(-0.5), -1);
  EXPECT_EQ(MathDouble::ceil(-0.5), 0);
}

TEST(MathDouble, RoundsHalvesUpWithTheToleranceOfFloor) {
  EXPECT_EQ(MathDouble::round(2.4999995), 3);
  EXPECT_EQ(MathDouble::round(2.49), 2);
  EXPECT_EQ(MathDouble::round(-2.5), -2);
}

TEST(MathDouble, RoundingsRefuseWhatNoIntegerHoldsWithCrossedTexts) {
  const Failure floor = failureOf([] { (void)MathDouble::floor(1e300); });
  EXPECT_EQ(floor.explanation, "Invalid ceil operation (out of bounds)");
  EXPECT_EQ(floor.function, "quvex::MathDouble::floor");
  EXPECT_TRUE(floor.isKernel);
  EXPECT_EQ(explanationOf([] { (void)MathDouble::floor(-kInfinity); }), "Invalid ceil operation (out of bounds)");
  EXPECT_EQ(explanationOf([] { (void)MathDouble::ceil(9223372036854775808.0); }),
            "Invalid floor operation (out of bounds)");
  EXPECT_EQ(explanationOf([] { (void)MathDouble::ceil(-9223372036854775808.0); }),
            "Invalid floor operation (out of bounds)");
  EXPECT_EQ(MathDouble::floor(9223372036854774784.0), 9223372036854774784);
}

TEST(MathDouble, TruncatesTowardZeroAndTheRestToTheLowestInteger) {
  EXPECT_EQ(MathDouble::truncate(2.9), 2);
  EXPECT_EQ(MathDouble::truncate(-2.9), -2);
  EXPECT_EQ(MathDouble::truncate(-9223372036854775808.0), kLowestInt);
  EXPECT_EQ(MathDouble::truncate(9223372036854775808.0), kLowestInt);
  EXPECT_EQ(MathDouble::truncate(kInfinity), kLowestInt);
  EXPECT_EQ(MathDouble::truncate(kNan), kLowestInt);
}

TEST(MathDouble, DistanceRefusesTwoInfinities) {
  EXPECT_EQ(MathDouble::dist(1.5, 4.0), 2.5);
  EXPECT_EQ(MathDouble::dist(4.0, 1.5), 2.5);
  EXPECT_EQ(MathDouble::dist(-kInfinity, 4.0), kInfinity);
  for (const double other : {kInfinity, -kInfinity}) {
    const Failure failure = failureOf([other] { (void)MathDouble::dist(kInfinity, other); });
    EXPECT_EQ(failure.explanation, "Cannot compute distance between two infinities");
    EXPECT_EQ(failure.function, "quvex::MathDouble::dist");
  }
}

TEST(MathDouble, FunctionsGiveTheirValues) {
  EXPECT_EQ(MathDouble::sqrt(9.0), 3.0);
  EXPECT_EQ(MathDouble::cos(0.0), 1.0);
  EXPECT_EQ(MathDouble::sin(0.0), 0.0);
  EXPECT_EQ(MathDouble::tan(0.0), 0.0);
  EXPECT_EQ(MathDouble::exp(0.0), 1.0);
  EXPECT_EQ(MathDouble::log(1.0), 0.0);
  EXPECT_EQ(MathDouble::log(0.0), -kInfinity);
  EXPECT_EQ(MathDouble::exp(1e6), kInfinity);
}

struct BadCall {
  double (*function)(double);
  double argument;
  const char* text;
};

TEST(MathDouble, FunctionsRefuseArgumentsOutsideTheirDomain) {
  const BadCall calls[] = {
      {MathDouble::sqrt, -1.0, "Invalid square root operation (NaN or negative number provided)"},
      {MathDouble::sqrt, kNan, "Invalid square root operation (NaN or negative number provided)"},
      {MathDouble::cos, kInfinity, "Invalid cosine operation (NaN or infinity provided)"},
      {MathDouble::cos, kNan, "Invalid cosine operation (NaN or infinity provided)"},
      {MathDouble::sin, -kInfinity, "Invalid sine operation (NaN or infinity provided)"},
      {MathDouble::sin, kNan, "Invalid sine operation (NaN or infinity provided)"},
      {MathDouble::tan, kInfinity, "Invalid tangent operation (NaN or infinity provided)"},
      {MathDouble::tan, kNan, "Invalid tangent operation (NaN or infinity provided)"},
      {MathDouble::exp, kNan, "Invalid exponential operation (NaN provided)"},
      {MathDouble::log, -1.0, "Invalid log operation (NaN or negative number provided)"},
      {MathDouble::log, kNan, "Invalid log operation (NaN or negative number provided)"},
  };
  for (const BadCall& call : calls) {
    const Failure failure = failureOf([&] { (void)call.function(call.argument); });
    EXPECT_EQ(failure.explanation, call.text);
    EXPECT_TRUE(failure.isKernel);
  }
}

TEST(MathDouble, OneFailureDoesNotPoisonTheNextCall) {
  EXPECT_TRUE(failureOf([] { (void)MathDouble::sqrt(-1.0); }).raised());
  EXPECT_EQ(MathDouble::sqrt(4.0), 2.0);
  EXPECT_EQ(MathDouble::pow(2.0, 3.0), 8.0);
}

TEST(MathDouble, ADomainErrorOfAnEarlierCallCountsOnce) {
  errno = EDOM;
  EXPECT_TRUE(failureOf([] { (void)MathDouble::sqrt(4.0); }).raised());
  EXPECT_EQ(MathDouble::sqrt(4.0), 2.0);
  errno = EDOM;
  EXPECT_EQ(explanationOf([] { (void)MathDouble::pow(2.0, 0.0); }), "Invalid pow operation");
  EXPECT_EQ(MathDouble::pow(2.0, 0.0), 1.0);
}

TEST(MathDouble, PowerZeroIsOneAndPowerOneIsTheBase) {
  EXPECT_EQ(MathDouble::pow(0.0, 0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(7.0, -0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(kNan, 0.0), 1.0);
  EXPECT_EQ(MathDouble::pow(-3.5, 1.0), -3.5);
  EXPECT_EQ(explanationOf([] { (void)MathDouble::pow(kNan, 1.0); }), "Invalid pow operation");
}

TEST(MathDouble, PowerRefusesNotANumber) {
  EXPECT_EQ(explanationOf([] { (void)MathDouble::pow(kNan, 2.0); }), "Invalid pow operation");
  EXPECT_EQ(explanationOf([] { (void)MathDouble::pow(2.0, kNan); }), "Invalid pow operation");
}

TEST(MathDouble, AnyNegativePowerIsInfinite) {
  EXPECT_EQ(MathDouble::pow(2.0, -1.0), kInfinity);
  EXPECT_EQ(MathDouble::pow(-2.0, -1.0), -kInfinity);
  EXPECT_EQ(MathDouble::pow(0.0, -2.0), kInfinity);
  EXPECT_EQ(MathDouble::pow(-0.0, -2.0), -kInfinity);
  EXPECT_EQ(MathDouble::pow(-2.0, -0.5), -kInfinity);
}

TEST(MathDouble, PowerOfANegativeBaseTakesWholeExponents) {
  EXPECT_EQ(MathDouble::pow(-2.0, 3.0), -8.0);
  const Failure failure = failureOf([] { (void)MathDouble::pow(-2.0, 0.5); });
  EXPECT_EQ(failure.explanation, "Invalid pow operation (non integer exponent with negative base)");
  EXPECT_EQ(failure.function, "quvex::MathDouble::pow");
}

}  // namespace
}  // namespace quvex
