#pragma once

#include <cmath>
#include <cstdint>

namespace quvex {

/// Floating-point arithmetic as the whole system understands it: mathematical functions that fail instead of giving
/// a not-a-number, roundings that forgive a rounding error, and comparisons within a tolerance.
/// Stateless; every failure is a KernelException. The functions leave the C error variable as the math library sets
/// it and read it right after a call; a domain error is used up by the failure that reports it.
class MathDouble {
 public:
  static constexpr const char* kName = "quvex::MathDouble";

  /// Tolerance of every comparison: absolute where one side is zero, relative elsewhere.
  static constexpr double kTolerance = 1e-6;

  /// Whether two doubles are the same within the tolerance. A not-a-number equals nothing.
  [[nodiscard]] static bool isEqual(double a, double b) {
    if (a == b) return true;
    const double distance = std::abs(a - b);
    if (a * b == 0) return distance < kTolerance;
    return distance / (std::abs(a) + std::abs(b)) < kTolerance;
  }
  /// isEqual(x, 0.0).
  [[nodiscard]] static bool isNearlyZero(double x) { return std::abs(x) < kTolerance; }

  /// a > b, and not a tie within the tolerance.
  [[nodiscard]] static bool isGreater(double a, double b) { return a > b && !isEqual(a, b); }
  /// a >= b, or a tie within the tolerance.
  [[nodiscard]] static bool isGreaterOrEqual(double a, double b) { return a >= b || isEqual(a, b); }

  /// Toward zero. What no 64-bit integer holds (not-a-number, out of range) gives the lowest integer.
  [[nodiscard]] static std::int64_t truncate(double x) {
    return x >= -kTwoTo63 && x < kTwoTo63 ? static_cast<std::int64_t>(x) : INT64_MIN;
  }

  /// The ceiling of x - 1e-6, so that an integer up to a rounding error gives that integer.
  /// Fails when the result is at or beyond 2^63 in either direction. The text speaks of floor, and that of `floor`
  /// of ceil: clients know them so.
  [[nodiscard]] static std::int64_t ceil(double x);
  /// The floor of x + 1e-6; fails as `ceil` does.
  [[nodiscard]] static std::int64_t floor(double x);
  /// The floor of x + 0.5, tolerance included.
  [[nodiscard]] static std::int64_t round(double x) { return floor(x + 0.5); }

  /// |a - b|; refuses any two infinities.
  [[nodiscard]] static double dist(double a, double b);

  /// Each fails on a domain error and on a result that is not a number; log(0) is minus infinity.
  [[nodiscard]] static double sqrt(double x);
  [[nodiscard]] static double cos(double x);
  [[nodiscard]] static double sin(double x);
  [[nodiscard]] static double tan(double x);
  [[nodiscard]] static double log(double x);
  /// Fails on a not-a-number only; overflow gives infinity.
  [[nodiscard]] static double exp(double x);

  /// a to the power b, where b of 0 gives 1 and b of 1 gives a. Any negative exponent of a finite base gives an
  /// infinity with the sign of 1 / a. A negative base takes whole exponents only.
  [[nodiscard]] static double pow(double a, double b);

 private:
  static constexpr double kTwoTo63 = 9223372036854775808.0;
};

}  // namespace quvex
