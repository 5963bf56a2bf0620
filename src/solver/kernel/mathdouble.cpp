#include "solver/kernel/mathdouble.h"

#include <cerrno>

#include "api/qvexception.h"
#include "solver/kernel/types.h"

namespace quvex {

namespace {

/// The result of a call of the math library, unless it is not a number or the library reports a domain error.
/// Raising uses the report up, so that one failure does not poison the next call.
double checked(double result, const Place& place, const char* text) {
  const bool domainError = errno == EDOM;
  if (!domainError && !std::isnan(result)) return result;
  if (domainError) errno = 0;
  raise<KernelException>(place, text);
}

/// The power without its failures on not-a-number.
double rawPow(double a, double b, const Place& place) {
  if (b == 0) return 1.0;
  if (b == 1) return a;
  if (std::isnan(a) || std::isnan(b)) return std::nan("");
  if (b < 0 && 1 / a < 0) return -kInfinity;
  if (b < 0 && 1 / a > 0) return kInfinity;
  if (a < 0 && std::trunc(b) != b) {
    raise<KernelException>(place, "Invalid pow operation (non integer exponent with negative base)");
  }
  return std::pow(a, b);
}

}  // namespace

std::int64_t MathDouble::ceil(double x) {
  const double result = std::ceil(x - kTolerance);
  if (result <= -kTwoTo63 || result >= kTwoTo63) {
    raise<KernelException>(here<MathDouble>(), "Invalid floor operation (out of bounds)");
  }
  return truncate(result);
}

std::int64_t MathDouble::floor(double x) {
  const double result = std::floor(x + kTolerance);
  if (result <= -kTwoTo63 || result >= kTwoTo63) {
    raise<KernelException>(here<MathDouble>(), "Invalid ceil operation (out of bounds)");
  }
  return truncate(result);
}

double MathDouble::dist(double a, double b) {
  if (std::isinf(a) && std::isinf(b)) {
    raise<KernelException>(here<MathDouble>(), "Cannot compute distance between two infinities");
  }
  return std::abs(a - b);
}

double MathDouble::sqrt(double x) {
  return checked(std::sqrt(x), here<MathDouble>(), "Invalid square root operation (NaN or negative number provided)");
}

double MathDouble::cos(double x) {
  return checked(std::cos(x), here<MathDouble>(), "Invalid cosine operation (NaN or infinity provided)");
}

double MathDouble::sin(double x) {
  return checked(std::sin(x), here<MathDouble>(), "Invalid sine operation (NaN or infinity provided)");
}

double MathDouble::tan(double x) {
  return checked(std::tan(x), here<MathDouble>(), "Invalid tangent operation (NaN or infinity provided)");
}

double MathDouble::log(double x) {
  return checked(std::log(x), here<MathDouble>(), "Invalid log operation (NaN or negative number provided)");
}

double MathDouble::exp(double x) {
  if (std::isnan(x)) raise<KernelException>(here<MathDouble>(), "Invalid exponential operation (NaN provided)");
  return std::exp(x);
}

double MathDouble::pow(double a, double b) {
  const Place place = here<MathDouble>();
  return checked(rawPow(a, b, place), place, "Invalid pow operation");
}

}  // namespace quvex
