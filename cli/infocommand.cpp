#include "cli/infocommand.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "api/heuristicpool.h"
#include "api/modelaccess.h"
#include "builder/dagbuilder.h"
#include "builder/operatortools.h"
#include "cli/environment.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/nodetypeutils.h"
#include "solver/move/dagstructures.h"
#include "solver/move/staticconstraintnode.h"

namespace quvex::cli {

namespace {

constexpr std::size_t kNbLargest = 5;

void printCount(std::string_view name, std::uint64_t count) {
  std::cout << "  " << std::left << std::setw(24) << name << std::right << std::setw(12) << count << '\n';
}

void printOperators(const QVModel& model) {
  std::map<QVOperator, std::uint64_t> counts;
  for (int i = 0; i < model.getNbExpressions(); ++i) ++counts[model.getExpression(i)->getOperator()];
  std::cout << "Operators:\n";
  for (const auto& [op, count] : counts) printCount(OperatorTools::getName(op), count);
}

void printValueTypes(const QVModel& model) {
  std::uint64_t booleans = 0;
  std::uint64_t integers = 0;
  std::uint64_t doubles = 0;
  for (int i = 0; i < model.getNbExpressions(); ++i) {
    const QVExpression& expression = *model.getExpression(i);
    if (expression.isBool()) ++booleans;
    if (expression.isInt()) ++integers;
    if (expression.isDouble()) ++doubles;
  }
  const auto all = static_cast<std::uint64_t>(model.getNbExpressions());
  std::cout << "Value types:\n";
  printCount("boolean", booleans);
  printCount("integer", integers);
  printCount("double", doubles);
  printCount("array", all - booleans - integers - doubles);
}

/// The expressions with most operands: where the cost of evaluation lies.
void printLargest(const QVModel& model) {
  std::vector<const QVExpression*> expressions;
  expressions.reserve(static_cast<std::size_t>(model.getNbExpressions()));
  for (int i = 0; i < model.getNbExpressions(); ++i) expressions.push_back(model.getExpression(i));
  const std::size_t shown = std::min(kNbLargest, expressions.size());
  std::partial_sort(expressions.begin(), expressions.begin() + static_cast<std::ptrdiff_t>(shown), expressions.end(),
                    [](const QVExpression* a, const QVExpression* b) {
                      if (a->getNbOperands() != b->getNbOperands()) return a->getNbOperands() > b->getNbOperands();
                      return a->getIndex() < b->getIndex();
                    });
  std::cout << "Largest operand lists:\n";
  for (const QVExpression* expression : std::span(expressions).first(shown)) {
    printCount(std::string(OperatorTools::getName(expression->getOperator())) + " " + displayName(*expression),
               static_cast<std::uint64_t>(expression->getNbOperands()));
  }
}

void printNodeTypes(const DagFixedFields& fixed) {
  std::cout << "Node types:\n";
  for (std::size_t type = 0; type < fixed.typeCounts.size(); ++type) {
    if (fixed.typeCounts[type] != 0) {
      printCount(NodeTypeUtils::toString(static_cast<NodeType>(type)), fixed.typeCounts[type]);
    }
  }
}

[[nodiscard]] std::string boundText(const DagFixedFields& fixed, NodeId id, t_value bound) {
  return fixed.isDouble(id) ? displayDouble(wordToDouble(bound)) : std::to_string(bound);
}

void printObjectiveBounds(const DagFixedFields& fixed) {
  std::cout << "Computed bounds of the objectives:\n";
  for (std::size_t i = 0; i < fixed.objectives.size(); ++i) {
    const NodeId id = fixed.objectives[i];
    std::cout << "  objective " << i << ": " << boundText(fixed, id, fixed.minBounds[id]) << " to "
              << boundText(fixed, id, fixed.maxBounds[id]) << '\n';
  }
}

/// The graph on which repairs are simulated: what of the constraints it covers, and what lies outside.
void printConstraintTree(const DagFixedFields& fixed, const DagStructures& structures) {
  std::map<std::string, std::uint64_t> covered;
  for (const auto& node : structures.staticNodes) ++covered[NodeTypeUtils::toString(fixed.nodeTypes[node->nodeId])];
  std::cout << "Constraint tree:\n";
  for (const auto& [type, count] : covered) printCount(type, count);
  std::uint64_t nbOutside = 0;
  for (const NodeId id : fixed.constraints) {
    const bool inside = !structures.staticIndexOfNode.empty() && structures.staticIndexOfNode[id] != kNone;
    if (!inside) ++nbOutside;
  }
  printCount("constraints covered", fixed.nbConstraints() - nbOutside);
  printCount("constraints cut", nbOutside);
}

/// The moves that follow from the structure and the parameters, as one thread starts with them.
void printPool(Quvex& solver, Dag& dag) {
  const HeuristicPool pool(&solver, dag, 0);
  std::cout << "Moves and their weights:\n";
  for (const auto& move : pool.getHeuristic()->moves) printCount(move->name, move->poolWeight);
}

void printKernel(Quvex& solver) {
  DagBuilder& builder = *ModelAccess::dagBuilder(*solver.getModel());
  const DagFixedFields& fixed = builder.getFixedFields();
  const DagStructures& structures = builder.getStructures();
  std::cout << "\nCompiled graph:\n";
  printCount("nodes", fixed.nbNodes);
  printCount("boolean decisions", fixed.nbBooleans);
  printCount("integer decisions", fixed.nbIntegers);
  printCount("operators", fixed.nbOperators);
  printCount("operand links", fixed.children.size());
  printCount("ranks", fixed.nbRanks());
  printCount("constraints", fixed.nbConstraints());
  printCount("objectives", fixed.nbObjectives());
  printNodeTypes(fixed);
  std::cout << "Structure:\n";
  printCount("slack sums", structures.nbSlackSums);
  printCount("equality sums", structures.sums.size() - structures.nbSlackSums);
  printCount("free decisions", structures.freeDecisions.size());
  printCount("swappable decisions", structures.swappableDecisions.size());
  printConstraintTree(fixed, structures);
  printPool(solver, builder.getDag());
  printObjectiveBounds(fixed);
}

}  // namespace

void runInfo(const std::string& modelFile, bool kernel) {
  Quvex solver;
  loadEnvironment(solver, modelFile);
  const QVModel& model = *solver.getModel();
  std::cout << solver.toString();
  printOperators(model);
  printValueTypes(model);
  printLargest(model);
  if (kernel) printKernel(solver);
}

}  // namespace quvex::cli
