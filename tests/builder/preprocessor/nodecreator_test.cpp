#include "builder/preprocessor/nodecreator.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/graphtext.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

/// A model with four decisions and an integer that is none.
struct CompiledModel : OpenModel {
  QVExpression* a = decision();
  QVExpression* b = decision();
  QVExpression* c = decision();
  QVExpression* d = decision();

  /// An integer expression over a decision that no flattening takes apart.
  QVExpression* integer(QVExpression* expr) { return make(QVOperator::Abs, make(QVOperator::Sum, expr, -3)); }
  /// A double expression over a decision that no flattening takes apart.
  QVExpression* real(QVExpression* expr) { return make(QVOperator::Sqrt, expr); }
  /// Takes away the single use of an expression, so that it stays a node of its own.
  void share(QVExpression* expr) { make(QVOperator::Abs, expr); }
  std::string closedText(QVExpression* expr) {
    close();
    return GraphText(*model).of(expr);
  }
};

TEST(NodeCreator, NeutralElements) {
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Sum, kBoolean, 0));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Sum, kInteger, 0));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Sum, kDouble, doubleToWord(0.0)));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::Sum, kInteger, 1));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Prod, kInteger, 1));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Prod, kDouble, doubleToWord(1.0)));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::Prod, kBoolean, 1));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::And, kBoolean, 1));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::And, kBoolean, 0));
  EXPECT_TRUE(NodeCreator::isNeutral(QVOperator::Or, kBoolean, 0));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::Or, kBoolean, 1));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::Xor, kBoolean, 0));
  EXPECT_FALSE(NodeCreator::isNeutral(QVOperator::Const, kInteger, 0));
}

// ------------------------------------------------------------------------------------------------------------- sums

TEST(NodeCreator, KeepsASumWithAConstantZero) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, m.a, 0)), "sum(d0,0)");
}

TEST(NodeCreator, FoldsAConstantSum) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, 2, 3)), "5");
}

TEST(NodeCreator, TurnsAConstantFactorIntoACoefficient) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, m.a, m.make(QVOperator::Prod, 3, m.b))), "scalar_sum[3,1](d1,d0)");
}

TEST(NodeCreator, SumsBooleansInAscendingNodeOrder) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b, m.c);
  m.make(QVOperator::And, m.b, m.a);  // a later root: its nodes exist already
  EXPECT_EQ(m.closedText(sum), "sum(d2,d1,d0)");
}

TEST(NodeCreator, SortsBooleansThatWereMadeInAnotherOrder) {
  CompiledModel m;
  m.make(QVOperator::Eq, m.a, m.b);  // an earlier root, whose operands are made last to first
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b, m.c);
  EXPECT_EQ(m.closedText(sum), "sum(d1,d0,d2)");
}

TEST(NodeCreator, GivesBooleansASumOfTheirOwn) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b, m.integer(m.c));
  EXPECT_EQ(m.closedText(sum), "sum(abs(sum(d2,-3)),sum(d1,d0))");
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Sum), 3U);
}

TEST(NodeCreator, LeavesASingleBooleanAmongTheOthers) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.integer(m.c));
  EXPECT_EQ(m.closedText(sum), "sum(abs(sum(d2,-3)),d0)");
}

TEST(NodeCreator, FlattensNestedSums) {
  CompiledModel m;
  QVExpression* inner = m.make(QVOperator::Sum, m.b, 4);
  QVExpression* sum = m.make(QVOperator::Sum, m.a, inner, 3);
  EXPECT_EQ(m.closedText(sum), "sum(7,sum(d1,d0))");
  EXPECT_EQ(GraphText(*m.model).of(inner), "-");
}

TEST(NodeCreator, DoesNotDissolveASharedSum) {
  CompiledModel m;
  QVExpression* inner = m.make(QVOperator::Sum, m.b, m.c);
  m.share(inner);
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, m.a, inner)), "sum(sum(d2,d1),d0)");
}

TEST(NodeCreator, GathersConstantsUnderOneCoefficient) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, 5, m.make(QVOperator::Prod, 3, m.integer(m.a)), 2);
  EXPECT_EQ(m.closedText(sum), "scalar_sum[3,7](abs(sum(d0,-3)),1)");
}

