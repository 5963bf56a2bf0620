#include "builder/preprocessor/nodecreator.h"

#include <algorithm>
#include <iterator>

#include "api/qvexception.h"
#include "builder/evaluatortools.h"
#include "builder/valuetools.h"
#include "solver/kernel/arithmetic.h"
#include "solver/kernel/dagfixedfields.h"

namespace quvex {

namespace {

/// A number as a word of a type.
t_value wordOf(ValueType type, int number) { return type == kDouble ? doubleToWord(number) : number; }

bool isNumber(ValueType type, t_value word, int number) {
  return type == kDouble ? wordToDouble(word) == number : word == number;
}

bool isGroup(QVOperator op) {
  switch (op) {
    case QVOperator::Sum:
    case QVOperator::Prod:
    case QVOperator::Max:
    case QVOperator::Min:
    case QVOperator::And:
    case QVOperator::Or:
    case QVOperator::Xor:
      return true;
    default:
      return false;
  }
}

}  // namespace

NodeCreator::NodeCreator(Preprocessor& owner)
    : NodeCreatorBase(owner), representatives(owner.exprToNode.size(), kNone) {}

void NodeCreator::createAll() {
  NodeCreatorBase::createAll();
  for (ExprId e = 0; e < representatives.size(); ++e) {
    if (preprocessor.hasNode(e) || preprocessor.isConstant[e]) continue;
    preprocessor.exprToNode[e] = preprocessor.exprToNode[getRepresentative(e)];
  }
}

// Representatives.

ExprId NodeCreator::getRepresentative(ExprId e) {
  if (!isGroup(preprocessor.op(e))) return e;
  path.clear();
  while (representatives[e] == kNone) {
    const ExprId next = reduceOnce(e);
    if (next == kNone) {
      representatives[e] = e;
      break;
    }
    path.push_back(e);
    e = next;
  }
  for (const ExprId passed : path) representatives[passed] = representatives[e];
  return representatives[e];
}

/// The one operand that a group reduces to, or kNone.
ExprId NodeCreator::reduceOnce(ExprId e) const {
  const std::span<const ExprId> operands = preprocessor.operands(e);
  switch (preprocessor.op(e)) {
    case QVOperator::Max:
    case QVOperator::Min:
    case QVOperator::Xor:
      return operands.size() == 1 ? operands[0] : kNone;
    case QVOperator::Sum:
    case QVOperator::Prod:
    case QVOperator::And:
    case QVOperator::Or:
      return onlyCountingOperand(e);
    default:
      return kNone;
  }
}

/// A neutral double operand counts all the same when no other operand keeps the result a double. Whether an operand is
/// neutral goes by its own operator and not by that of the group around it. So a "const" always counts here: it is
/// left to the flattening.
ExprId NodeCreator::onlyCountingOperand(ExprId e) const {
  const std::span<const ExprId> operands = preprocessor.operands(e);
  ExprId kept = kNone;
  for (const ExprId operand : operands) {
    const ValueType type = preprocessor.type(operand);
    const auto isOtherDouble = [&](ExprId other) { return other != operand && preprocessor.isDouble(other); };
    const bool isDropped = preprocessor.isConstant[operand] &&
                           isNeutral(preprocessor.op(operand), type, preprocessor.values[operand]) &&
                           (type != kDouble || std::ranges::any_of(operands, isOtherDouble));
    if (isDropped) continue;
    if (kept != kNone) return kNone;
    kept = operand;
  }
  return kept;
}

bool NodeCreator::isNeutral(QVOperator op, ValueType type, t_value word) {
  switch (op) {
    case QVOperator::Sum:
      return isNumber(type, word, 0);
    case QVOperator::Prod:
      return type != kBoolean && isNumber(type, word, 1);
    case QVOperator::And:
      return type == kBoolean && word == 1;
    case QVOperator::Or:
      return type == kBoolean && word == 0;
    default:
      return false;
  }
}

// Dispatch.

NodeId NodeCreator::lower(ExprId e, const Lowering& row, ExprStack& stack) {
  switch (row.rewriting) {
    case Rewriting::Sum:
      return createSum(e, row, stack);
    case Rewriting::Product:
      return createProduct(e, row, stack);
    case Rewriting::MinMax:
      return createMinMax(e, row, stack);
    case Rewriting::If:
      return createIf(e, row, stack);
    case Rewriting::BooleanAggregate:
      return createBooleanAggregate(e, row, stack);
    case Rewriting::Array:
      return createArray(e, stack);
    case Rewriting::At:
      return createAt(e, row, stack);
    case Rewriting::Scalar:
      return createScalarArray(e, row, stack);
    case Rewriting::Constant:  // has a node already
    case Rewriting::Plain:
      break;
  }
  return createPlain(e, row, stack);
}

// Open groups.

void NodeCreator::OpenGroup::reset(ExprId root) {
  expression = root;
  constants.clear();
  nodeIds.clear();
  coefficients.clear();
  pending.clear();
  awaitsNode = false;
  isDouble = false;
  firstFactor = kNone;
  products.clear();
}

/// The group of an expression that comes up again, or null. Only the last group can be meant: nothing that an open
/// group waits for contains that group.
NodeCreator::OpenGroup* NodeCreator::resumedGroup(ExprId e) {
  return nbOpen > 0 && groups[nbOpen - 1].expression == e ? &groups[nbOpen - 1] : nullptr;
}

NodeCreator::OpenGroup& NodeCreator::openGroup(ExprId e) {
  if (nbOpen == groups.size()) groups.emplace_back();
  OpenGroup& group = groups[nbOpen++];
  group.reset(e);
  return group;
}

/// Takes the next pending term off and returns its node, or pushes its representative and returns kNone.
NodeId NodeCreator::nextNode(OpenGroup& group, ExprStack& stack) {
  const ExprId representative = getRepresentative(group.pending.back().expression);
  if (preprocessor.hasNode(representative)) {
    group.pending.pop_back();
  } else {
    stack.push_back(representative);
  }
  return preprocessor.exprToNode[representative];
}

// Flattening.

/// Gathers the terms of a group. Null when a term needs a node first. Terms come out in reverse order of the operands.
NodeCreator::OpenGroup* NodeCreator::flatten(ExprId e, bool keepSign, ExprStack& stack) {
  OpenGroup* group = resumedGroup(e);
  if (group == nullptr) {
    group = &openGroup(e);
    pushOperands(*group, e, wordOf(preprocessor.type(e), 1));
  }
  while (!group->pending.empty()) {
    if (!group->awaitsNode && rewriteTop(*group, keepSign)) continue;
    const t_value coefficient = group->pending.back().coefficient;
    const NodeId node = nextNode(*group, stack);
    group->awaitsNode = node == kNone;
    if (group->awaitsNode) return nullptr;
    group->nodeIds.push_back(node);
    group->coefficients.push_back(coefficient);
  }
  return group;
}

void NodeCreator::pushOperands(OpenGroup& group, ExprId e, t_value coefficient) {
  for (const ExprId operand : preprocessor.operands(e)) group.pending.push_back({coefficient, operand});
}

/// Replaces the next pending term by what it comes down to. False, with nothing changed, when it is a term of its own.
bool NodeCreator::rewriteTop(OpenGroup& group, bool keepSign) {
  const Term term = group.pending.back();
  const ExprId root = group.expression;
  const ExprId e = term.expression;
  if (preprocessor.isConstant[e]) {
    group.pending.pop_back();
    group.constants.push_back(multiply(root, term.coefficient, preprocessor.type(e), preprocessor.values[e]));
    return true;
  }
  // A shared group is not dissolved: its other users need its node anyway.
  if (preprocessor.op(e) == preprocessor.op(root) && preprocessor.userCount[e] < 2) {
    group.pending.pop_back();
    pushOperands(group, e, term.coefficient);
    return true;
  }
  if (unwrapProduct(group, term, keepSign)) return true;
  if (const ExprId reduced = reduceOnce(e); reduced != kNone) {
    group.pending.back().expression = reduced;
    return true;
  }
  if (isNumber(preprocessor.type(root), term.coefficient, 0)) {
    group.pending.pop_back();
    return true;
  }
  return false;
}

/// Turns a product of constants and one other operand into a coefficient of that operand. With `keepSign` a negative
/// product stays whole: it would turn a maximum into a minimum.
bool NodeCreator::unwrapProduct(OpenGroup& group, const Term& term, bool keepSign) {
  if (preprocessor.op(term.expression) != QVOperator::Prod) return false;
  const std::span<const ExprId> operands = preprocessor.operands(term.expression);
  if (operands.size() < 2) return false;
  const auto isVariable = [this](ExprId e) { return !preprocessor.isConstant[e]; };
  const auto variable = std::ranges::find_if(operands, isVariable);
  // A product of constants alone is met where constants aren't folded, below an array; it has its own node.
  if (variable == operands.end()) return false;
  if (std::any_of(std::next(variable), operands.end(), isVariable)) return false;

  types.clear();
  words.clear();
  for (const ExprId operand : operands) {
    if (isVariable(operand)) continue;
    types.push_back(preprocessor.type(operand));
    words.push_back(preprocessor.values[operand]);
  }
  ValueType type = 0;
  t_value product = 0;
  EvaluatorTools::evaluate(QVOperator::Prod, types, words, type, product);
  if (keepSign && ValueTools::toDouble(type, product) < 0) return false;
  group.pending.back() = {multiply(group.expression, term.coefficient, type, product), *variable};
  return true;
}

t_value NodeCreator::multiply(ExprId root, t_value coefficient, ValueType type, t_value word) const {
  if (!preprocessor.isDouble(root)) return wrapMul(coefficient, word);
  return doubleToWord(wordToDouble(coefficient) * ValueTools::toDouble(type, word));
}

/// The constants of a flattening taken together, as words of the root's type.
t_value NodeCreator::fold(const FlattenResult& result, QVOperator op) {
  types.assign(result.constants.size(), preprocessor.type(result.expression));
  ValueType type = 0;
  t_value value = 0;
  EvaluatorTools::evaluate(op, types, result.constants, type, value);
  return value;
}

/// A node for the constants alone.
NodeId NodeCreator::createFoldedNode(const FlattenResult& result) {
  const ExprId e = result.expression;
  return getConstantNode(preprocessor.type(e), fold(result, preprocessor.op(e)));
}

/// The constants as one more term, with coefficient 1.
void NodeCreator::appendFoldedConstant(FlattenResult& result) {
  if (result.constants.empty()) return;
  result.nodeIds.push_back(createFoldedNode(result));
  result.coefficients.push_back(wordOf(preprocessor.type(result.expression), 1));
}

/// The constants as the coefficient of a term that is always 1.
void NodeCreator::appendFoldedCoefficient(FlattenResult& result) {
  if (result.constants.empty()) return;
  const ValueType type = preprocessor.type(result.expression);
  result.nodeIds.push_back(getConstantNode(type, wordOf(type, 1)));
  result.coefficients.push_back(fold(result, preprocessor.op(result.expression)));
}

bool NodeCreator::hasUnitCoefficients(const FlattenResult& result) const {
  const ValueType type = preprocessor.type(result.expression);
  return std::ranges::all_of(result.coefficients, [type](t_value word) { return isNumber(type, word, 1); });
}

// Sums.

NodeId NodeCreator::createSum(ExprId e, const Lowering& row, ExprStack& stack) {
  OpenGroup* group = flatten(e, false, stack);
  if (group == nullptr) return kNone;
  closeGroup();
  if (group->nodeIds.empty()) return createFoldedNode(*group);
  const bool isDouble = preprocessor.isDouble(e);
  if (hasUnitCoefficients(*group)) {
    appendFoldedConstant(*group);
    return createUnitSum(isDouble ? row.doubleNode : row.integerNode, group->nodeIds);
  }
  appendFoldedCoefficient(*group);
  return createWeightedSum(isDouble ? row.scalarDouble : row.scalarInteger, group->nodeIds, group->coefficients);
}

bool NodeCreator::isBooleanDecision(NodeId node) const { return fixedFields.nodeTypes[node] == NodeType::Boolean; }

/// Boolean decisions, when there are several, sit together in a node of their own: the moves read their structure
/// there.
NodeId NodeCreator::createUnitSum(NodeType type, const std::vector<NodeId>& ids) {
  std::vector<NodeId> booleans;
  std::vector<NodeId> rest;
  for (const NodeId id : ids) (isBooleanDecision(id) ? booleans : rest).push_back(id);
  if (booleans.size() <= 1) return fixedFields.addNode(type, ids);

  std::ranges::sort(booleans);
  const NodeId sum = fixedFields.addNode(type, booleans);
  if (rest.empty()) return sum;
  rest.push_back(sum);
  return fixedFields.addNode(type, rest);
}

/// The same, where repeated decisions add their coefficients up.
NodeId NodeCreator::createWeightedSum(NodeType type, const std::vector<NodeId>& ids,
                                      const std::vector<t_value>& coefficients) {
  struct Weighted {
    NodeId id;
    t_value coefficient;
  };
  const bool isDouble = type == NodeType::DoubleScalarSum;
  std::vector<Weighted> booleans;
  std::vector<NodeId> rest;
  std::vector<t_value> restCoefficients;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (isBooleanDecision(ids[i])) {
      booleans.push_back({ids[i], coefficients[i]});
    } else {
      rest.push_back(ids[i]);
      restCoefficients.push_back(coefficients[i]);
    }
  }
  std::ranges::stable_sort(booleans, {}, &Weighted::id);

