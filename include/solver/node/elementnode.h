#pragma once

#include <algorithm>
#include <cstdint>

#include "api/qvexception.h"
#include "solver/node/plainnode.h"

namespace quvex {

/// What "at" and "double_at" share: the element of an array at an index. The array is the first operand, either a run
/// of constants or a run of nodes, and the index the second. `Derived::kOperator` is the name in messages.
///
/// The index is taken modulo 2^32, as the stored runs are: a negative one fails, one beyond 2^32 may not. The index's
/// bounds are no guard.
template <class Derived, class Numbers>
class ElementNode : public PickingNode<Derived, typename Numbers::Inner> {
 public:
  using Value = typename Numbers::Value;

  /// The hull of the elements that the index can reach, 0 and 0 if there is none.
  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId array = fixed.child(id, 0);
    const NodeId index = fixed.child(id, 1);
    const std::int64_t n = nbElements(fixed, array);
    const std::int64_t first = std::max<std::int64_t>(fixed.minBounds[index], 0);
    const std::int64_t end = fixed.maxBounds[index] >= n ? n : fixed.maxBounds[index] + 1;
    if (first >= end) return {};
    auto i = static_cast<std::uint32_t>(first);
    Value min = lowest(fixed, array, i);
    Value max = highest(fixed, array, i);
    while (++i < end) {
      min = std::min(min, lowest(fixed, array, i));
      max = std::max(max, highest(fixed, array, i));
    }
    return Numbers::bounds(min, max);
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    return pickElement(request, d, id, [&](NodeId element) { return request.toward(d, element); });
  }
  /// As for a rise, up to what is asked of the element.
  static bool pickOther(const PickRequest& request, NodeId id) {
    return pickElement(request, Direction::Up, id, [&](NodeId element) { return request.change(element); });
  }

 protected:
  /// The element's value. `place` is the caller's own.
  [[nodiscard]] static Value read(const OperandCells& cells, const Place& place) {
    const DagFixedFields& fixed = cells.fixed;
    const NodeId array = cells.operand(0);
    const t_value index = cells.word(1);
    const std::uint32_t n = nbElements(fixed, array);
    const auto i = static_cast<std::uint32_t>(index);
    if (i >= n) {
      raise<KernelException>(place, "Index out of bounds for '", Derived::kOperator, "' operator (index: ", index,
                             ", array size: ", n, ").");
    }
    if (isConstant(fixed, array)) return Numbers::fromWord(fixed.constant(array, i));
    const NodeId element = fixed.child(array, i);
    return Numbers::read(fixed, element, cells.wordOf(element));
  }

 private:
  [[nodiscard]] static bool isConstant(const DagFixedFields& fixed, NodeId array) {
    return fixed.nodeTypes[array] == NodeType::ConstArray;
  }
  [[nodiscard]] static std::uint32_t nbElements(const DagFixedFields& fixed, NodeId array) {
    return isConstant(fixed, array) ? fixed.constantCounts[array] : fixed.nbChildren[array];
  }
  [[nodiscard]] static Value lowest(const DagFixedFields& fixed, NodeId array, std::uint32_t i) {
    if (isConstant(fixed, array)) return Numbers::fromWord(fixed.constant(array, i));
    return Numbers::min(fixed, fixed.child(array, i));
  }
  [[nodiscard]] static Value highest(const DagFixedFields& fixed, NodeId array, std::uint32_t i) {
    if (isConstant(fixed, array)) return Numbers::fromWord(fixed.constant(array, i));
    return Numbers::max(fixed, fixed.child(array, i));
  }

  /// Moves the index or the element that it selects. `room` tells where the element must have room, `ask` asks it.
  /// The index counts as the move under construction has left it.
  template <class Ask>
  static bool pickElement(const PickRequest& request, Direction room, NodeId id, Ask ask) {
    const Dag& dag = request.dag;
    const NodeId array = request.operand(id, 0);
    const NodeId index = request.operand(id, 1);
    if (isConstant(dag.fixed, array)) return request.change(index);
    const auto i = static_cast<std::uint32_t>(dag.tentativeValue[index]);
    // A move may have led the index astray and not been evaluated yet; then there is no element to ask.
    if (i >= dag.fixed.nbChildren[array]) return request.change(index);
    const NodeId element = dag.child(array, i);
    if (isFixed<Integers>(dag.fixed, index)) return ask(element);
    if (!canMove<Numbers>(dag, element, room)) return request.change(index);
    return coin(request.state) ? request.change(index) : ask(element);
  }
};

}  // namespace quvex