TEST(NodeCreator, AddsCoefficientsOfRepeatedBooleans) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.make(QVOperator::Prod, 4, m.a), m.b);
  EXPECT_EQ(m.closedText(sum), "scalar_sum[1,7](d1,d0)");
}

TEST(NodeCreator, LeavesOneRepeatedBooleanAsItStands) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.a);
  EXPECT_EQ(m.closedText(sum), "scalar_sum[1,3](d0,d0)");
}

TEST(NodeCreator, SplitsBooleansOffAWeightedSum) {
  CompiledModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.b);
  sum->addOperand(m.make(QVOperator::Prod, 2, m.integer(m.c)));
  EXPECT_EQ(m.closedText(sum), "scalar_sum[2,1](abs(sum(d2,-3)),scalar_sum[1,3](d1,d0))");
}

TEST(NodeCreator, SumsDoubles) {
  CompiledModel m;
  QVExpression* unit = m.make(QVOperator::Sum, m.a, 2.5);
  QVExpression* weighted =
      m.make(QVOperator::Sum, m.make(QVOperator::Prod, 0.5, m.b), m.make(QVOperator::Prod, 2, m.c), 1.5);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(unit), "double_sum(d0,2.5)");
  EXPECT_EQ(GraphText(*m.model).of(weighted), "double_scalar_sum[1.5,1.](1.,double_scalar_sum[2.,0.5](d2,d1))");
}

TEST(NodeCreator, NestedFactorsMultiply) {
  CompiledModel m;
  QVExpression* inner = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 2, m.a), m.b);
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, -3, inner), m.c);
  EXPECT_EQ(m.closedText(sum), "scalar_sum[1,-3,-6](d2,d1,d0)");
}

TEST(NodeCreator, DropsTermsWhoseCoefficientBecomesZero) {
  CompiledModel m;
  QVExpression* tiny =
      m.make(QVOperator::Prod, 1e-200, m.make(QVOperator::Sum, m.make(QVOperator::Prod, 1e-200, m.a), m.b));
  EXPECT_EQ(m.closedText(m.make(QVOperator::Sum, tiny, m.c)), "double_scalar_sum[1.,0.](d2,d1)");
}

// --------------------------------------------------------------------------------------------------------- products

TEST(NodeCreator, AProductOfBooleansIsAConjunction) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Prod, m.a, m.b)), "and(d1,d0)");
}

TEST(NodeCreator, AProductOfOneDecisionAndOneIsScaled) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Prod, m.a, 1)), "scalar_product[1](d0)");
}

TEST(NodeCreator, GathersTheFactorOfAProduct) {
  CompiledModel m;
  QVExpression* product = m.make(QVOperator::Prod, 2, m.a, m.make(QVOperator::Prod, m.integer(m.b), 5));
  EXPECT_EQ(m.closedText(product), "scalar_product[10](abs(sum(d1,-3)),d0)");
}

TEST(NodeCreator, MultipliesIntegersAndDoubles) {
  CompiledModel m;
  QVExpression* integers = m.make(QVOperator::Prod, m.a, m.integer(m.b));
  QVExpression* doubles = m.make(QVOperator::Prod, m.a, m.real(m.b));
  QVExpression* scaled = m.make(QVOperator::Prod, 0.5, m.a, m.b);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(integers), "product(abs(sum(d1,-3)),d0)");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "double_product(double_sqrt(d1),d0)");
  EXPECT_EQ(GraphText(*m.model).of(scaled), "double_scalar_product[0.5](d1,d0)");
}

TEST(NodeCreator, LosesTheFactorOfASharedProductInsideAProduct) {
  CompiledModel m;
  QVExpression* inner = m.make(QVOperator::Prod, 3, m.b);
  m.share(inner);
  EXPECT_EQ(m.closedText(m.make(QVOperator::Prod, m.a, inner)), "product(d1,d0)");
}

TEST(NodeCreator, AnUnderflowingFactorMakesTheIntegerZero) {
  CompiledModel m;
  QVExpression* product = m.make(QVOperator::Prod, 1e-200, 1e-200, m.real(m.a));
  EXPECT_EQ(m.closedText(product), "0");
}