  std::vector<NodeId> sumIds;
  std::vector<t_value> sumCoefficients;
  for (const Weighted& term : booleans) {
    if (sumIds.empty() || sumIds.back() != term.id) {
      sumIds.push_back(term.id);
      sumCoefficients.push_back(term.coefficient);
      continue;
    }
    t_value& total = sumCoefficients.back();
    total = isDouble ? doubleToWord(wordToDouble(total) + wordToDouble(term.coefficient))
                     : wrapAdd(total, term.coefficient);
  }
  if (sumIds.size() <= 1) return fixedFields.addNode(type, ids, coefficients);

  const NodeId sum = fixedFields.addNode(type, sumIds, sumCoefficients);
  if (rest.empty()) return sum;
  rest.push_back(sum);
  restCoefficients.push_back(wordOf(isDouble ? kDouble : kInteger, 1));
  return fixedFields.addNode(type, rest, restCoefficients);
}

// Other groups.

/// The coefficients of the terms are not looked at: a constant factor inside a shared product of one other operand is
/// lost here.
NodeId NodeCreator::createProduct(ExprId e, const Lowering& row, ExprStack& stack) {
  const OpenGroup* group = flatten(e, false, stack);
  if (group == nullptr) return kNone;
  closeGroup();
  const ValueType type = preprocessor.type(e);
  const bool isDouble = type == kDouble;
  const t_value factor = group->constants.empty() ? wordOf(type, 1) : fold(*group, QVOperator::Prod);
  if (isNumber(type, factor, 0)) return getConstantNode(kInteger, 0);
  if (group->nodeIds.empty()) return getConstantNode(type, factor);
  if (isNumber(type, factor, 1) && group->nodeIds.size() >= 2) {
    const bool isConjunction = std::ranges::all_of(
        preprocessor.operands(e), [this](ExprId operand) { return preprocessor.type(operand) == kBoolean; });
    if (isConjunction) return fixedFields.addNode(row.booleanForm, group->nodeIds);
    return fixedFields.addNode(isDouble ? row.doubleNode : row.integerNode, group->nodeIds);
  }
  return fixedFields.addNode(isDouble ? row.scalarDouble : row.scalarInteger, group->nodeIds, {&factor, 1});
}

