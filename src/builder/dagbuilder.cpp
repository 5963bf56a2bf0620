#include "builder/dagbuilder.h"

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvparam.h"
#include "api/qvsolution.h"
#include "builder/preprocessor/preprocessor.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/solution.h"
#include "solver/move/dagstructures.h"

namespace quvex {

namespace {

bool isEnabled(const QVParam& param, const char* key) { return param.getAdvancedParam(key, 1) != 0; }

/// The constraint tree serves three families of moves.
bool wantsTree(const QVParam& param) {
  if (!isEnabled(param, "advancedMovesEnabled")) return false;
  return isEnabled(param, "moveSequenceEnabled") || isEnabled(param, "moveEjectionChainEnabled") ||
         isEnabled(param, "moveBinPackingEnabled");
}

/// Refuses expressions that have no value.
void checkHasValue(ValueType type, const Place& place) {
  if (type == kBoolean || type == kInteger || type == kDouble) return;
  raise<KernelException>(place, "ValueType '", static_cast<int>(type), "' not supported");
}

}  // namespace

DagBuilder::DagBuilder(QVModel* closedModel) : model(closedModel), fixedFields(std::make_unique<DagFixedFields>()) {
  if (!ModelAccess::isClosed(*model)) {
    raise<KernelException>(here<DagBuilder>(), "The model need to be closed to be transformed");
  }
  const QVParam& param = *ModelAccess::owner(*model)->getParam();
  compile(isEnabled(param, "preprocessEnabled"));
  dag = std::make_unique<Dag>(*fixedFields);
  dag->init();
  structures = std::make_unique<DagStructures>();
  structures->build(*fixedFields, wantsTree(param));
}

DagBuilder::~DagBuilder() {
  dag.reset();
  extraDags.clear();
}

void DagBuilder::compile(bool simplify) {
  Preprocessor preprocessor(*model, *fixedFields);
  preprocessor.run(simplify);
  alwaysHolds.assign(preprocessor.exprToNode.size(), false);
  for (const QVExpression* constraint : ModelAccess::constraints(*model)) {
    const std::uint32_t e = ModelAccess::index(*constraint);
    alwaysHolds[e] = preprocessor.isConstant[e] && preprocessor.values[e] != 0;
  }
  exprToNode = std::move(preprocessor.exprToNode);
  fixedDecisions = std::move(preprocessor.fixedDecisions);
  fixedValues = std::move(preprocessor.fixedValues);
}

Dag& DagBuilder::getExtraDag(std::size_t index) {
  while (extraDags.size() <= index) {
    auto extra = std::make_unique<Dag>(*fixedFields);
    extra->init();
    extraDags.push_back(std::move(extra));
  }
  return *extraDags[index];
}

NodeId DagBuilder::getNode(const QVExpression* expression) const { return exprToNode[ModelAccess::index(*expression)]; }

// Bounds.

t_value DagBuilder::boundAs(ValueType type, NodeId node, const std::vector<t_value>& bounds) const {
  return type == kDouble ? doubleToWord(fixedFields->asDouble(node, bounds[node])) : bounds[node];
}

t_value DagBuilder::getMinBound(const QVExpression* expression) const {
  const ValueType type = ModelAccess::valueType(*expression);
  checkHasValue(type, here<DagBuilder>());
  const NodeId node = getNode(expression);
  if (node != kNone) return boundAs(type, node, fixedFields->minBounds);
  if (type == kDouble) return doubleToWord(-kInfinity);
  return type == kInteger ? kLowestInt : 0;
}

t_value DagBuilder::getMaxBound(const QVExpression* expression) const {
  const ValueType type = ModelAccess::valueType(*expression);
  checkHasValue(type, here<DagBuilder>());
  const NodeId node = getNode(expression);
  if (node != kNone) return boundAs(type, node, fixedFields->maxBounds);
  if (type == kDouble) return doubleToWord(kInfinity);
  return type == kInteger ? kHighestInt : 0;
}

/// A constraint that is constant and holds may have no node, and then seems to be at most 0.
bool DagBuilder::canNeverHold(const QVExpression* constraint) const {
  return !alwaysHolds[ModelAccess::index(*constraint)] && getMaxBound(constraint) == 0;
}

// Solutions.

bool DagBuilder::isKernelDecision(NodeId node) const {
  return node != kNone && isDecision(fixedFields->nodeTypes[node]);
}

void DagBuilder::writeFixedDecisions(QVSolution& modelSolution) const {
  for (std::size_t i = 0; i < fixedDecisions.size(); ++i) modelSolution.values[fixedDecisions[i]] = fixedValues[i];
}

void DagBuilder::loadSolution(QVSolution& modelSolution, Solution& kernelSolution) const {
  writeFixedDecisions(modelSolution);
  modelSolution.recompute();
  loadDecisions(modelSolution, kernelSolution);
  loadConstraints(modelSolution, kernelSolution);
  loadObjectives(modelSolution, kernelSolution);
}

void DagBuilder::loadDecisions(const QVSolution& modelSolution, Solution& kernelSolution) const {
  for (const QVExpression* decision : ModelAccess::decisions(*model)) {
    const NodeId node = getNode(decision);
    if (!isKernelDecision(node)) continue;
    kernelSolution.decisions[fixedFields->getDecisionIndex(node)] = modelSolution.values[ModelAccess::index(*decision)];
  }
}

/// Counts over the kernel's constraints, of which several of the model's may share one.
void DagBuilder::loadConstraints(const QVSolution& modelSolution, Solution& kernelSolution) const {
  IndexedSet& satisfied = kernelSolution.satisfiedConstraints;
  for (const QVExpression* constraint : ModelAccess::constraints(*model)) {
    const NodeId node = getNode(constraint);
    if (node == kNone || !fixedFields->isConstraint(node)) continue;
    const std::uint32_t position = fixedFields->posInConstraints[node];
    if (modelSolution.values[ModelAccess::index(*constraint)] != 0) {
      satisfied.add(position);
    } else {
      satisfied.remove(position);
    }
  }
  kernelSolution.nbViolated = satisfied.capacity - satisfied.count;
}

void DagBuilder::loadObjectives(const QVSolution& modelSolution, Solution& kernelSolution) const {
  const auto& objectives = ModelAccess::objectives(*model);
  std::size_t kernelIndex = 0;
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    if (!isKnownDirection(ModelAccess::objectiveDirection(*model, i))) continue;
    kernelSolution.objectives[kernelIndex++] = modelSolution.values[ModelAccess::index(*objectives[i])];
  }
}

void DagBuilder::storeSolution(const Solution& kernelSolution, QVSolution& modelSolution) const {
  for (const QVExpression* decision : ModelAccess::decisions(*model)) {
    const NodeId node = getNode(decision);
    modelSolution.values[ModelAccess::index(*decision)] =
        isKernelDecision(node) ? kernelSolution.decisions[fixedFields->getDecisionIndex(node)] : 0;
  }
  writeFixedDecisions(modelSolution);
  modelSolution.dirty = true;
}

}  // namespace quvex
