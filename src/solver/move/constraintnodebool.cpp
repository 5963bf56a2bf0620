#include "solver/move/constraintnodebool.h"

#include <algorithm>
#include <iostream>

#include "solver/move/autonomousstructure.h"

namespace quvex {

std::unique_ptr<DynamicConstraintNode> StaticConstraintNodeBool::createDynamic(AutonomousStructure& structure) const {
  return std::make_unique<DynamicConstraintNodeBool>(structure, *this);
}

void StaticConstraintNodeBool::printTree(const DagStructures&) const { std::cout << "bool{" << index << "}"; }

const StaticConstraintNode& DynamicConstraintNodeBool::staticNode() const {
  return *structure.structures.staticNodes[index];
}

bool DynamicConstraintNodeBool::isOne() const {
  const bool committed = structure.dag.nodeValue[nodeId] != 0;
  return committed != structure.flippedDecisions.contains(decisionIndex);
}

bool DynamicConstraintNodeBool::flip(RandomState&, bool) {
  if (structure.flippedDecisions.contains(decisionIndex)) return false;
  structure.flippedDecisions.add(decisionIndex);
  announce(isOne());
  return true;
}

void DynamicConstraintNodeBool::collectSelf(Direction direction, std::span<const StaticIndex> list,
                                            std::vector<StaticIndex>& out, std::uint32_t) const {
  if (isOne() == (direction == Direction::Up)) return;
  if (std::ranges::binary_search(list, index)) out.push_back(index);
}

void DynamicConstraintNodeBool::collectCommon(RandomState&, std::span<const StaticIndex> list,
                                              std::vector<StaticIndex>& out, std::uint32_t) const {
  if (std::ranges::binary_search(list, index)) out.push_back(index);
}

}  // namespace quvex
