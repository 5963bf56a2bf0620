#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "support/nodeharness.h"

/// Laws that hold for every aggregate operator over every container: incremental values equal the plain definition.
namespace quvex {
namespace {

using Values = std::span<const double>;

double sum(Values x, Values) { return std::accumulate(x.begin(), x.end(), 0.0); }
double scalarSum(Values x, Values c) { return std::inner_product(x.begin(), x.end(), c.begin(), 0.0); }
double product(Values x, Values c) {
  return std::accumulate(x.begin(), x.end(), c.empty() ? 1.0 : c[0], std::multiplies<>());
}
double allOnes(Values x, Values) {
  return std::ranges::all_of(x, [](double v) { return v == 1; }) ? 1 : 0;
}
double anyOne(Values x, Values) {
  return std::ranges::any_of(x, [](double v) { return v == 1; }) ? 1 : 0;
}
double parity(Values x, Values) { return std::fmod(sum(x, {}), 2); }

std::vector<double> terms(Values x, Values c) {
  std::vector<double> terms(x.begin(), x.end());
  for (std::size_t i = 0; i < c.size(); ++i) terms[i] *= c[i];
  return terms;
}
double minimum(Values x, Values c) { return std::ranges::min(terms(x, c)); }
double maximum(Values x, Values c) { return std::ranges::max(terms(x, c)); }

TEST(Aggregates, BooleanSumEqualsItsDefinition) {
  runOnAllContainers(NodeType::BooleanSum, OperandKind::Booleans, sum);
}
TEST(Aggregates, SumEqualsItsDefinition) { runOnAllContainers(NodeType::Sum, OperandKind::Integers, sum); }
TEST(Aggregates, ScalarSumEqualsItsDefinition) {
  runOnAllContainers(NodeType::ScalarSum, OperandKind::Integers, scalarSum);
}
TEST(Aggregates, DoubleSumEqualsItsDefinition) { runOnAllContainers(NodeType::DoubleSum, OperandKind::Doubles, sum); }
TEST(Aggregates, DoubleScalarSumEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleScalarSum, OperandKind::Doubles, scalarSum);
}

TEST(Aggregates, AndEqualsItsDefinition) { runOnAllContainers(NodeType::And, OperandKind::Booleans, allOnes); }
TEST(Aggregates, OrEqualsItsDefinition) { runOnAllContainers(NodeType::Or, OperandKind::Booleans, anyOne); }
TEST(Aggregates, XorEqualsItsDefinition) { runOnAllContainers(NodeType::Xor, OperandKind::Booleans, parity); }

TEST(Aggregates, MinEqualsItsDefinition) { runOnAllContainers(NodeType::Min, OperandKind::Integers, minimum); }
TEST(Aggregates, MaxEqualsItsDefinition) { runOnAllContainers(NodeType::Max, OperandKind::Integers, maximum); }
TEST(Aggregates, ScalarMinEqualsItsDefinition) {
  runOnAllContainers(NodeType::ScalarMin, OperandKind::Integers, minimum);
}
TEST(Aggregates, ScalarMaxEqualsItsDefinition) {
  runOnAllContainers(NodeType::ScalarMax, OperandKind::Integers, maximum);
}
TEST(Aggregates, DoubleMinEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleMin, OperandKind::Doubles, minimum);
}
TEST(Aggregates, DoubleMaxEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleMax, OperandKind::Doubles, maximum);
}
TEST(Aggregates, DoubleScalarMinEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleScalarMin, OperandKind::Doubles, minimum);
}
TEST(Aggregates, DoubleScalarMaxEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleScalarMax, OperandKind::Doubles, maximum);
}

TEST(Aggregates, ProductEqualsItsDefinition) {
  runOnAllContainers(NodeType::Product, OperandKind::IntegerFactors, product);
}
TEST(Aggregates, ScalarProductEqualsItsDefinition) {
  runOnAllContainers(NodeType::ScalarProduct, OperandKind::IntegerFactors, product);
}
TEST(Aggregates, DoubleProductEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleProduct, OperandKind::DoubleFactors, product);
}
TEST(Aggregates, DoubleScalarProductEqualsItsDefinition) {
  runOnAllContainers(NodeType::DoubleScalarProduct, OperandKind::DoubleFactors, product);
}

TEST(Aggregates, TheLargestContainersHoldTheSameLaws) {
  runOnLargestContainers(NodeType::Sum, OperandKind::Integers, sum);
  runOnLargestContainers(NodeType::Min, OperandKind::Integers, minimum);
  runOnLargestContainers(NodeType::DoubleMax, OperandKind::Doubles, maximum);
  runOnLargestContainers(NodeType::Xor, OperandKind::Booleans, parity);
  runOnLargestContainers(NodeType::Product, OperandKind::IntegerFactors, product);
}

}  // namespace
}  // namespace quvex