NodeId NodeCreator::createMinMax(ExprId e, const Lowering& row, ExprStack& stack) {
  OpenGroup* group = flatten(e, true, stack);
  if (group == nullptr) return kNone;
  closeGroup();
  if (group->nodeIds.empty()) return createFoldedNode(*group);
  const ValueType type = preprocessor.type(e);
  if (hasUnitCoefficients(*group)) {
    appendFoldedConstant(*group);
    if (type == kBoolean) return fixedFields.addNode(row.booleanForm, group->nodeIds);
    return fixedFields.addNode(type == kDouble ? row.doubleNode : row.integerNode, group->nodeIds);
  }
  appendFoldedCoefficient(*group);
  return fixedFields.addNode(type == kDouble ? row.scalarDouble : row.scalarInteger, group->nodeIds,
                             group->coefficients);
}

NodeId NodeCreator::createBooleanAggregate(ExprId e, const Lowering& row, ExprStack& stack) {
  OpenGroup* group = flatten(e, false, stack);
  if (group == nullptr) return kNone;
  closeGroup();
  const QVOperator op = preprocessor.op(e);
  const ValueType type = preprocessor.type(e);
  if (!group->constants.empty()) {
    const t_value constant = fold(*group, op);
    // Below an array nothing has been folded: constants alone are what they fold to, neutral or not.
    if (group->nodeIds.empty()) return getConstantNode(type, constant);
    if (!isNeutral(op, type, constant)) group->nodeIds.push_back(getConstantNode(type, constant));
  }
  return fixedFields.addNode(row.integerNode, group->nodeIds);
}

