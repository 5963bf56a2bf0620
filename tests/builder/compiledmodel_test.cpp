/// What a model means, whichever way it is compiled: the graph made with preprocessing, the graph made without, and the
/// evaluation of the model itself give every expression the same value, whatever the decisions.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "api/modelaccess.h"
#include "api/qvparam.h"
#include "api/qvsolution.h"
#include "builder/dagbuilder.h"
#include "builder/valuetools.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/random.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

/// Grows a random model over all operators. What two ways of compilation see apart on purpose is kept out: groups of
/// constants alone (dropped by their own operator), constant factors of a shared product inside a product (lost), and
/// arrays of doubles (read by the integer node without preprocessing). Divisors, indices and arguments of functions are
/// such that nothing fails.
class RandomModel : public OpenModel {
 public:
  explicit RandomModel(RandomState seed) : state(seed) {
    for (int i = 0; i < 6; ++i) booleans.push_back(decision());
    integers.push_back(make(QVOperator::Abs, make(QVOperator::Sum, booleans[0], -3)));
    reals.push_back(make(QVOperator::Sqrt, booleans[1]));
    for (int i = 0; i < 60; ++i) grow();
    minimize(make(QVOperator::Sum, integers.back(), booleans.back()));
    maximize(reals.back());
  }

  RandomState state;

 private:
  std::vector<QVExpression*> booleans;
  std::vector<QVExpression*> integers;
  std::vector<QVExpression*> reals;

  QVExpression* pick(const std::vector<QVExpression*>& from) {
    return from[rand(state, static_cast<std::uint32_t>(from.size()))];
  }
  QVExpression* anyNumber() {
    switch (rand(state, 3)) {
      case 0:
        return pick(booleans);
      case 1:
        return pick(integers);
      default:
        return pick(reals);
    }
  }
  QVExpression* whole() { return coin(state) ? pick(booleans) : pick(integers); }
  QVExpression* smallConstant() { return constant(std::int64_t{rand(state, 7)} - 3); }

  /// A group of two to four operands, sometimes with a constant among them.
  template <class Draw>
  QVExpression* group(QVOperator op, Draw draw, QVExpression* added) {
    QVExpression* expr = make(op, draw());
    for (std::uint32_t i = rand(state, 3) + 1; i > 0; --i) expr->addOperand(draw());
    if (added != nullptr && coin(state)) expr->addOperand(added);
    return expr;
  }
  QVExpression* growBoolean() {
    static constexpr QVOperator kComparisons[] = {QVOperator::Eq,  QVOperator::Neq, QVOperator::Geq,
                                                  QVOperator::Leq, QVOperator::Gt,  QVOperator::Lt};
    static constexpr QVOperator kGroups[] = {QVOperator::And, QVOperator::Or, QVOperator::Xor};
    switch (rand(state, 5)) {
      case 0:
        return make(kComparisons[rand(state, 6)], anyNumber(), coin(state) ? anyNumber() : smallConstant());
      case 1:
        return make(QVOperator::Not, pick(booleans));
      case 2:
        return make(QVOperator::Iif, pick(booleans), pick(booleans), pick(booleans));
      default:
        return group(
            kGroups[rand(state, 3)], [this] { return pick(booleans); }, constant(std::int64_t{rand(state, 2)}));
    }
  }
  QVExpression* growInteger() {
    static constexpr QVOperator kGroups[] = {QVOperator::Sum, QVOperator::Max, QVOperator::Min};
    static constexpr QVOperator kRoundings[] = {QVOperator::Ceil, QVOperator::Floor, QVOperator::Round};
    switch (rand(state, 9)) {
      case 0:
        return make(QVOperator::Prod, pick(integers), pick(booleans));
      case 1:
        return make(QVOperator::Div, whole(), rand(state, 3) + 1);
      case 2:
        return make(QVOperator::Mod, whole(), rand(state, 3) + 2);
      case 3:
        return make(kRoundings[rand(state, 3)], make(QVOperator::Sin, anyNumber()));
      case 4:
        return make(QVOperator::At, make(QVOperator::Array, whole(), smallConstant()),
                    coin(state) ? pick(booleans) : constant(std::int64_t{rand(state, 2)}));
      case 5:
        return make(QVOperator::Scalar, make(QVOperator::Array, pick(booleans), whole()),
                    coin(state) ? make(QVOperator::Array, smallConstant(), smallConstant())
                                : make(QVOperator::Array, whole(), pick(booleans)));
      case 6:
        return group(
            QVOperator::Sum, [this] { return make(QVOperator::Prod, std::int64_t{rand(state, 9)} - 4, whole()); },
            smallConstant());
      case 7:
        return make(coin(state) ? QVOperator::Dist : QVOperator::Sum, whole(), whole());
      default:
        return group(
            kGroups[rand(state, 3)], [this] { return whole(); }, smallConstant());
    }
  }
  QVExpression* growReal() {
    static constexpr QVOperator kGroups[] = {QVOperator::Sum, QVOperator::Max, QVOperator::Min};
    static constexpr QVOperator kFunctions[] = {QVOperator::Cos, QVOperator::Sin, QVOperator::Sqrt};
    QVExpression* fraction = constant(rand(state, 16) / 4.0 - 2.0);
    switch (rand(state, 5)) {
      case 0:
        return make(kFunctions[rand(state, 3)], make(QVOperator::Abs, anyNumber()));
      case 1:
        return make(QVOperator::Iif, pick(booleans), pick(reals), anyNumber());
      case 2:
        return make(QVOperator::Div, anyNumber(), 4.0);
      case 3:
        return make(QVOperator::Dist, pick(reals), anyNumber());
      default:
        return group(
            kGroups[rand(state, 3)], [this] { return anyNumber(); }, fraction);
    }
  }
  void grow() {
    switch (rand(state, 3)) {
      case 0:
        return booleans.push_back(growBoolean());
      case 1:
        return integers.push_back(growInteger());
      default:
        return addReal(growReal());
    }
  }
  /// A group of drawn numbers may turn out to be a whole number.
  void addReal(QVExpression* expr) {
    const auto isReal = [](const QVExpression* operand) { return isRealExpression(*operand); };
    (isReal(expr) ? reals : integers).push_back(expr);
  }
  static bool isRealExpression(const QVExpression& expr) {
    switch (ModelAccess::op(expr)) {
      case QVOperator::Const:
        return ModelAccess::valueType(expr) == kDouble;
      case QVOperator::Cos:
      case QVOperator::Sin:
      case QVOperator::Sqrt:
        return true;
      case QVOperator::Sum:
      case QVOperator::Max:
      case QVOperator::Min:
      case QVOperator::Prod:
      case QVOperator::Abs:
      case QVOperator::Div:
      case QVOperator::Dist:
      case QVOperator::Iif:
        break;
      default:
        return false;
    }
    for (std::uint32_t i = 0; i < ModelAccess::nbOperands(expr); ++i) {
      if (isRealExpression(*ModelAccess::operand(expr, i))) return true;
    }
    return false;
  }
};

