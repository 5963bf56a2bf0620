#include "builder/evaluatortools.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string_view>

#include "api/modelaccess.h"
#include "api/qvexpression.h"
#include "builder/operatortools.h"
#include "builder/valuetools.h"
#include "solver/kernel/arithmetic.h"
#include "solver/kernel/checkeddivision.h"
#include "solver/kernel/mathdouble.h"

namespace quvex {

namespace {

/// The operands of one evaluation.
struct Operands {
  std::span<const ValueType> types;
  std::span<const t_value> values;
  bool anyDouble;

  [[nodiscard]] std::size_t size() const { return values.size(); }
  [[nodiscard]] t_value word(std::size_t i) const { return values[i]; }
  [[nodiscard]] double real(std::size_t i) const { return ValueTools::toDouble(types[i], values[i]); }
};

/// The outcome of one evaluation.
struct Result {
  ValueType type;
  t_value value;

  static Result boolean(bool value) { return {kBoolean, value ? 1 : 0}; }
  static Result integer(t_value value) { return {kInteger, value}; }
  static Result real(double value) { return {kDouble, doubleToWord(value)}; }
};

using Evaluator = Result (*)(const Operands&);

// Folds over all operands. `Step` says how one more operand changes the result so far.

template <class Step>
t_value foldWords(const Operands& operands, t_value start, Step step) {
  for (const t_value word : operands.values) start = step(start, word);
  return start;
}

template <class Step>
double foldReals(const Operands& operands, double start, Step step) {
  for (std::size_t i = 0; i < operands.size(); ++i) start = step(start, operands.real(i));
  return start;
}

/// Whether a relation holds between every two neighbours.
template <class WordTest, class RealTest>
Result chain(const Operands& operands, WordTest wordHolds, RealTest realHolds) {
  for (std::size_t i = 1; i < operands.size(); ++i) {
    const bool holds = operands.anyDouble ? realHolds(operands.real(i - 1), operands.real(i))
                                          : wordHolds(operands.word(i - 1), operands.word(i));
    if (!holds) return Result::boolean(false);
  }
  return Result::boolean(true);
}

// Booleans.

Result andEval(const Operands& operands) {
  return Result::boolean(std::ranges::all_of(operands.values, [](t_value word) { return word != 0; }));
}

Result orEval(const Operands& operands) {
  return Result::boolean(std::ranges::any_of(operands.values, [](t_value word) { return word == 1; }));
}

Result xorEval(const Operands& operands) { return {kBoolean, foldWords(operands, 0, wrapAdd) % 2}; }

Result notEval(const Operands& operands) { return {kBoolean, wrapSub(1, operands.word(0))}; }

// Comparisons.

/// Doubles are all equal when the smallest equals the largest within the tolerance. A not-a-number equals nothing.
Result eqDoubleEval(const Operands& operands) {
  double lowest = kInfinity;
  double highest = -kInfinity;
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const double value = operands.real(i);
    if (std::isnan(value)) return Result::boolean(false);
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  return Result::boolean(MathDouble::isEqual(lowest, highest));
}

Result eqEval(const Operands& operands) {
  if (operands.anyDouble) return eqDoubleEval(operands);
  return chain(operands, std::equal_to<>(), std::equal_to<>());
}

Result neqEval(const Operands& operands) {
  if (operands.anyDouble) return Result::boolean(!MathDouble::isEqual(operands.real(0), operands.real(1)));
  return Result::boolean(operands.word(0) != operands.word(1));
}

Result geqEval(const Operands& operands) {
  return chain(operands, std::greater_equal<>(), MathDouble::isGreaterOrEqual);
}

Result leqEval(const Operands& operands) {
  return chain(operands, std::less_equal<>(), [](double a, double b) { return MathDouble::isGreaterOrEqual(b, a); });
}

Result gtEval(const Operands& operands) { return chain(operands, std::greater<>(), MathDouble::isGreater); }

Result ltEval(const Operands& operands) {
  return chain(operands, std::less<>(), [](double a, double b) { return MathDouble::isGreater(b, a); });
}

// Arithmetic on integers and doubles.

Result absEval(const Operands& operands) {
  if (operands.types[0] == kDouble) return Result::real(std::abs(operands.real(0)));
  return Result::integer(wrapAbs(operands.word(0)));
}

Result distEval(const Operands& operands) {
  if (operands.anyDouble) return Result::real(MathDouble::dist(operands.real(0), operands.real(1)));
  return Result::integer(wrapAbs(wrapSub(operands.word(1), operands.word(0))));
}

Result divEval(const Operands& operands) {
  if (operands.anyDouble) return Result::real(operands.real(0) / operands.real(1));
  return Result::integer(checkedDivide(operands.word(0), operands.word(1), here<EvaluatorTools>()));
}

Result modEval(const Operands& operands) {
  return Result::integer(checkedModulo(operands.word(0), operands.word(1), here<EvaluatorTools>()));
}

Result maxEval(const Operands& operands) {
  if (operands.anyDouble) {
    return Result::real(foldReals(operands, -kInfinity, [](double a, double b) { return std::max(a, b); }));
  }
  return Result::integer(foldWords(operands, kLowestInt, [](t_value a, t_value b) { return std::max(a, b); }));
}

Result minEval(const Operands& operands) {
  if (operands.anyDouble) {
    return Result::real(foldReals(operands, kInfinity, [](double a, double b) { return std::min(a, b); }));
  }
  return Result::integer(foldWords(operands, kHighestInt, [](t_value a, t_value b) { return std::min(a, b); }));
}

Result sumEval(const Operands& operands) {
  if (operands.anyDouble) return Result::real(foldReals(operands, 0.0, std::plus<>()));
  return Result::integer(foldWords(operands, 0, wrapAdd));
}

Result prodEval(const Operands& operands) {
  if (!operands.anyDouble) return Result::integer(foldWords(operands, 1, wrapMul));
  const double product = foldReals(operands, 1.0, std::multiplies<>());
  if (std::isnan(product)) {
    raise<KernelException>(here<EvaluatorTools>(), "Cannot compute product of zero and infinity");
  }
  return Result::real(product);
}

Result iifEval(const Operands& operands) {
  const std::size_t branch = operands.word(0) != 0 ? 1 : 2;
  if (operands.anyDouble) return Result::real(operands.real(branch));
  const bool anyInteger = std::ranges::find(operands.types, kInteger) != operands.types.end();
  return {anyInteger ? kInteger : kBoolean, operands.word(branch)};
}

// Roundings take doubles only: their word is read without a conversion.

template <std::int64_t (*Rounding)(double)>
Result roundingEval(const Operands& operands) {
  return Result::integer(Rounding(wordToDouble(operands.word(0))));
}

template <double (*Function)(double)>
Result functionEval(const Operands& operands) {
  return Result::real(Function(operands.real(0)));
}

Result powEval(const Operands& operands) { return Result::real(MathDouble::pow(operands.real(0), operands.real(1))); }

/// By operator number; null for the operators that `evaluate` refuses.
constexpr std::array<Evaluator, OperatorTools::kNbOperators> kEvaluators = {
    nullptr,                          // bool
    nullptr,                          // const
    sumEval,                          // sum
    prodEval,                         // prod
    maxEval,                          // max
    minEval,                          // min
    eqEval,                           // eq
    neqEval,                          // neq
    geqEval,                          // geq
    leqEval,                          // leq
    gtEval,                           // gt
    ltEval,                           // lt
    iifEval,                          // iif
    notEval,                          // not
    andEval,                          // and
    orEval,                           // or
    xorEval,                          // xor
    absEval,                          // abs
    distEval,                         // dist
    divEval,                          // div
    modEval,                          // mod
    nullptr,                          // array
    nullptr,                          // at
    nullptr,                          // scalar
    roundingEval<MathDouble::ceil>,   // ceil
    roundingEval<MathDouble::floor>,  // floor
    roundingEval<MathDouble::round>,  // round
    functionEval<MathDouble::sqrt>,   // sqrt
    functionEval<MathDouble::log>,    // log
    functionEval<MathDouble::exp>,    // exp
    powEval,                          // pow
    functionEval<MathDouble::cos>,    // cos
    functionEval<MathDouble::sin>,    // sin
    functionEval<MathDouble::tan>,    // tan
};

/// One element of an array.
struct Element {
  ValueType type;
  t_value value;

