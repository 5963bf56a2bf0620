#include "builder/preprocessor/preprocessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "solver/kernel/dagfixedfields.h"
#include "support/failure.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

/// A model that a test closes, and then preprocesses again by hand.
struct PreprocessedModel : OpenModel {
  QVExpression* a = decision();
  QVExpression* b = decision();
  DagFixedFields fixed;
  std::optional<Preprocessor> preprocessor;

  Preprocessor& run() {
    close();
    preprocessor.emplace(*model, fixed);
    preprocessor->run(true);
    return *preprocessor;
  }
  void constrain(QVExpression* expr) { model->addConstraint(expr); }

  [[nodiscard]] static ExprId id(const QVExpression* expr) { return ModelAccess::index(*expr); }
  [[nodiscard]] bool isConstant(const QVExpression* expr) const { return preprocessor->isConstant[id(expr)]; }
  /// The integer that an expression was folded to, -99 if it was not.
  [[nodiscard]] t_value folded(const QVExpression* expr) const {
    return isConstant(expr) ? preprocessor->values[id(expr)] : -99;
  }
};

TEST(Preprocessor, CountsEveryOperandPosition) {
  PreprocessedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.a, m.b);
  m.make(QVOperator::Leq, sum, m.b);
  m.run();
  EXPECT_EQ(m.preprocessor->userCount[m.id(m.a)], 2U);
  EXPECT_EQ(m.preprocessor->userCount[m.id(m.b)], 2U);
  EXPECT_EQ(m.preprocessor->userCount[m.id(sum)], 1U);
}

TEST(Preprocessor, RootsAreWhatNothingUsesInIdOrder) {
  PreprocessedModel m;
  QVExpression* later = m.make(QVOperator::Leq, m.a, 7);
  QVExpression* last = m.make(QVOperator::Not, m.a);
  const std::vector<ExprId> roots = m.run().roots;
  EXPECT_TRUE(std::ranges::is_sorted(roots));
  EXPECT_EQ(roots.front(), m.id(m.b));
  EXPECT_TRUE(std::ranges::count(roots, m.id(later)) == 1 && std::ranges::count(roots, m.id(last)) == 1);
  EXPECT_EQ(std::ranges::count(roots, m.id(m.a)), 0);
}

TEST(Preprocessor, FoldsExpressionsOfConstants) {
  PreprocessedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, 2, 3);
  QVExpression* product = m.make(QVOperator::Prod, sum, 4);
  m.run();
  EXPECT_EQ(m.folded(sum), 5);
  EXPECT_EQ(m.folded(product), 20);
}

TEST(Preprocessor, AbsorbingConstantsDecideAlone) {
  PreprocessedModel m;
  QVExpression* product = m.make(QVOperator::Prod, m.a, 0);
  QVExpression* doubleProduct = m.make(QVOperator::Prod, m.a, 0.0);
  QVExpression* conjunction = m.make(QVOperator::And, m.a, 0);
  QVExpression* disjunction = m.make(QVOperator::Or, m.a, 1);
  QVExpression* open = m.make(QVOperator::Or, m.a, 0);
  QVExpression* parity = m.make(QVOperator::Xor, m.a, 1);
  m.run();
  EXPECT_EQ(m.folded(product), 0);
  EXPECT_EQ(m.folded(doubleProduct), doubleToWord(0.0));
  EXPECT_EQ(m.folded(conjunction), 0);
  EXPECT_EQ(m.folded(disjunction), 1);
  EXPECT_FALSE(m.isConstant(open));
  EXPECT_FALSE(m.isConstant(parity));
}

TEST(Preprocessor, DoesNotEnterArrays) {
  PreprocessedModel m;
  QVExpression* inside = m.make(QVOperator::Sum, 2, 3);
  QVExpression* both = m.make(QVOperator::Sum, 3, 4);
  m.make(QVOperator::At, m.make(QVOperator::Array, inside, both), m.a);
  m.make(QVOperator::Leq, both, m.a);
  m.run();
  EXPECT_FALSE(m.isConstant(inside));
  EXPECT_EQ(m.folded(both), 7);
}