// -------------------------------------------------------------------------------------------------- minima and maxima

TEST(NodeCreator, KeepsANegativeProductInsideAMaximum) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Max, m.make(QVOperator::Prod, -3, m.a), 1)),
            "max(scalar_product[-3](d0),1)");
}

TEST(NodeCreator, ScalesTheTermsOfAMaximum) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Max, m.make(QVOperator::Prod, 3, m.a), 2, m.b)),
            "scalar_max[1,3,2](d1,d0,1)");
}

TEST(NodeCreator, FlattensMinimaAndFoldsTheirConstants) {
  CompiledModel m;
  QVExpression* inner = m.make(QVOperator::Min, 7, m.integer(m.a));
  EXPECT_EQ(m.closedText(m.make(QVOperator::Min, 5, inner, m.b)), "min(d1,abs(sum(d0,-3)),5)");
}

TEST(NodeCreator, ExtremesOfDoubles) {
  CompiledModel m;
  QVExpression* plain = m.make(QVOperator::Min, m.a, 0.5);
  QVExpression* scaled = m.make(QVOperator::Max, m.make(QVOperator::Prod, 1.5, m.a), 0.5);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(plain), "double_min(d0,0.5)");
  EXPECT_EQ(GraphText(*m.model).of(scaled), "double_scalar_max[1.5,0.5](d0,1.)");
}

// ------------------------------------------------------------------------------------------------ boolean aggregates

TEST(NodeCreator, FlattensBooleanAggregates) {
  CompiledModel m;
  QVExpression* conjunction = m.make(QVOperator::And, m.a, m.make(QVOperator::And, m.b, m.c));
  QVExpression* disjunction = m.make(QVOperator::Or, m.make(QVOperator::Or, m.a, m.b), m.c);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(conjunction), "and(d2,d1,d0)");
  EXPECT_EQ(GraphText(*m.model).of(disjunction), "or(d2,d1,d0)");
}

TEST(NodeCreator, DropsNeutralConstantsOfBooleanAggregates) {
  CompiledModel m;
  QVExpression* conjunction = m.make(QVOperator::And, m.a, m.b, 1);
  QVExpression* disjunction = m.make(QVOperator::Or, m.a, m.b, 0);
  QVExpression* parity = m.make(QVOperator::Xor, m.a, m.b, 0);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(conjunction), "and(d1,d0)");
  EXPECT_EQ(GraphText(*m.model).of(disjunction), "or(d1,d0)");
  EXPECT_EQ(GraphText(*m.model).of(parity), "xor(d1,d0,0)");
}

// ---------------------------------------------------------------------------------------------------- representatives

TEST(NodeCreator, LooksThroughGroupsOfOneOperand) {
  for (const QVOperator op : {QVOperator::Sum, QVOperator::Prod, QVOperator::Max, QVOperator::Min, QVOperator::And,
                              QVOperator::Or, QVOperator::Xor}) {
    CompiledModel m;
    QVExpression* group = m.make(op, m.a);
    QVExpression* user = m.make(QVOperator::Leq, group, m.b);
    EXPECT_EQ(m.closedText(user), "leq(d0,d1)");
    EXPECT_EQ(GraphText(*m.model).of(group), "d0");
  }
}

TEST(NodeCreator, ARootOfOneOperandTakesItsNode) {
  CompiledModel m;
  QVExpression* root = m.make(QVOperator::Sum, m.make(QVOperator::Max, m.make(QVOperator::And, m.a, m.b)));
  EXPECT_EQ(m.closedText(root), "and(d1,d0)");
}

TEST(NodeCreator, AConstOperandNeverDisappearsFromAGroup) {
  CompiledModel m;
  QVExpression* user = m.make(QVOperator::Leq, m.make(QVOperator::And, m.a, 1), m.b);
  EXPECT_EQ(m.closedText(user), "leq(and(d0),d1)");
}