  [[nodiscard]] double real() const { return ValueTools::toDouble(type, value); }
};

Element elementAt(const QVExpression* array, std::size_t position, std::span<const t_value> allValues) {
  const QVExpression* element = ModelAccess::operand(*array, static_cast<std::uint32_t>(position));
  return {ModelAccess::valueType(*element), allValues[ModelAccess::index(*element)]};
}

}  // namespace

void EvaluatorTools::evaluate(QVOperator op, std::span<const ValueType> types, std::span<const t_value> values,
                              ValueType& resultType, t_value& resultValue) {
  const std::string_view name = OperatorTools::getName(op);
  const Evaluator evaluator = kEvaluators[static_cast<std::size_t>(op)];
  if (evaluator == nullptr) {
    raise<KernelException>(here<EvaluatorTools>(), "Cannot evaluate ", name, " operator with this method");
  }
  const bool anyDouble = std::ranges::find(types, kDouble) != types.end();
  const Result result = evaluator({types, values, anyDouble});
  resultType = result.type;
  resultValue = result.value;
}

void EvaluatorTools::atEval(const QVExpression* expression, std::span<const t_value> allValues, ValueType& resultType,
                            t_value& resultValue) {
  const QVExpression* array = ModelAccess::operand(*expression, 0);
  const t_value index = allValues[ModelAccess::operandIndices(*expression)[1]];
  checkArrayIndex(expression, index, ModelAccess::nbOperands(*array), here<EvaluatorTools>());

  const Element element = elementAt(array, static_cast<std::size_t>(index), allValues);
  resultType = ModelAccess::valueType(*expression);
  resultValue = resultType == kDouble ? doubleToWord(element.real()) : element.value;
}

void EvaluatorTools::scalarEval(const QVExpression* expression, std::span<const t_value> allValues,
                                ValueType& resultType, t_value& resultValue) {
  const QVExpression* a = ModelAccess::operand(*expression, 0);
  const QVExpression* b = ModelAccess::operand(*expression, 1);
  const std::size_t size = ModelAccess::nbOperands(*a);
  checkScalarLengths(size, ModelAccess::nbOperands(*b), here<EvaluatorTools>());

  bool anyDouble = false;
  t_value sum = 0;
  double doubleSum = 0.0;
  for (std::size_t i = 0; i < size; ++i) {
    const Element x = elementAt(a, i, allValues);
    const Element y = elementAt(b, i, allValues);
    anyDouble = anyDouble || x.type == kDouble || y.type == kDouble;
    sum = wrapAdd(sum, wrapMul(x.value, y.value));
    doubleSum += x.real() * y.real();
  }
  resultType = anyDouble ? kDouble : kInteger;
  resultValue = anyDouble ? doubleToWord(doubleSum) : sum;
}

void EvaluatorTools::getOperands(const QVExpression* expression, std::span<const t_value> allValues,
                                 std::vector<ValueType>& types, std::vector<t_value>& values) {
  types.clear();
  values.clear();
  const QVModel& model = *ModelAccess::model(*expression);
  for (const std::uint32_t operand : ModelAccess::operandIndices(*expression)) {
    types.push_back(ModelAccess::valueType(*ModelAccess::expression(model, operand)));
    values.push_back(allValues[operand]);
  }
}

void EvaluatorTools::checkArrayIndex(const QVExpression* at, t_value index, std::size_t size, const Place& place) {
  if (index >= 0 && static_cast<std::uint64_t>(index) < size) return;
  raise<KernelException>(place, "Index out of bounds for ", at->toString(), " (index: ", index, ", array size: ", size,
                         ").");
}

void EvaluatorTools::checkScalarLengths(std::size_t nbFirst, std::size_t nbSecond, const Place& place) {
  if (nbSecond >= nbFirst) return;
  raise<KernelException>(place, "Arrays for scalar operator must have the same number of elements");
}

}  // namespace quvex
