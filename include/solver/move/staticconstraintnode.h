#pragma once

#include <memory>
#include <vector>

#include "solver/kernel/types.h"

namespace quvex {

class AutonomousStructure;
class DagStructures;
class DynamicConstraintNode;

/// The fixed half of a vertex of the constraint tree: which kernel node it stands for. Shared by all threads; each of
/// them has one dynamic half for it.
///
/// Invariant once the tree is built: `staticNodes[index]` is this node, operands have lower indices than their parents,
/// and `flatOperands` is sorted and empty unless `isFlat`. An operand that occurs twice is in it twice.
class StaticConstraintNode {
 public:
  StaticIndex index;
  NodeId nodeId;
  std::vector<StaticIndex> flatOperands;  ///< the operands that are in the tree

  StaticConstraintNode(StaticIndex ownIndex, NodeId kernelNode) : index(ownIndex), nodeId(kernelNode) {}
  StaticConstraintNode(const StaticConstraintNode&) = delete;
  StaticConstraintNode& operator=(const StaticConstraintNode&) = delete;
  virtual ~StaticConstraintNode() = default;

  /// The live half for one thread, at the committed values of its dag. The operands' live halves must exist.
  [[nodiscard]] virtual std::unique_ptr<DynamicConstraintNode> createDynamic(AutonomousStructure& structure) const = 0;
  /// Debug dump of the tree below on standard output.
  virtual void printTree(const DagStructures& structures) const = 0;
  /// Whether everything below is decisions and constants, so that two nodes can be compared by their operands.
  [[nodiscard]] virtual bool isFlat(const DagStructures&) const { return false; }

 protected:
  /// The word, the operands and ")".
  void printOperands(const char* word, const DagStructures& structures) const;
  /// Whether all operands are sources.
  [[nodiscard]] bool isOverSources(const DagStructures& structures) const;
};

}  // namespace quvex