// Choices.

/// The node of `chosen` stands for `e`, seen as a double where `e` is one.
NodeId NodeCreator::passOn(ExprId e, ExprId chosen, ExprStack& stack) {
  const NodeId node = preprocessor.exprToNode[chosen];
  if (node == kNone) {
    stack.push_back(chosen);
    return kNone;
  }
  return preprocessor.isDouble(e) && !preprocessor.isDouble(chosen) ? fixedFields.addDoubleCast(node) : node;
}

NodeId NodeCreator::createIf(ExprId e, const Lowering& row, ExprStack& stack) {
  const std::span<const ExprId> operands = preprocessor.operands(e);
  const ExprId condition = getRepresentative(operands[0]);
  if (!preprocessor.isConstant[condition]) return createPlain(e, row, stack);
  return passOn(e, getRepresentative(operands[preprocessor.values[condition] == 1 ? 1 : 2]), stack);
}

/// With a constant index the array gets no node.
NodeId NodeCreator::createAt(ExprId e, const Lowering& row, ExprStack& stack) {
  const ExprId array = preprocessor.operands(e)[0];
  const ExprId index = getRepresentative(preprocessor.operands(e)[1]);
  const std::span<const ExprId> elements = preprocessor.operands(array);
  if (preprocessor.isConstant[index]) {
    const t_value position = preprocessor.values[index];
    EvaluatorTools::checkArrayIndex(&preprocessor.expression(e), position, elements.size(), here<NodeCreator>());
    return passOn(e, elements[static_cast<std::size_t>(position)], stack);
  }
  if (!collectOperandNodes(e, stack)) return kNone;
  return fixedFields.addNode(preprocessor.anyDouble(elements) ? row.doubleNode : row.integerNode, operandNodes);
}

