#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/nodetype.h"
#include "solver/kernel/nodetypeutils.h"
#include "solver/kernel/parentrange.h"
#include "solver/kernel/queueslot.h"
#include "solver/kernel/types.h"

namespace quvex {

/// The parents of one node, sorted by level. Its row in the array of all parents holds where they begin and where those
/// of each level end, as places in that array.
class ParentRun {
 public:
  ParentRun(const std::uint32_t* allParents, std::size_t row) : words(allParents), places(allParents + row) {}

  /// First word of the parents of level `k` or higher.
  [[nodiscard]] std::uint32_t start(Level k = 0) const { return places[k]; }
  /// Behind the last parent of level `k` or lower; at `k` equal to the number of objectives, behind the last of all.
  [[nodiscard]] std::uint32_t end(Level k) const { return places[k + 1]; }
  /// The parents of levels `from` to `to`.
  [[nodiscard]] ParentRange between(Level from, Level to) const { return {words + start(from), words + end(to)}; }

 private:
  const std::uint32_t* words;
  const std::uint32_t* places;
};

/// The immutable description of a compiled model, shared by all threads.
/// Filled by one `addNode` per node, operands before users, and closed by one `init`; after that nothing changes.
/// Arrays are indexed by node id unless told otherwise; operands and parents are compressed rows.
class DagFixedFields {
 public:
  static constexpr const char* kName = "quvex::DagFixedFields";

  std::uint32_t nbNodes = 0;
  std::vector<NodeId> constraints;
  std::vector<NodeId> objectives;                  ///< lexicographic order, the first matters most
  std::vector<std::uint32_t> objectiveDirections;  ///< 0 minimise, 1 maximise
  std::vector<std::vector<NodeId>> nodesByRank;    ///< per rank, ascending ids
  std::vector<std::uint32_t> posInConstraints;     ///< index in `constraints`, or kNone
  std::vector<Rank> nodeRanks;
  std::vector<t_value> minBounds;
  std::vector<t_value> maxBounds;
  std::vector<Domain> nodeDomains;
  std::vector<std::uint32_t> constantCounts;
  std::vector<t_value> constantValues;  ///< the pool of all nodes' constants
  std::vector<std::uint32_t> constantStart;
  std::vector<NodeType> nodeTypes;
  std::vector<std::uint32_t> typeCounts;   ///< by type code, up to the highest code used
  std::vector<NodeId> decisionList;        ///< boolean decisions, integer decisions, operators
  std::vector<std::uint32_t> decisionPos;  ///< inverse of `decisionList`, kNone for constants
  std::uint32_t nbBooleans = 0;
  std::uint32_t nbIntegers = 0;
  std::uint32_t nbOperators = 0;
  std::uint32_t firstInteger = 0;
  std::uint32_t firstOperator = 0;
  std::vector<std::uint32_t> nbChildren;
  std::vector<std::uint32_t> childStart;
  std::vector<NodeId> children;
  std::vector<Level> nodeLevel;

  /// Appends a node and gives it the next id. Operands must exist already for `init` to succeed.
  NodeId addNode(NodeType type, std::span<const NodeId> operands = {}, std::span<const t_value> constants = {});
  NodeId addBooleanDecision() { return addNode(NodeType::Boolean); }
  NodeId addIntegerDecision() { return addNode(NodeType::Integer); }
  NodeId addConstant(t_value value) { return addNode(NodeType::Constant, {}, {&value, 1}); }
  NodeId addDoubleConstant(double value);
  NodeId addDoubleCast(NodeId operand) { return addNode(NodeType::DoubleCast, {&operand, 1}); }
  void addObjective(NodeId id, std::uint32_t direction);
  void addConstraint(NodeId id) { constraints.push_back(id); }

  /// Completes the description: parents, ranks, domains, bounds, decision order, levels.
  /// Raises when a constraint is listed twice, a node can't be reached from the sources, a bound has no value, or the
  /// parents don't fit into 2^32 words: two for each operand, and four more than there are objectives for each node.
  void init();

  [[nodiscard]] std::uint32_t nbObjectives() const { return static_cast<std::uint32_t>(objectives.size()); }
  [[nodiscard]] std::uint32_t nbConstraints() const { return static_cast<std::uint32_t>(constraints.size()); }
  [[nodiscard]] std::uint32_t nbRanks() const { return static_cast<std::uint32_t>(nodesByRank.size()); }

  [[nodiscard]] NodeId child(NodeId id, OperandPos p) const { return children[childStart[id] + p]; }
  [[nodiscard]] std::span<const NodeId> childrenOf(NodeId id) const {
    return {children.data() + childStart[id], nbChildren[id]};
  }
  [[nodiscard]] t_value constant(NodeId id, std::uint32_t i) const { return constantValues[constantStart[id] + i]; }
  [[nodiscard]] double constantDouble(NodeId id, std::uint32_t i) const { return wordToDouble(constant(id, i)); }
  [[nodiscard]] std::span<const t_value> constantsOf(NodeId id) const {
    return {constantValues.data() + constantStart[id], constantCounts[id]};
  }

  [[nodiscard]] ParentRun parentRun(NodeId id) const { return {parents.data(), id * rowLength}; }
  [[nodiscard]] std::uint32_t parentCountByLevel(Level k, NodeId id) const {
    return parentRun(id).between(0, k).size();
  }
  [[nodiscard]] std::uint32_t parentCount(NodeId id) const { return parentCountByLevel(nbObjectives(), id); }
  [[nodiscard]] ParentRange parentsOf(NodeId id) const { return parentRun(id).between(0, nbObjectives()); }

  [[nodiscard]] bool isConstraint(NodeId id) const { return posInConstraints[id] != kNone; }
  [[nodiscard]] bool isDouble(NodeId id) const { return nodeDomains[id] == Domain::Double; }
  /// Asks for the row of a node that is soon to tell its parents: in large models it lies in no cache.
  void prefetchParents(NodeId id) const { __builtin_prefetch(parents.data() + id * rowLength); }
  [[nodiscard]] QueueSlot slotOf(NodeId id) const {
    return isConstraint(id) ? constraintSlot(nodeRanks[id]) : ordinarySlot(nodeRanks[id]);
  }
  /// A cell of node `id` read as a double: its bits, or the converted integer.
  [[nodiscard]] double asDouble(NodeId id, t_value cell) const {
    return isDouble(id) ? wordToDouble(cell) : static_cast<double>(cell);
  }
  [[nodiscard]] double minDouble(NodeId id) const { return asDouble(id, minBounds[id]); }
  [[nodiscard]] double maxDouble(NodeId id) const { return asDouble(id, maxBounds[id]); }

  /// The place of a decision in `decisionList`. Warns on standard output when the node is no decision, and answers
  /// all the same.
  [[nodiscard]] std::uint32_t getDecisionIndex(NodeId id) const;

  /// Steps of `init`, in its order.
  void initPosInConstraints();
  void computeRanks();

 private:
  /// First a row per node, with the place of its first parent, those behind its last one of each level, and room for
  /// one parent: most nodes have no more, and telling it mostly costs one cache line. Then the parents of all others.
  std::vector<std::uint32_t> parents;
  std::size_t rowLength = 0;

  void countTypes();
  void buildParents();
  void groupByRank();
  void computeDomainsAndBounds();
  void listDecisions();
  void computeLevels();
  void sortParentsByLevel();
  std::uint32_t& parentStart(NodeId id) { return parents[id * rowLength]; }
  std::uint32_t& parentEnd(Level k, NodeId id) { return parents[id * rowLength + 1 + k]; }
};

}  // namespace quvex
