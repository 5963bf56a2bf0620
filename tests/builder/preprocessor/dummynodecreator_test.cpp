#include "builder/preprocessor/dummynodecreator.h"

#include <gtest/gtest.h>

#include "api/qvparam.h"
#include "support/failure.h"
#include "support/graphtext.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

/// A model that is compiled without preprocessing.
struct PlainModel : OpenModel {
  QVExpression* a = decision();
  QVExpression* b = decision();
  QVExpression* c = decision();

  PlainModel() { quvex.getParam()->setAdvancedParam("preprocessEnabled", 0); }

  std::string closedText(QVExpression* expr) {
    close();
    return GraphText(*model).of(expr);
  }
};

TEST(DummyNodeCreator, MakesOneNodePerExpression) {
  PlainModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.b), 0), 2);
  m.minimize(sum);
  EXPECT_EQ(m.closedText(sum), "sum(d0,sum(product(3,d1),0),2)");
  const DagFixedFields& fixed = ModelAccess::dagBuilder(*m.model)->getFixedFields();
  EXPECT_EQ(fixed.nbNodes, static_cast<std::uint32_t>(m.model->getNbExpressions()));
}

TEST(DummyNodeCreator, FoldsNothing) {
  PlainModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, 2, 3)), "sum(2,3)");
}

TEST(DummyNodeCreator, LooksThroughNothing) {
  PlainModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Leq, m.make(QVOperator::And, m.a), m.b)), "leq(and(d0),d1)");
}

TEST(DummyNodeCreator, FollowsTheTypesOfTheOperands) {
  PlainModel m;
  const struct {
    QVOperator op;
    const char* integerNode;
    const char* doubleNode;
  } groups[] = {
      {QVOperator::Sum, "sum", "double_sum"},
      {QVOperator::Prod, "product", "double_product"},
      {QVOperator::Max, "max", "double_max"},
      {QVOperator::Min, "min", "double_min"},
  };
  std::vector<std::pair<QVExpression*, std::string>> expected;
  for (const auto& row : groups) {
    expected.emplace_back(m.make(row.op, m.a, 2), row.integerNode + std::string("(d0,2)"));
    expected.emplace_back(m.make(row.op, m.a, 1.5), row.doubleNode + std::string("(d0,1.5)"));
  }
  expected.emplace_back(m.make(QVOperator::Iif, m.a, m.b, 2), "if(d0,d1,2)");
  expected.emplace_back(m.make(QVOperator::Iif, 1, m.b, 1.5), "double_if(1,d1,1.5)");
  expected.emplace_back(m.make(QVOperator::And, m.a, 1), "and(d0,1)");
  expected.emplace_back(m.make(QVOperator::Or, m.a, m.b), "or(d0,d1)");
  expected.emplace_back(m.make(QVOperator::Xor, m.a, m.b), "xor(d0,d1)");
  m.close();
  for (const auto& [expr, text] : expected) EXPECT_EQ(GraphText(*m.model).of(expr), text);
}

TEST(DummyNodeCreator, ReadsArraysOfDoublesWithTheIntegerNode) {
  PlainModel m;
  QVExpression* integers = m.make(QVOperator::At, m.make(QVOperator::Array, 4, 5), m.a);
  QVExpression* doubles = m.make(QVOperator::At, m.make(QVOperator::Array, m.b, 1.5), m.a);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(integers), "at(array(4,5),d0)");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "at(array(d1,1.5),d0)");
}

TEST(DummyNodeCreator, TakesAScalarApartIntoProductsAndOneSum) {
  PlainModel m;
  QVExpression* scalar =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, 3), m.make(QVOperator::Array, 4, m.b));
  EXPECT_EQ(m.closedText(scalar), "sum(product(d0,4),product(3,d1))");
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Product), 2U);
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Sum), 1U);
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Array), 2U);
}

TEST(DummyNodeCreator, ADoubleElementMakesAScalarDouble) {
  PlainModel m;
  QVExpression* scalar =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, 3), m.make(QVOperator::Array, 0.5, m.b));
  EXPECT_EQ(m.closedText(scalar), "double_sum(double_product(d0,0.5),double_product(3,d1))");
}

TEST(DummyNodeCreator, AScalarGoesByTheLengthOfItsFirstArray) {
  PlainModel m;
  QVExpression* scalar =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, 4, 5, 6));
  EXPECT_EQ(m.closedText(scalar), "sum(product(d0,4),product(d1,5))");
}

TEST(DummyNodeCreator, AScalarWhoseSecondArrayIsShorterFails) {
  PlainModel m;
  m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, 4));
  EXPECT_EQ(explanationOf([&] { m.close(); }), "Arrays for scalar operator must have the same number of elements");
}

TEST(DummyNodeCreator, ConstantDivisionByZeroIsFoundByTheGraphAndNotByFolding) {
  PlainModel m;
  m.make(QVOperator::Div, 1, 0);
  const Failure failure = failureOf([&] { m.close(); });
  EXPECT_EQ(failure.explanation, "Division by zero.");
  EXPECT_EQ(failure.function, "quvex::NodeDivide::computeBounds");
}

TEST(DummyNodeCreator, RegistersConstraintsOnceAndLeavesOutTheConstantOne) {
  PlainModel m;
  QVExpression* leq = m.make(QVOperator::Leq, m.a, m.b);
  m.model->addConstraint(leq);
  m.model->addConstraint(m.constant(std::int64_t{1}));
  m.model->addConstraint(m.constant(std::int64_t{0}));
  m.close();
  const DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  const DagFixedFields& fixed = builder.getFixedFields();
  ASSERT_EQ(fixed.constraints.size(), 2U);
  EXPECT_EQ(fixed.constraints[0], builder.getNode(leq));
  EXPECT_EQ(GraphText(*m.model).ofNode(fixed.constraints[1]), "0");
}

TEST(DummyNodeCreator, DeepModelsNeedNoMachineStack) {
  PlainModel m;
  QVExpression* expr = m.a;
  for (int i = 0; i < 100000; ++i) expr = m.make(QVOperator::And, expr, m.b);
  m.close();
  EXPECT_EQ(GraphText(*m.model).count(NodeType::And), 100000U);
}

}  // namespace
}  // namespace quvex
