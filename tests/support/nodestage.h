#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/node.h"
#include "solver/kernel/nodetypeutils.h"
#include "solver/kernel/random.h"

namespace quvex {

/// A state from which the next coin falls as wanted.
inline RandomState stateForCoin(bool set) {
  for (RandomState state = 0;; ++state) {
    RandomState probe = state;
    if (coin(probe) == set) return state;
  }
}

/// Steps between two states, 99 if they are far apart.
inline int drawsBetween(RandomState from, RandomState to) {
  for (int draws = 0; draws < 10; ++draws, randomStep(from)) {
    if (from == to) return draws;
  }
  return 99;
}

/// Answers every pick at once, so that a test sees whom an operator asked: decision is its own id, and delta is -1 for
/// a decrease, +1 for an increase, 0 for a change.
class OperandSpy final : public Node {
 public:
  bool isInit(const Dag&, NodeId) const override { return true; }
  void init(Dag&, NodeId) override {}
  void eval(Dag&, Propagation&, NodeId) override {}
  bool pickDecrease(const Dag&, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    return answer(decision, delta, id, -1);
  }
  bool pickIncrease(const Dag&, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    return answer(decision, delta, id, +1);
  }
  bool pickChange(const Dag&, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    return answer(decision, delta, id, 0);
  }

 private:
  static bool answer(NodeId& decision, int& delta, NodeId id, int step) {
    decision = id;
    delta = step;
    return true;
  }
};

/// One operator alone on a stage: its operands are spies whose cells and bounds a test sets by hand, so that every
/// branch of a rule is reached without a model around it. Operands are given by letters: 'b' boolean, 'i' integer,
/// 'd' double.
class NodeStage {
 public:
  NodeStage(NodeType type, const std::string& operandKinds, const std::vector<t_value>& constants = {}) {
    std::vector<NodeId> operands;
    for (const char kind : operandKinds) operands.push_back(addOperand(kind));
    id = fixed.addNode(type, operands, constants);
    fixed.init();
    dag = std::make_unique<Dag>(fixed);
    for (NodeId operand : operands) {
      originals.push_back(dag->nodes[operand]);
      dag->nodes[operand] = &spy;
    }
  }
  ~NodeStage() {
    for (NodeId operand = 0; operand < originals.size(); ++operand) dag->nodes[operand] = originals[operand];
  }
  NodeStage(const NodeStage&) = delete;
  NodeStage& operator=(const NodeStage&) = delete;

  /// Both cells and the bounds of an operand. Doubles and integers alike are converted to the operand's domain.
  NodeStage& set(OperandPos p, double value, double min, double max) {
    fixed.minBounds[p] = word(p, min);
    fixed.maxBounds[p] = word(p, max);
    return set(p, value);
  }
  NodeStage& set(OperandPos p, double value) {
    dag->nodeValue[p] = dag->tentativeValue[p] = word(p, value);
    return *this;
  }
  /// An integer too large for a double.
  NodeStage& setInteger(OperandPos p, std::int64_t value) {
    dag->nodeValue[p] = dag->tentativeValue[p] = value;
    return *this;
  }
  NodeStage& setIntegerBounds(OperandPos p, std::int64_t min, std::int64_t max) {
    fixed.minBounds[p] = min;
    fixed.maxBounds[p] = max;
    return *this;
  }
  NodeStage& setTentative(OperandPos p, double value) {
    dag->tentativeValue[p] = word(p, value);
    return *this;
  }

  /// Brings the operator's own bounds and cells up to its operands.
  NodeStage& refresh() {
    NodeTypeUtils::computeBounds(fixed, id, fixed.minBounds[id], fixed.maxBounds[id]);
    node().init(*dag, id);
    return *this;
  }
  Node& node() { return *dag->nodes[id]; }

  std::int64_t integer() { return refresh().dag->nodeValue[id]; }
  double real() { return refresh().dag->committedDouble(id); }
  std::int64_t evalInteger() {
    node().eval(*dag, dag->propagation, id);
    return dag->tentativeValue[id];
  }
  double evalReal() {
    node().eval(*dag, dag->propagation, id);
    return dag->tentativeDouble(id);
  }
  Bounds bounds() {
    Bounds bounds;
    NodeTypeUtils::computeBounds(fixed, id, bounds.min, bounds.max);
    return bounds;
  }
  double minDouble() { return wordToDouble(bounds().min); }
  double maxDouble() { return wordToDouble(bounds().max); }
  std::int64_t violation() { return refresh().node().violation(*dag, id); }
  std::int64_t violationDelta() { return node().violationDelta(*dag, id); }

  /// Who was asked, and how many steps the generator made: "b- 1" for a decrease of the second operand after one draw,
  /// "a~ 0" for a change of the first without any, "none 0" for a refusal.
  std::string decrease(RandomState state = 0) { return pick(state, &Node::pickDecrease); }
  std::string increase(RandomState state = 0) { return pick(state, &Node::pickIncrease); }
  std::string change(RandomState state = 0) { return pick(state, &Node::pickChange); }

  /// The same for the rule "any change of any operand", followed by hand.
  std::string anyChange(RandomState state = 0) {
    const RandomState before = state;
    const std::uint32_t operand = rand(state, fixed.nbChildren[id]);
    const char sign = coin(state) ? '-' : '+';
    return describe(operand, sign, drawsBetween(before, state));
  }

  DagFixedFields fixed;
  std::unique_ptr<Dag> dag;
  NodeId id = 0;

 private:
  OperandSpy spy;
  std::vector<Node*> originals;

  NodeId addOperand(char kind) {
    if (kind == 'b') return fixed.addBooleanDecision();
    if (kind == 'i') return fixed.addIntegerDecision();
    return fixed.addDoubleConstant(1.0);
  }
  [[nodiscard]] t_value word(OperandPos p, double value) const {
    return fixed.isDouble(p) ? doubleToWord(value) : static_cast<t_value>(value);
  }
  static std::string describe(std::uint32_t operand, char sign, int draws) {
    return std::string{static_cast<char>('a' + operand), sign, ' '} + std::to_string(draws);
  }
  std::string pick(RandomState state, bool (Node::*rule)(const Dag&, RandomState&, NodeId&, int&, NodeId) const) {
    const RandomState before = state;
    NodeId decision = kNone;
    int delta = 77;
    if (!(node().*rule)(*dag, state, decision, delta, id)) {
      EXPECT_EQ(decision, kNone) << "a refusal leaves the out-arguments alone";
      EXPECT_EQ(delta, 77);
      return "none " + std::to_string(drawsBetween(before, state));
    }
    return describe(decision, delta == 0 ? '~' : delta < 0 ? '-' : '+', drawsBetween(before, state));
  }
};

inline const RandomState kCoinSet = stateForCoin(true);
inline const RandomState kCoinClear = stateForCoin(false);

}  // namespace quvex
