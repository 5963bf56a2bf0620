#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/daglistener.h"
#include "solver/kernel/indexedset.h"
#include "solver/kernel/random.h"
#include "solver/kernel/types.h"
#include "solver/move/dagstructures.h"
#include "solver/move/dynamicconstraintnode.h"

namespace quvex {

class DynamicConstraintNodeBool;

/// One thread's companion of the structure analysis: the random state of all its moves, the search for a decision that
/// two sums share, and the simulation of flips over the constraint tree, apart from the `Dag`.
///
/// Invariant between attempts: `flippedDecisions` is empty, and `violatedNodes` mirrors the committed state of the
/// constraints that the tree covers. Without a tree the simulation's fields are empty.
class AutonomousStructure : public DagListener {
 public:
  Dag& dag;
  const DagStructures& structures;
  RandomState randomState;                                           ///< all moves of the thread draw from it
  std::vector<std::unique_ptr<DynamicConstraintNode>> dynamicNodes;  ///< by static index
  std::vector<DynamicConstraintNodeBool*> dynamicBooleans;           ///< by boolean index, null for none
  IndexedSet flippedDecisions;                                       ///< boolean indices, simulated and not committed
  IndexedSet violatedNodes;                                          ///< static indices, false in the simulation

  /// Registers as a listener of the dag, which must be initialised if there is a tree.
  AutonomousStructure(Dag& threadDag, RandomState seed, const DagStructures& dagStructures);
  ~AutonomousStructure() override;
  AutonomousStructure(const AutonomousStructure&) = delete;
  AutonomousStructure& operator=(const AutonomousStructure&) = delete;

  /// Tells the simulation of the decisions about to be committed, except those that it flipped itself.
  void onCommit() override;

  /// Undoes every simulated flip.
  void undoFlips();
  /// Undoes one random simulated flip, if there is any.
  void undoRandomFlip(RandomState& state);

  /// The live constraint node of a kernel node, null if that is not in the tree. There must be a tree.
  [[nodiscard]] DynamicConstraintNode* dynamicNodeOf(NodeId id) const {
    const StaticIndex s = structures.staticIndexOfNode[id];
    return s != kNone ? dynamicNodes[s].get() : nullptr;
  }
  /// That of a decision, null also for a decision that is not boolean.
  [[nodiscard]] DynamicConstraintNodeBool* dynamicBooleanOf(NodeId decision) const {
    return dag.fixed.nodeTypes[decision] == NodeType::Boolean ? dynamicBooleans[dag.fixed.decisionPos[decision]]
                                                              : nullptr;
  }

  /// A decision that is an operand of both sums, an increase candidate of `a` exactly when `riseA` is set, and likewise
  /// of `b` with `riseB`; kNone if the search finds none. One flip of it repairs both sums. For equal sums with equal
  /// flags it is any operand. Operand runs must ascend by id; the search gallops through them.
  [[nodiscard]] NodeId findLink(RandomState& state, NodeId a, NodeId b, bool riseA, bool riseB) const;

 private:
  /// The answer when `a` has one candidate; nothing if that can't be told.
  [[nodiscard]] std::optional<NodeId> tryCandidate(NodeId a, NodeId b, bool riseA, bool riseB) const;
  /// Merges the operands at [from, to] of `a` with all operands of `b`.
  [[nodiscard]] NodeId scanForLink(OperandPos from, OperandPos to, NodeId a, NodeId b, bool riseA, bool riseB) const;
  /// Whether the operand is an increase candidate exactly when `rise` is set.
  [[nodiscard]] bool fits(NodeId sum, OperandPos p, bool rise) const;

  // The simulation lies in autonomoussimulation.cpp.
  void createDynamicNodes();
  void tellSimulation();
  /// Tells the tree that the decision is back at its committed value.
  void undoFlip(BooleanIndex b);
};

}  // namespace quvex