TEST(Preprocessor, AConstrainedEqualityFixesItsDecision) {
  for (const int value : {0, 1}) {
    for (const bool decisionFirst : {true, false}) {
      PreprocessedModel m;
      QVExpression* constant = m.constant(std::int64_t{value});
      QVExpression* eq = decisionFirst ? m.make(QVOperator::Eq, m.a, constant) : m.make(QVOperator::Eq, constant, m.a);
      m.constrain(eq);
      m.run();
      EXPECT_EQ(m.folded(m.a), value);
      EXPECT_EQ(m.folded(eq), 1);
      EXPECT_EQ(m.preprocessor->fixedDecisions, std::vector<ExprId>{m.id(m.a)});
      EXPECT_EQ(m.preprocessor->fixedValues, std::vector<t_value>{value});
      EXPECT_TRUE(m.fixed.constraints.empty());
    }
  }
}

TEST(Preprocessor, AnEqualityThatIsNoConstraintFixesNothing) {
  PreprocessedModel m;
  QVExpression* eq = m.make(QVOperator::Eq, m.a, 1);
  m.run();
  EXPECT_FALSE(m.isConstant(eq));
  EXPECT_TRUE(m.preprocessor->fixedDecisions.empty());
}

TEST(Preprocessor, OnlyZeroAndOneFixADecision) {
  PreprocessedModel m;
  QVExpression* eq = m.make(QVOperator::Eq, m.a, 2);
  m.constrain(eq);
  m.run();
  EXPECT_FALSE(m.isConstant(m.a));
  EXPECT_EQ(m.fixed.constraints.size(), 1U);
}

TEST(Preprocessor, ADoubleConstantOneFixesNothing) {
  PreprocessedModel m;
  m.constrain(m.make(QVOperator::Eq, m.a, 1.0));
  m.run();
  EXPECT_FALSE(m.isConstant(m.a));
}

TEST(Preprocessor, AMaximumIsReadAsADoubleWhenItFixes) {
  PreprocessedModel m;
  m.constrain(m.make(QVOperator::Eq, m.a, m.make(QVOperator::Max, 1.0, 0.5)));
  m.constrain(m.make(QVOperator::Eq, m.b, m.make(QVOperator::Max, 1, 0)));
  m.run();
  EXPECT_EQ(m.folded(m.a), 1);
  EXPECT_FALSE(m.isConstant(m.b));
}

TEST(Preprocessor, AFixedDecisionFixesTheNextOne) {
  PreprocessedModel m;
  m.constrain(m.make(QVOperator::Eq, m.a, 1));
  m.constrain(m.make(QVOperator::Eq, m.b, m.a));
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  m.run();
  EXPECT_EQ(m.preprocessor->fixedDecisions, (std::vector<ExprId>{m.id(m.a), m.id(m.b)}));
  EXPECT_EQ(m.folded(sum), 2);
}

TEST(Preprocessor, ASecondDemandOnAFixedDecisionIsAConstantConstraint) {
  PreprocessedModel m;
  QVExpression* one = m.make(QVOperator::Eq, m.a, 1);
  QVExpression* zero = m.make(QVOperator::Eq, m.a, 0);
  m.constrain(one);
  m.constrain(zero);
  m.run();
  EXPECT_EQ(m.folded(one), 1);
  EXPECT_EQ(m.folded(zero), 0);
  EXPECT_EQ(m.fixed.constraints.size(), 1U);
}

TEST(Preprocessor, FailuresOfTheArithmeticPassThrough) {
  PreprocessedModel m;
  m.make(QVOperator::Div, 1, 0);
  const Failure failure = failureOf([&] { m.run(); });
  EXPECT_EQ(failure.explanation, "Division by zero.");
  EXPECT_TRUE(failure.isKernel);
}

}  // namespace
}  // namespace quvex
