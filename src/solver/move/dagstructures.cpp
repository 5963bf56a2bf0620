#include "solver/move/dagstructures.h"

#include <algorithm>

namespace quvex {

namespace {

bool isSumType(NodeType type) {
  return type == NodeType::BooleanSum || type == NodeType::Sum || type == NodeType::ScalarSum ||
         type == NodeType::DoubleSum || type == NodeType::DoubleScalarSum;
}

/// A sum over at least two operands that are boolean decisions. A decision that stands twice counts twice.
bool isCandidate(const DagFixedFields& fixed, NodeId id) {
  if (!isSumType(fixed.nodeTypes[id])) return false;
  const auto isBooleanDecision = [&](NodeId operand) { return fixed.nodeTypes[operand] == NodeType::Boolean; };
  return std::ranges::count_if(fixed.childrenOf(id), isBooleanDecision) >= 2;
}

/// Whether an integer equality constraint holds the sum. An equality of doubles has a tolerance, and an equality that
/// is no constraint may break: neither ties the sum.
bool isTied(const DagFixedFields& fixed, NodeId sum) {
  return std::ranges::any_of(fixed.parentsOf(sum), [&](ParentLink link) {
    return fixed.isConstraint(link.parent) && fixed.nodeTypes[link.parent] == NodeType::Eq;
  });
}

}  // namespace

void MembershipTable::build(const DagFixedFields& fixed, std::span<const NodeId> allSums, std::uint32_t nbSlackSums) {
  const auto forEachDecision = [&](auto&& visit) {
    for (std::size_t i = 0; i < allSums.size(); ++i) {
      const std::span<const NodeId> operands = fixed.childrenOf(allSums[i]);
      for (OperandPos p = 0; p < operands.size(); ++p) {
        if (fixed.nodeTypes[operands[p]] == NodeType::Boolean) visit(i, p, fixed.decisionPos[operands[p]]);
      }
    }
  };

  nbSlack.assign(fixed.nbBooleans, 0);
  start.assign(std::size_t{fixed.nbBooleans} + 1, 0);
  forEachDecision([&](std::size_t i, OperandPos, BooleanIndex b) {
    ++start[b + 1];
    if (i < nbSlackSums) ++nbSlack[b];
  });
  for (BooleanIndex b = 0; b < fixed.nbBooleans; ++b) start[b + 1] += start[b];

  sums.resize(start.back());
  positions.resize(start.back());
  std::vector<std::uint32_t> next(start.begin(), start.end() - 1);
  forEachDecision([&](std::size_t i, OperandPos p, BooleanIndex b) {
    sums[next[b]] = allSums[i];
    positions[next[b]] = p;
    ++next[b];
  });
}

void DagStructures::build(const DagFixedFields& fields, bool wantTree) {
  sums.clear();
  freeDecisions.clear();
  swappableDecisions.clear();
  clearConstraintTree();
  fixed = &fields;
  constraintTreeBuilt = false;
  nbSlackSums = 0;

  collectSums();
  collectFreeDecisions();
  collectSwappableDecisions();
  if (!wantTree) return;
  buildConstraintTree();
  constraintTreeBuilt = true;
}

void DagStructures::collectSums() {
  std::vector<NodeId> equalitySums;
  for (NodeId id = 0; id < fixed->nbNodes; ++id) {
    if (!isCandidate(*fixed, id)) continue;
    (isTied(*fixed, id) ? equalitySums : sums).push_back(id);
  }
  nbSlackSums = static_cast<std::uint32_t>(sums.size());
  sums.insert(sums.end(), equalitySums.begin(), equalitySums.end());
  memberships.build(*fixed, sums, nbSlackSums);
}

void DagStructures::collectFreeDecisions() {
  for (BooleanIndex b = 0; b < fixed->nbBooleans; ++b) {
    if (memberships[b].isFree()) freeDecisions.push_back(fixed->decisionList[b]);
  }
}

void DagStructures::collectSwappableDecisions() {
  for (BooleanIndex b = 0; b < fixed->nbBooleans; ++b) {
    if (memberships[b].isSwappable()) swappableDecisions.push_back(fixed->decisionList[b]);
  }
}

}  // namespace quvex