TEST(NodeCreator, AFoldedOperandDisappearsByItsOwnOperator) {
  CompiledModel m;
  QVExpression* zero = m.make(QVOperator::Sum, 2, -2);
  QVExpression* one = m.make(QVOperator::Prod, 2, 1, m.make(QVOperator::Div, 2, 4));
  QVExpression* sum = m.make(QVOperator::Leq, m.make(QVOperator::Sum, zero, m.a), 7);
  QVExpression* none = m.make(QVOperator::Leq, m.make(QVOperator::Sum, one, m.b), 7);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(sum), "leq(d0,7)");
  // The product is 0 here, and 0 is not neutral for a product.
  EXPECT_EQ(GraphText(*m.model).of(none), "leq(sum(d1,0),7)");
}

TEST(NodeCreator, AFoldedConjunctionDisappearsEvenFromASum) {
  CompiledModel m;
  QVExpression* truth = m.make(QVOperator::And, 1, 1);
  EXPECT_EQ(m.closedText(m.make(QVOperator::Leq, m.make(QVOperator::Sum, truth, m.a), 7)), "leq(d0,7)");
}

TEST(NodeCreator, ANeutralDoubleStaysWhereItAloneMakesTheResultDouble) {
  CompiledModel m;
  QVExpression* zero = m.make(QVOperator::Sum, 2.5, -2.5);
  QVExpression* alone = m.make(QVOperator::Leq, m.make(QVOperator::Sum, zero, m.a), 7);
  QVExpression* beside = m.make(QVOperator::Leq, m.make(QVOperator::Sum, zero, m.real(m.b)), 7);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(alone), "double_leq(double_sum(d0,0.),7)");
  EXPECT_EQ(GraphText(*m.model).of(beside), "double_leq(double_sqrt(d1),7)");
}

// -------------------------------------------------------------------------------------------------------------- plain

TEST(NodeCreator, PlainNodesFollowTheTypesOfTheirOperands) {
  CompiledModel m;
  const struct {
    QVOperator op;
    const char* integerNode;
    const char* doubleNode;
  } binary[] = {
      {QVOperator::Eq, "eq", "double_eq"},
      {QVOperator::Neq, "neq", "double_neq"},
      {QVOperator::Geq, "geq", "double_geq"},
      {QVOperator::Leq, "leq", "double_leq"},
      {QVOperator::Gt, "gt", "double_gt"},
      {QVOperator::Lt, "lt", "double_lt"},
      {QVOperator::Dist, "distance", "double_distance"},
  };
  std::vector<std::pair<QVExpression*, std::string>> expected;
  for (const auto& row : binary) {
    expected.emplace_back(m.make(row.op, m.a, m.b), row.integerNode + std::string("(d0,d1)"));
    expected.emplace_back(m.make(row.op, m.a, 1.5), row.doubleNode + std::string("(d0,1.5)"));
  }
  expected.emplace_back(m.make(QVOperator::Div, m.a, 2), "divide(d0,2)");
  expected.emplace_back(m.make(QVOperator::Div, m.a, 1.5), "double_divide(d0,1.5)");
  expected.emplace_back(m.make(QVOperator::Mod, m.a, 2), "modulo(d0,2)");
  expected.emplace_back(m.make(QVOperator::Abs, m.a), "abs(d0)");
  expected.emplace_back(m.make(QVOperator::Abs, m.real(m.a)), "double_abs(double_sqrt(d0))");
  expected.emplace_back(m.make(QVOperator::Not, m.a), "not(d0)");
  expected.emplace_back(m.make(QVOperator::Ceil, m.real(m.a)), "double_ceil(double_sqrt(d0))");
  expected.emplace_back(m.make(QVOperator::Floor, m.real(m.a)), "double_floor(double_sqrt(d0))");
  expected.emplace_back(m.make(QVOperator::Round, m.real(m.a)), "double_round(double_sqrt(d0))");
  expected.emplace_back(m.make(QVOperator::Log, m.a), "double_log(d0)");
  expected.emplace_back(m.make(QVOperator::Exp, m.a), "double_exp(d0)");
  expected.emplace_back(m.make(QVOperator::Pow, m.a, 2), "double_pow(d0,2)");
  expected.emplace_back(m.make(QVOperator::Cos, m.a), "double_cos(d0)");
  expected.emplace_back(m.make(QVOperator::Sin, m.a), "double_sin(d0)");
  expected.emplace_back(m.make(QVOperator::Tan, m.a), "double_tan(d0)");
  m.close();
  for (const auto& [expr, text] : expected) EXPECT_EQ(GraphText(*m.model).of(expr), text);
}

