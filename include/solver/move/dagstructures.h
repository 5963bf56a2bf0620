#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/types.h"
#include "solver/move/staticconstraintnode.h"

namespace quvex {

class StaticConstraintNodeBool;

/// The sums that hold one decision, slack sums first.
struct Membership {
  std::uint32_t nbSlack;  ///< how many of `sums` are slack sums
  std::span<const NodeId> sums;
  std::span<const OperandPos> positions;  ///< the decision's operand position in each of them

  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(sums.size()); }
  [[nodiscard]] std::uint32_t nbEquality() const { return size() - nbSlack; }
  /// No equality sum holds the decision: it may change alone.
  [[nodiscard]] bool isFree() const { return nbEquality() == 0; }
  /// In at least one sum, and in at most one equality sum: it may change with one partner.
  [[nodiscard]] bool isSwappable() const { return size() != 0 && nbEquality() <= 1; }
};

/// One `Membership` per boolean index, as compressed rows.
class MembershipTable {
 public:
  [[nodiscard]] Membership operator[](BooleanIndex b) const {
    const std::uint32_t first = start[b];
    const std::uint32_t length = start[b + 1] - first;
    return {nbSlack[b], {sums.data() + first, length}, {positions.data() + first, length}};
  }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(nbSlack.size()); }

  /// Fills the rows from `allSums`, in its order; the first `nbSlackSums` of them are slack sums.
  void build(const DagFixedFields& fixed, std::span<const NodeId> allSums, std::uint32_t nbSlackSums);

 private:
  std::vector<std::uint32_t> start;  ///< one more than there are decisions
  std::vector<std::uint32_t> nbSlack;
  std::vector<NodeId> sums;
  std::vector<OperandPos> positions;
};

/// What the compiled model's structure tells the moves: the sums of boolean decisions, which of them are tied by an
/// equality constraint and which have slack, and which sums hold each decision. On request also the tree of constraint
/// nodes for the moves that simulate flips.
///
/// Invariant after `build`: nothing changes; all threads read it. `sums` holds the slack sums, then the equality sums,
/// each run in ascending ids. Without a tree its four fields are empty and false.
class DagStructures {
 public:
  std::vector<NodeId> sums;
  MembershipTable memberships;
  std::vector<StaticIndex> staticIndexOfNode;                      ///< per node, kNone if it is not in the tree
  std::vector<std::unique_ptr<StaticConstraintNode>> staticNodes;  ///< operands before parents
  std::vector<StaticConstraintNodeBool*> staticNodeOfDecision;     ///< per boolean index, null for none
  std::uint32_t nbSlackSums = 0;
  std::vector<NodeId> freeDecisions;       ///< in no equality sum
  std::vector<NodeId> swappableDecisions;  ///< in at least one sum, and in at most one equality sum
  const DagFixedFields* fixed = nullptr;
  bool constraintTreeBuilt = false;

  DagStructures();
  ~DagStructures();
  DagStructures(const DagStructures&) = delete;
  DagStructures& operator=(const DagStructures&) = delete;

  /// Analyses a complete model, which must outlive this object. May be called again.
  void build(const DagFixedFields& fields, bool wantTree);

  [[nodiscard]] std::uint32_t nbEqualitySums() const { return static_cast<std::uint32_t>(sums.size()) - nbSlackSums; }
  /// The record of a boolean decision given by its node.
  [[nodiscard]] Membership membershipOf(NodeId decision) const { return memberships[fixed->decisionPos[decision]]; }

 private:
  void collectSums();
  void collectFreeDecisions();
  void collectSwappableDecisions();

  // The constraint tree lies in constrainttree.cpp.
  void clearConstraintTree();
  void buildConstraintTree();
  void addStaticNode(NodeId id);
  void listFlatOperands(StaticConstraintNode& node) const;
};

}  // namespace quvex
