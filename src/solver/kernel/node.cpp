#include "solver/kernel/node.h"

#include <iomanip>
#include <iostream>

#include "api/qvexception.h"
#include "solver/kernel/dag.h"

namespace quvex {

namespace {

constexpr int kDumpPrecision = 16;

void printCell(const DagFixedFields& fixed, NodeId id, t_value cell) {
  if (fixed.isDouble(id)) {
    const auto precision = std::cout.precision(kDumpPrecision);
    std::cout << wordToDouble(cell);
    std::cout.precision(precision);
    return;
  }
  std::cout << cell;
}

void printItem(const DagFixedFields& fixed, NodeId id, const char* label, t_value cell) {
  std::cout << label;
  printCell(fixed, id, cell);
}

}  // namespace

void Node::check(const Dag& dag, NodeId id) const {
  if (isInit(dag, id)) return;
  print(dag, id);
  raise<KernelException>(here<Node>(), "Error in check of operator.");
}

void Node::print(const Dag& dag, NodeId id) const { printCommon(dag, id); }

void Node::printCommon(const Dag& dag, NodeId id) const {
  const DagFixedFields& fixed = dag.fixed;
  std::cout << "\n\nId= " << id << "\nOperator= " << NodeTypeUtils::toString(fixed.nodeTypes[id])
            << "\nisInit=" << isInit(dag, id);
  printItem(fixed, id, "\nvalue=", dag.nodeValue[id]);
  printItem(fixed, id, "\nt_value=", dag.tentativeValue[id]);
  printItem(fixed, id, "\nmin=", fixed.minBounds[id]);
  printItem(fixed, id, "\nmax=", fixed.maxBounds[id]);
  for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) {
    const NodeId child = fixed.child(id, p);
    std::cout << "\nchildNode[" << p << "]= id=" << child
              << " type=" << NodeTypeUtils::toString(fixed.nodeTypes[child]);
    printItem(fixed, child, " value=", dag.nodeValue[child]);
    printItem(fixed, child, " t_value=", dag.tentativeValue[child]);
    printItem(fixed, child, " min=", fixed.minBounds[child]);
    printItem(fixed, child, " max=", fixed.maxBounds[child]);
  }
  std::cout << std::endl;
}

std::int64_t Node::violation(const Dag& dag, NodeId id) const { return dag.nodeValue[id] == 0 ? 1 : 0; }

std::int64_t Node::violationDelta(const Dag& dag, NodeId id) const {
  return (dag.tentativeValue[id] == 0 ? 1 : 0) - (dag.nodeValue[id] == 0 ? 1 : 0);
}

std::uint32_t Node::nbIncreaseCandidates(const Dag&, NodeId) const { return 0; }
std::uint32_t Node::nbDecreaseCandidates(const Dag&, NodeId) const { return 0; }
OperandPos Node::increaseCandidateAt(const Dag&, NodeId, std::uint32_t) const { return 0; }
OperandPos Node::decreaseCandidateAt(const Dag&, NodeId, std::uint32_t) const { return 0; }
bool Node::isIncreaseCandidate(const Dag&, NodeId, OperandPos) const { return false; }
bool Node::isDecreaseCandidate(const Dag&, NodeId, OperandPos) const { return false; }
OperandPos Node::randomIncreaseCandidate(const Dag&, RandomState&, NodeId) const { return 0; }
OperandPos Node::randomDecreaseCandidate(const Dag&, RandomState&, NodeId) const { return 0; }

bool Node::hasChanged(const Dag& dag, NodeId id) const {
  if (dag.fixed.isDouble(id)) return wordToDouble(dag.nodeValue[id]) != wordToDouble(dag.tentativeValue[id]);
  return dag.nodeValue[id] != dag.tentativeValue[id];
}

void Node::commit(Dag& dag, NodeId id) { dag.nodeValue[id] = dag.tentativeValue[id]; }
void Node::rollback(Dag& dag, NodeId id) { dag.tentativeValue[id] = dag.nodeValue[id]; }
void Node::notifyChildChanged(Dag&, OperandPos, NodeId) {}

bool Node::pickAnyChange(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) {
  const std::uint32_t n = dag.fixed.nbChildren[id];
  if (n == 0) return false;
  const NodeId operand = dag.child(id, rand(state, n));
  const Node& node = *dag.nodes[operand];
  if (coin(state)) return node.pickDecrease(dag, state, decision, delta, operand);
  return node.pickIncrease(dag, state, decision, delta, operand);
}

}  // namespace quvex