/// The value of every expression with a node, as a double, in a graph with these decisions.
std::map<int, double> graphValues(OpenModel& m) {
  DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  Dag& dag = builder.getDag();
  std::map<int, double> values;
  for (const QVExpression* expr : ModelAccess::expressions(*m.model)) {
    const NodeId node = builder.getNode(expr);
    if (node == kNone || ModelAccess::valueType(*expr) == kArray) continue;
    values[expr->getIndex()] = dag.committedDouble(node);
  }
  return values;
}

void setDecisions(OpenModel& m, RandomState state) {
  DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  Dag& dag = builder.getDag();
  for (QVExpression* decision : ModelAccess::decisions(*m.model)) {
    const t_value value = coin(state) ? 1 : 0;
    decision->setValue(value);
    const NodeId node = builder.getNode(decision);
    if (node != kNone) dag.nodeValue[node] = dag.tentativeValue[node] = value;
  }
  dag.reinitAllNodes();
}

double modelValue(const QVExpression* expr) {
  return expr->isDouble() ? expr->getDoubleValue() : static_cast<double>(expr->getValue());
}

TEST(CompiledModel, GivesEveryExpressionItsValueWithAndWithoutPreprocessing) {
  for (RandomState seed = 1; seed <= 60; ++seed) {
    RandomModel simplified(seed);
    RandomModel plain(seed);
    plain.quvex.getParam()->setAdvancedParam("preprocessEnabled", 0);
    simplified.close();
    plain.close();
    for (RandomState draw = 1; draw <= 8; ++draw) {
      setDecisions(simplified, draw * 977);
      setDecisions(plain, draw * 977);
      for (RandomModel* m : {&simplified, &plain}) {
        for (const auto& [index, value] : graphValues(*m)) {
          const QVExpression* expr = m->model->getExpression(index);
          EXPECT_TRUE(MathDouble::isEqual(value, modelValue(expr)))
              << "seed " << seed << ", " << expr->toString() << (m == &plain ? " without" : " with")
              << " preprocessing: " << value << " in the graph, " << modelValue(expr) << " in the model";
        }
      }
      if (HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace quvex
