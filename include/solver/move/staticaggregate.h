#pragma once

#include <memory>
#include <type_traits>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/move/dagstructures.h"
#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/staticconstraintnode.h"

namespace quvex {

/// The fixed half of a node over any number of operands. `Dynamic` is its live half, a template over the container that
/// fits the number of operands; `Derived::kWord` begins the debug dump.
template <class Derived, template <class Set> class Dynamic>
class StaticAggregate : public StaticConstraintNode {
 public:
  using StaticConstraintNode::StaticConstraintNode;

  [[nodiscard]] std::unique_ptr<DynamicConstraintNode> createDynamic(AutonomousStructure& structure) const final {
    const std::uint32_t nbOperands = structure.structures.fixed->nbChildren[nodeId];
    return withSubsetFor(nbOperands, [&]<class Set>(std::type_identity<Set>) -> std::unique_ptr<DynamicConstraintNode> {
      return std::make_unique<Dynamic<Set>>(structure, *this);
    });
  }
  void printTree(const DagStructures& structures) const final { printOperands(Derived::kWord, structures); }
  [[nodiscard]] bool isFlat(const DagStructures& structures) const final { return isOverSources(structures); }
};

}  // namespace quvex
