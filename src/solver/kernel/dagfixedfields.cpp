#include "solver/kernel/dagfixedfields.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "api/qvexception.h"
#include "solver/kernel/largepages.h"

namespace quvex {

NodeId DagFixedFields::addNode(NodeType type, std::span<const NodeId> operands, std::span<const t_value> constants) {
  nodeTypes.push_back(type);
  constantCounts.push_back(static_cast<std::uint32_t>(constants.size()));
  constantStart.push_back(static_cast<std::uint32_t>(constantValues.size()));
  constantValues.insert(constantValues.end(), constants.begin(), constants.end());
  nbChildren.push_back(static_cast<std::uint32_t>(operands.size()));
  childStart.push_back(static_cast<std::uint32_t>(children.size()));
  children.insert(children.end(), operands.begin(), operands.end());
  return nbNodes++;
}

NodeId DagFixedFields::addDoubleConstant(double value) {
  const t_value word = doubleToWord(value);
  return addNode(NodeType::DoubleConstant, {}, {&word, 1});
}

void DagFixedFields::addObjective(NodeId id, std::uint32_t direction) {
  objectives.push_back(id);
  objectiveDirections.push_back(direction);
}

void DagFixedFields::init() {
  countTypes();
  initPosInConstraints();
  buildParents();
  computeRanks();
  groupByRank();
  computeDomainsAndBounds();
  listDecisions();
  computeLevels();
  sortParentsByLevel();
  for (const auto* array : {&parents, &children, &childStart, &constantStart}) holdInLargePages(*array);
  holdInLargePages(constantValues);
}

void DagFixedFields::countTypes() {
  typeCounts.clear();
  for (const NodeType type : nodeTypes) {
    const auto code = static_cast<std::size_t>(type);
    if (code >= typeCounts.size()) typeCounts.resize(code + 1, 0);
    ++typeCounts[code];
  }
}

void DagFixedFields::initPosInConstraints() {
  posInConstraints.assign(nbNodes, kNone);
  for (std::uint32_t c = 0; c < nbConstraints(); ++c) {
    if (posInConstraints[constraints[c]] != kNone) {
      raise<KernelException>(here<DagFixedFields>(), "This node is already a constraint.");
    }
    posInConstraints[constraints[c]] = c;
  }
}

void DagFixedFields::buildParents() {
  const Level last = nbObjectives();
  std::vector<std::uint32_t> counts(nbNodes, 0);
  for (NodeId id = 0; id < nbNodes; ++id) {
    if (isSource(nodeTypes[id])) continue;
    for (const NodeId operand : childrenOf(id)) ++counts[operand];
  }
  const std::size_t roomInRow = std::size_t{last} + 2;
  rowLength = roomInRow + ParentRange::kEntryLength;
  std::size_t total = nbNodes * rowLength;
  for (const std::uint32_t count : counts) total += count > 1 ? std::size_t{count} * ParentRange::kEntryLength : 0;
  if (total > kNone) raise<KernelException>(here<DagFixedFields>(), "The model has too many nodes or operands.");
  parents.assign(total, 0);
  std::size_t behindRows = nbNodes * rowLength;
  for (NodeId id = 0; id < nbNodes; ++id) {
    const std::size_t start = counts[id] > 1 ? behindRows : id * rowLength + roomInRow;
    parentStart(id) = parentEnd(last, id) = static_cast<std::uint32_t>(start);
    if (counts[id] > 1) behindRows += std::size_t{counts[id]} * ParentRange::kEntryLength;
  }
  for (NodeId id = 0; id < nbNodes; ++id) {
    if (isSource(nodeTypes[id])) continue;
    for (OperandPos p = 0; p < nbChildren[id]; ++p) {
      std::uint32_t& end = parentEnd(last, child(id, p));
      parents[end++] = id;
      parents[end++] = p;
    }
  }
}

/// Kahn's algorithm (Communications of the ACM 5(11), 1962) with a first-in first-out queue.
void DagFixedFields::computeRanks() {
  nodeRanks.assign(nbNodes, 0);
  std::vector<std::uint32_t> pending(nbNodes);
  std::vector<NodeId> queue;
  queue.reserve(nbNodes);
  for (NodeId id = 0; id < nbNodes; ++id) {
    pending[id] = nbChildren[id];
    if (isSource(nodeTypes[id])) queue.push_back(id);
  }
  std::vector<bool> visited(nbNodes, false);
  for (std::size_t head = 0; head < queue.size(); ++head) {
    const NodeId id = queue[head];
    visited[id] = true;
    for (const ParentLink link : parentsOf(id)) {
      nodeRanks[link.parent] = std::max(nodeRanks[link.parent], nodeRanks[id] + 1);
      if (--pending[link.parent] == 0) queue.push_back(link.parent);
    }
  }
  const auto unvisited = std::find(visited.begin(), visited.end(), false);
  if (unvisited == visited.end()) return;
  const auto id = static_cast<NodeId>(unvisited - visited.begin());
  raise<KernelException>(here<DagFixedFields>(), "The operator ", NodeTypeUtils::toString(nodeTypes[id]),
                         " is not accessible from the variables and constants.");
}

void DagFixedFields::groupByRank() {
  Rank maxRank = 0;
  for (const Rank rank : nodeRanks) maxRank = std::max(maxRank, rank);
  nodesByRank.assign(nbNodes == 0 ? 0 : maxRank + 1, {});
  for (NodeId id = 0; id < nbNodes; ++id) nodesByRank[nodeRanks[id]].push_back(id);
}

void DagFixedFields::computeDomainsAndBounds() {
  nodeDomains.assign(nbNodes, Domain::Boolean);
  for (NodeId id = 0; id < nbNodes; ++id) nodeDomains[id] = NodeTypeUtils::getDomainValue(*this, id);
  minBounds.assign(nbNodes, 0);
  maxBounds.assign(nbNodes, 0);
  for (const auto& rank : nodesByRank) {
    for (const NodeId id : rank) NodeTypeUtils::computeBounds(*this, id, minBounds[id], maxBounds[id]);
  }
}

void DagFixedFields::listDecisions() {
  decisionList.clear();
  decisionPos.assign(nbNodes, kNone);
  const auto append = [this](auto belongs) {
    const std::size_t before = decisionList.size();
    for (NodeId id = 0; id < nbNodes; ++id) {
      if (!belongs(nodeTypes[id])) continue;
      decisionPos[id] = static_cast<std::uint32_t>(decisionList.size());
      decisionList.push_back(id);
    }
    return static_cast<std::uint32_t>(decisionList.size() - before);
  };
  nbBooleans = append([](NodeType type) { return type == NodeType::Boolean; });
  nbIntegers = append([](NodeType type) { return type == NodeType::Integer; });
  nbOperators = append([](NodeType type) { return !isSource(type); });
  firstInteger = nbBooleans;
  firstOperator = nbBooleans + nbIntegers;
}

void DagFixedFields::computeLevels() {
  nodeLevel.assign(nbNodes, nbObjectives() + 1);
  for (const NodeId id : constraints) nodeLevel[id] = 0;
  for (std::uint32_t i = 0; i < nbObjectives(); ++i) nodeLevel[objectives[i]] = i + 1;
  for (auto rank = nodesByRank.rbegin(); rank != nodesByRank.rend(); ++rank) {
    for (const NodeId id : *rank) {
      for (const NodeId operand : childrenOf(id)) nodeLevel[operand] = std::min(nodeLevel[operand], nodeLevel[id]);
    }
  }
}

void DagFixedFields::sortParentsByLevel() {
  constexpr std::uint32_t kNext = ParentRange::kEntryLength;
  for (NodeId id = 0; id < nbNodes; ++id) {
    const std::uint32_t end = parentEnd(nbObjectives(), id);
    std::uint32_t sorted = parentStart(id);
    for (Level k = 0; k < nbObjectives(); ++k) {
      for (std::uint32_t i = sorted; i < end; i += kNext) {
        if (nodeLevel[parents[i]] != k) continue;
        if (i != sorted) std::swap_ranges(&parents[i], &parents[i] + kNext, &parents[sorted]);
        sorted += kNext;
      }
      parentEnd(k, id) = sorted;
    }
  }
}

std::uint32_t DagFixedFields::getDecisionIndex(NodeId id) const {
  if (!isDecision(nodeTypes[id])) std::cout << NodeTypeUtils::toString(nodeTypes[id]) << ", " << id << std::endl;
  return decisionPos[id];
}

}  // namespace quvex