TEST(NodeCreator, MakesTheLastOperandFirst) {
  CompiledModel m;
  m.make(QVOperator::Eq, m.a, m.b);
  m.close();
  const DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  EXPECT_LT(builder.getNode(m.b), builder.getNode(m.a));
}

TEST(NodeCreator, SharesIntegerConstantsAndNoDoubles) {
  CompiledModel m;
  m.make(QVOperator::Leq, m.a, 7);
  m.make(QVOperator::Geq, m.b, m.make(QVOperator::Sum, 3, 4));
  m.make(QVOperator::Leq, m.a, 7.5);
  m.make(QVOperator::Geq, m.b, 7.5);
  m.close();
  EXPECT_EQ(GraphText(*m.model).count(NodeType::DoubleConstant), 2U);
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Constant), 2U);  // the 7, and the 0 of the objective
}

// ------------------------------------------------------------------------------------------------------------ choices

TEST(NodeCreator, AConstantConditionChoosesItsBranch) {
  CompiledModel m;
  QVExpression* first = m.make(QVOperator::Iif, 1, m.a, m.b);
  QVExpression* second = m.make(QVOperator::Iif, 0, m.a, m.b);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(first), "d0");
  EXPECT_EQ(GraphText(*m.model).of(second), "d1");
}

TEST(NodeCreator, AChosenIntegerBranchIsCastInADoubleChoice) {
  CompiledModel m;
  QVExpression* choice = m.make(QVOperator::Iif, 1, m.integer(m.a), 2.5);
  EXPECT_EQ(m.closedText(choice), "double_cast(abs(sum(d0,-3)))");
}

TEST(NodeCreator, AChosenDoubleBranchIsTakenAsItIs) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::Iif, 0, m.a, m.real(m.b))), "double_sqrt(d1)");
}

TEST(NodeCreator, AnOpenConditionMakesAChoice) {
  CompiledModel m;
  QVExpression* integers = m.make(QVOperator::Iif, m.a, m.b, 3);
  QVExpression* doubles = m.make(QVOperator::Iif, m.a, m.b, 2.5);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(integers), "if(d0,d1,3)");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "double_if(d0,d1,2.5)");
}

// ------------------------------------------------------------------------------------------------------------- arrays

TEST(NodeCreator, AConstantIndexPicksTheElement) {
  CompiledModel m;
  QVExpression* array = m.make(QVOperator::Array, m.a, m.b);
  QVExpression* at = m.make(QVOperator::At, array, 1);
  EXPECT_EQ(m.closedText(at), "d1");
  EXPECT_EQ(GraphText(*m.model).of(array), "-");
}

TEST(NodeCreator, AnElementIsTakenItselfAndNotItsRepresentative) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::At, m.make(QVOperator::Array, m.make(QVOperator::And, m.a), m.b), 0)),
            "and(d0)");
}

TEST(NodeCreator, APickedIntegerIsCastWhereTheArrayHoldsDoubles) {
  CompiledModel m;
  EXPECT_EQ(m.closedText(m.make(QVOperator::At, m.make(QVOperator::Array, m.a, 1.5), 0)), "double_cast(d0)");
}

TEST(NodeCreator, AConstantIndexOutsideTheArrayFails) {
  for (const int index : {-1, 2, 5}) {
    CompiledModel m;
    QVExpression* at = m.make(QVOperator::At, m.make(QVOperator::Array, m.a, m.b), index);
    const std::string text = at->toString();
    const Failure failure = failureOf([&] { m.close(); });
    EXPECT_EQ(failure.explanation,
              "Index out of bounds for " + text + " (index: " + std::to_string(index) + ", array size: 2).");
    EXPECT_EQ(failure.function, "quvex::NodeCreator::createAt");
    EXPECT_TRUE(failure.isKernel);
  }
}