// Arrays.

NodeId NodeCreator::createArray(ExprId e, ExprStack& stack) {
  OpenGroup* group = resumedGroup(e);
  if (group == nullptr) {
    const std::span<const ExprId> elements = preprocessor.operands(e);
    if (preprocessor.allConstant(elements)) return createConstArray(e);
    group = &openGroup(e);
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
      group->pending.push_back({1, *element});
    }
  }
  if (!collectElements(*group, stack)) return kNone;
  closeGroup();
  return fixedFields.addNode(NodeType::Array, group->nodeIds);
}

NodeId NodeCreator::createConstArray(ExprId e) {
  const std::span<const ExprId> elements = preprocessor.operands(e);
  const bool isDouble = preprocessor.anyDouble(elements);
  words.clear();
  for (const ExprId element : elements) {
    const t_value word = preprocessor.values[element];
    words.push_back(isDouble ? doubleToWord(ValueTools::toDouble(preprocessor.type(element), word)) : word);
  }
  return fixedFields.addNode(NodeType::ConstArray, {}, words);
}

/// Moves the nodes of all pending terms to `nodeIds`. False when one of them must be made first.
bool NodeCreator::collectElements(OpenGroup& group, ExprStack& stack) {
  while (!group.pending.empty()) {
    const NodeId node = nextNode(group, stack);
    if (node == kNone) return false;
    group.nodeIds.push_back(node);
  }
  return true;
}

