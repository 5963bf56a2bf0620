#include <algorithm>

#include "solver/move/constraintnodebool.h"
#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogic.h"
#include "solver/move/constraintnodesum.h"
#include "solver/move/dagstructures.h"

namespace quvex {

namespace {

/// Nothing above this rank is in the tree: what lies deeper is left to the evaluation.
constexpr Rank kHighestTreeRank = 4;

bool isTreeType(NodeType type) {
  switch (type) {
    case NodeType::Constant:
    case NodeType::DoubleConstant:
    case NodeType::Boolean:
    case NodeType::Sum:
    case NodeType::ScalarSum:
    case NodeType::DoubleSum:
    case NodeType::DoubleScalarSum:
    case NodeType::BooleanSum:
    case NodeType::Eq:
    case NodeType::Leq:
    case NodeType::Geq:
    case NodeType::DoubleEq:
    case NodeType::DoubleLeq:
    case NodeType::DoubleGeq:
    case NodeType::Or:
    case NodeType::And:
      return true;
    default:
      return false;
  }
}

/// The fixed half of any node but a decision; null for a constant.
std::unique_ptr<StaticConstraintNode> createStatic(NodeType type, StaticIndex index, NodeId id) {
  switch (type) {
    case NodeType::And:
      return std::make_unique<StaticConstraintNodeAnd>(index, id);
    case NodeType::Or:
      return std::make_unique<StaticConstraintNodeOr>(index, id);
    case NodeType::BooleanSum:
    case NodeType::Sum:
      return std::make_unique<StaticConstraintNodeSum>(index, id);
    case NodeType::ScalarSum:
      return std::make_unique<StaticConstraintNodeScalarSum>(index, id);
    case NodeType::DoubleSum:
      return std::make_unique<StaticConstraintNodeDoubleSum>(index, id);
    case NodeType::DoubleScalarSum:
      return std::make_unique<StaticConstraintNodeDoubleScalarSum>(index, id);
    case NodeType::Leq:
      return std::make_unique<StaticConstraintNodeLeq>(index, id);
    case NodeType::Geq:
      return std::make_unique<StaticConstraintNodeGeq>(index, id);
    case NodeType::Eq:
      return std::make_unique<StaticConstraintNodeEq>(index, id);
    case NodeType::DoubleLeq:
      return std::make_unique<StaticConstraintNodeDoubleLeq>(index, id);
    case NodeType::DoubleGeq:
      return std::make_unique<StaticConstraintNodeDoubleGeq>(index, id);
    case NodeType::DoubleEq:
      return std::make_unique<StaticConstraintNodeDoubleEq>(index, id);
    default:
      return nullptr;
  }
}

/// Which nodes belong to the tree, one bit per node.
class TreeMembers {
 public:
  explicit TreeMembers(const DagFixedFields& fields)
      : fixed(fields), nbTreeRanks(std::min(fixed.nbRanks(), kHighestTreeRank + 1)), bits(fixed.nbNodes, false) {
    for (Rank r = 0; r < nbTreeRanks; ++r) {
      for (const NodeId id : fixed.nodesByRank[r]) bits[id] = isCovered(id);
    }
    for (Rank r = nbTreeRanks; r-- > 0;) {
      for (const NodeId id : fixed.nodesByRank[r]) bits[id] = bits[id] && servesConstraint(id);
    }
  }

  /// Visits the members by rank, so operands before their parents.
  template <class Visit>
  void forEach(Visit visit) const {
    for (Rank r = 0; r < nbTreeRanks; ++r) {
      for (const NodeId id : fixed.nodesByRank[r]) {
        if (bits[id]) visit(id);
      }
    }
  }

 private:
  const DagFixedFields& fixed;
  Rank nbTreeRanks;
  std::vector<bool> bits;

  /// On the way up: the node and all below it can be simulated.
  [[nodiscard]] bool isCovered(NodeId id) const {
    return isTreeType(fixed.nodeTypes[id]) &&
           std::ranges::all_of(fixed.childrenOf(id), [&](NodeId operand) { return bits[operand]; });
  }
  /// On the way down, parents before operands.
  [[nodiscard]] bool servesConstraint(NodeId id) const {
    return fixed.isConstraint(id) ||
           std::ranges::any_of(fixed.parentsOf(id), [&](ParentLink link) { return bits[link.parent]; });
  }
};

}  // namespace

DagStructures::DagStructures() = default;
DagStructures::~DagStructures() = default;

void DagStructures::clearConstraintTree() {
  staticIndexOfNode.clear();
  staticNodes.clear();
  staticNodeOfDecision.clear();
}

void DagStructures::buildConstraintTree() {
  staticIndexOfNode.assign(fixed->nbNodes, kNone);
  staticNodeOfDecision.assign(fixed->nbBooleans, nullptr);
  const TreeMembers members(*fixed);
  members.forEach([&](NodeId id) { addStaticNode(id); });
  for (const auto& node : staticNodes) {
    if (node->isFlat(*this)) listFlatOperands(*node);
  }
}

void DagStructures::addStaticNode(NodeId id) {
  const auto index = static_cast<StaticIndex>(staticNodes.size());
  if (fixed->nodeTypes[id] == NodeType::Boolean) {
    const BooleanIndex b = fixed->decisionPos[id];
    auto node = std::make_unique<StaticConstraintNodeBool>(index, id, b);
    staticNodeOfDecision[b] = node.get();
    staticNodes.push_back(std::move(node));
  } else {
    auto node = createStatic(fixed->nodeTypes[id], index, id);
    if (node == nullptr) return;
    staticNodes.push_back(std::move(node));
  }
  staticIndexOfNode[id] = index;
}

void DagStructures::listFlatOperands(StaticConstraintNode& node) const {
  for (const NodeId operand : fixed->childrenOf(node.nodeId)) {
    if (staticIndexOfNode[operand] != kNone) node.flatOperands.push_back(staticIndexOfNode[operand]);
  }
  std::ranges::sort(node.flatOperands);
}

}  // namespace quvex