TEST(NodeCreator, AnOpenIndexReadsAnArrayNode) {
  CompiledModel m;
  QVExpression* variable = m.make(QVOperator::At, m.make(QVOperator::Array, m.a, m.b, 7), m.c);
  QVExpression* constant = m.make(QVOperator::At, m.make(QVOperator::Array, 4, 7), m.c);
  QVExpression* doubles = m.make(QVOperator::At, m.make(QVOperator::Array, m.a, 1.5), m.c);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(variable), "at(array(d0,d1,7),d2)");
  EXPECT_EQ(GraphText(*m.model).of(constant), "at(const_array[4,7](),d2)");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "double_at(array(d0,1.5),d2)");
}

TEST(NodeCreator, AConstantArrayWithADoubleHoldsDoubles) {
  CompiledModel m;
  QVExpression* array = m.make(QVOperator::Array, 4, 1.5);
  m.make(QVOperator::At, array, m.a);
  m.close();
  const DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  const DagFixedFields& fixed = builder.getFixedFields();
  const NodeId node = builder.getNode(array);
  EXPECT_EQ(fixed.nodeTypes[node], NodeType::ConstArray);
  EXPECT_EQ(fixed.constantDouble(node, 0), 4.0);
  EXPECT_EQ(fixed.constantDouble(node, 1), 1.5);
}

TEST(NodeCreator, WhatStandsOnlyInAnArrayIsNotFoldedButBecomesAConstantNode) {
  CompiledModel m;
  QVExpression* array = m.make(QVOperator::Array, m.make(QVOperator::Sum, 1, 2), 7);
  EXPECT_EQ(m.closedText(m.make(QVOperator::At, array, m.a)), "at(array(3,7),d0)");
}

TEST(NodeCreator, AProductOfConstantsBelowAnArrayIsNoCoefficient) {
  CompiledModel m;
  const auto element = [&](QVOperator op, QVExpression* product) { return m.make(op, m.a, product); };
  QVExpression* array = m.make(QVOperator::Array, element(QVOperator::Sum, m.make(QVOperator::Prod, 2, 3)),
                               element(QVOperator::Max, m.make(QVOperator::Prod, 2, 3)),
                               element(QVOperator::Prod, m.make(QVOperator::Prod, 2, 3)));
  QVExpression* at = m.make(QVOperator::At, array, m.make(QVOperator::Sum, m.b, m.c));
  EXPECT_EQ(m.closedText(at), "at(array(sum(6,d0),max(6,d0),scalar_product[6](d0)),sum(d2,d1))");
}

TEST(NodeCreator, ABooleanAggregateOfConstantsBelowAnArrayIsAConstant) {
  CompiledModel m;
  QVExpression* array = m.make(QVOperator::Array, m.make(QVOperator::And, 1, 1), m.make(QVOperator::Or, 0, 0), m.a);
  QVExpression* at = m.make(QVOperator::At, array, m.make(QVOperator::Sum, m.b, m.c));
  EXPECT_EQ(m.closedText(at), "at(array(1,0,d0),sum(d2,d1))");
}

// ------------------------------------------------------------------------------------------------------------ scalars

TEST(NodeCreator, AScalarOfConstantsIsAConstant) {
  CompiledModel m;
  QVExpression* integers =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, 2, 3), m.make(QVOperator::Array, 10, 100));
  QVExpression* doubles =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, 2, 3), m.make(QVOperator::Array, 10, 0.5));
  QVExpression* empty = m.make(QVOperator::Scalar, m.make(QVOperator::Array), m.make(QVOperator::Array));
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(integers), "320");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "21.5");
  EXPECT_EQ(GraphText(*m.model).of(empty), "0");
}

TEST(NodeCreator, AScalarOfTwoVariableSidesIsASumOfProducts) {
  CompiledModel m;
  QVExpression* integers =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, 3), m.make(QVOperator::Array, m.b, m.c));
  QVExpression* doubles =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, 3), m.make(QVOperator::Array, 0.5, m.d));
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(integers), "sum(product(d0,d1),product(3,d2))");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "double_sum(double_product(d0,0.5),double_product(3,d3))");
}

