#include "solver/move/dagstructures.h"

namespace quvex {

/// A node of the constraint tree. A model without a tree has none.
class StaticConstraintNode {
 public:
  virtual ~StaticConstraintNode() = default;
};

DagStructures::DagStructures() = default;
DagStructures::~DagStructures() = default;

void DagStructures::clearConstraintTree() {
  staticIndexOfNode.clear();
  staticNodes.clear();
  staticNodeOfDecision.clear();
}

void DagStructures::buildConstraintTree() {}

}  // namespace quvex