/// A "scalar" is a constant, a weighted sum when one side is constant, and else a sum of products.
NodeId NodeCreator::createScalarArray(ExprId e, const Lowering& row, ExprStack& stack) {
  OpenGroup* group = resumedGroup(e);
  if (group == nullptr) {
    const std::span<const ExprId> a = preprocessor.operands(preprocessor.operands(e)[0]);
    const std::span<const ExprId> b = preprocessor.operands(preprocessor.operands(e)[1]);
    if (a.size() != b.size()) {
      raise<KernelException>(here<NodeCreator>(), "Arrays for scalar operator must have the same number of elements");
    }
    if (preprocessor.allConstant(a) && preprocessor.allConstant(b)) return createConstantScalar(e);
    group = &openScalar(e);
  }
  if (group->coefficients.empty()) {
    if (!multiplyElements(*group, stack)) return kNone;
    closeGroup();
    return createElementSum(group->products, group->isDouble);
  }
  if (!collectElements(*group, stack)) return kNone;
  closeGroup();
  return createWeightedSum(group->isDouble ? row.doubleNode : row.integerNode, group->nodeIds, group->coefficients);
}

NodeId NodeCreator::createConstantScalar(ExprId e) {
  ValueType type = 0;
  t_value value = 0;
  EvaluatorTools::scalarEval(&preprocessor.expression(e), preprocessor.values, type, value);
  preprocessor.recordConstant(e, value);
  return getConstantNode(type, value);
}

/// Pending are the elements that need nodes: those beside the constant side, whose words become the coefficients, or
/// else of both sides in turn.
NodeCreator::OpenGroup& NodeCreator::openScalar(ExprId e) {
  std::span<const ExprId> variables = preprocessor.operands(preprocessor.operands(e)[0]);
  std::span<const ExprId> coefficients = preprocessor.operands(preprocessor.operands(e)[1]);
  if (preprocessor.allConstant(variables)) std::swap(variables, coefficients);
  const bool hasConstantSide = preprocessor.allConstant(coefficients);

  OpenGroup& group = openGroup(e);
  group.isDouble = hasDoubleElement(e);
  for (std::size_t i = variables.size(); i-- > 0;) {
    if (!hasConstantSide) group.pending.push_back({1, coefficients[i]});
    group.pending.push_back({1, variables[i]});
  }
  if (!hasConstantSide) return group;
  for (const ExprId c : coefficients) {
    const t_value word = preprocessor.values[c];
    group.coefficients.push_back(group.isDouble ? doubleToWord(ValueTools::toDouble(preprocessor.type(c), word))
                                                : word);
  }
  return group;
}

/// Makes the product of each position as soon as the nodes of both its elements exist.
bool NodeCreator::multiplyElements(OpenGroup& group, ExprStack& stack) {
  while (!group.pending.empty()) {
    const NodeId node = nextNode(group, stack);
    if (node == kNone) return false;
    if (group.firstFactor == kNone) {
      group.firstFactor = node;
      continue;
    }
    group.products.push_back(createElementProduct(group.firstFactor, node, group.isDouble));
    group.firstFactor = kNone;
  }
  return true;
}

}  // namespace quvex