TEST(NodeCreator, AScalarMakesItsNodesPositionByPosition) {
  CompiledModel m;
  QVExpression* scalar =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, m.c, m.d));
  m.close();
  const DagBuilder& builder = *ModelAccess::dagBuilder(*m.model);
  const DagFixedFields& fixed = builder.getFixedFields();
  const NodeId sum = builder.getNode(scalar);
  const std::vector<NodeId> order = {builder.getNode(m.a),
                                     builder.getNode(m.c),
                                     fixed.child(sum, 0),
                                     builder.getNode(m.b),
                                     builder.getNode(m.d),
                                     fixed.child(sum, 1),
                                     sum};
  for (std::size_t i = 1; i < order.size(); ++i) EXPECT_EQ(order[i], order[i - 1] + 1);
}

TEST(NodeCreator, AScalarWithOneConstantSideIsAWeightedSum) {
  CompiledModel m;
  QVExpression* right =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, 4, 5));
  QVExpression* left =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, 4, 5), m.make(QVOperator::Array, m.a, m.integer(m.c)));
  QVExpression* doubles =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, 4, 0.5));
  QVExpression* doubleSide =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.real(m.b)), m.make(QVOperator::Array, 4, 5));
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(right), "scalar_sum[4,5](d0,d1)");
  EXPECT_EQ(GraphText(*m.model).of(left), "scalar_sum[4,5](d0,abs(sum(d2,-3)))");
  EXPECT_EQ(GraphText(*m.model).of(doubles), "double_scalar_sum[4.,0.5](d0,d1)");
  EXPECT_EQ(GraphText(*m.model).of(doubleSide), "double_scalar_sum[4.,5.](d0,double_sqrt(d1))");
}

TEST(NodeCreator, AScalarOfArraysOfDifferentLengthsFails) {
  CompiledModel m;
  m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, 2), m.make(QVOperator::Array, m.a, m.b, 3));
  const Failure failure = failureOf([&] { m.close(); });
  EXPECT_EQ(failure.explanation, "Arrays for scalar operator must have the same number of elements");
  EXPECT_EQ(failure.function, "quvex::NodeCreator::createScalarArray");
}

TEST(NodeCreator, AFoldedScalarIsAConstantForTheGroupAroundIt) {
  CompiledModel m;
  QVExpression* scalar = m.make(QVOperator::Scalar, m.make(QVOperator::Array, 2, 3), m.make(QVOperator::Array, 4, 5));
  m.make(QVOperator::Leq, scalar, m.a);  // made first, and so known as a constant when the sum comes
  QVExpression* late = m.make(QVOperator::Sum, m.b, scalar, 1);
  EXPECT_EQ(m.closedText(late), "sum(d1,24)");
}

// ---------------------------------------------------------------------------------------------------- depth and width

TEST(NodeCreator, DeepNestingOfDifferentGroupsNeedsNoMachineStack) {
  CompiledModel m;
  QVExpression* expr = m.a;
  for (int i = 0; i < 100000; ++i) {
    expr = m.make(QVOperator::Sum, m.b, m.make(QVOperator::Max, m.c, m.make(QVOperator::Min, expr, m.d)));
  }
  m.close();
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Max), 100000U);
}

TEST(NodeCreator, DeepNestingOfArraysNeedsNoMachineStack) {
  CompiledModel m;
  QVExpression* expr = m.a;
  for (int i = 0; i < 100000; ++i) {
    expr = m.make(QVOperator::At, m.make(QVOperator::Array, expr, m.b), m.c);
  }
  m.close();
  EXPECT_EQ(GraphText(*m.model).count(NodeType::At), 100000U);
}

TEST(NodeCreator, ALongChainOfGroupsOfOneOperandIsLookedThroughOnce) {
  CompiledModel m;
  QVExpression* expr = m.a;
  for (int i = 0; i < 100000; ++i) {
    expr = m.make(QVOperator::Sum, expr);
    m.make(QVOperator::Leq, expr, m.b);
  }
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(expr), "d0");
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Leq), 100000U);
}

}  // namespace
}  // namespace quvex
