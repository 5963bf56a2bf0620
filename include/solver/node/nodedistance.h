#pragma once

#include <algorithm>

#include "solver/node/plainnode.h"

namespace quvex {

/// How far two operands lie apart. Integers wrap, doubles refuse two infinities.
template <class Numbers>
class NodeDistanceOf : public PlainNode<NodeDistanceOf<Numbers>, typename Numbers::Inner> {
 public:
  [[nodiscard]] static typename Numbers::Value value(const OperandCells& cells) {
    return distance(cells.get<Numbers>(0), cells.get<Numbers>(1));
  }

  /// From the gap between the two intervals to the distance of their far ends.
  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId a = fixed.child(id, 0);
    const NodeId b = fixed.child(id, 1);
    const auto minA = Numbers::min(fixed, a);
    const auto maxA = Numbers::max(fixed, a);
    const auto minB = Numbers::min(fixed, b);
    const auto maxB = Numbers::max(fixed, b);
    return Numbers::bounds(std::max(Numbers::rise(maxA, minB), Numbers::rise(maxB, minA)),
                           std::max(Numbers::rise(minA, maxB), Numbers::rise(minB, maxA)));
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    if (d == Direction::Down) {
      if (Numbers::equal(Numbers::committed(request.dag, id), 0)) return false;
      return closeGap<Numbers>(request, id);
    }
    const auto a = Numbers::committed(request.dag, request.operand(id, 0));
    const auto b = Numbers::committed(request.dag, request.operand(id, 1));
    if (a == b) return NodeDistanceOf::pickAny(request, id);
    return moveDifference<Numbers>(request, a < b ? Direction::Down : Direction::Up, id);
  }
  static bool pickOther(const PickRequest& request, NodeId id) { return NodeDistanceOf::pickAny(request, id); }

 private:
  [[nodiscard]] static std::int64_t distance(std::int64_t a, std::int64_t b) { return wrapAbs(wrapSub(b, a)); }
  [[nodiscard]] static double distance(double a, double b) { return MathDouble::dist(a, b); }
};

class NodeDistance final : public NodeDistanceOf<Integers> {
 public:
  static constexpr const char* kName = "quvex::NodeDistance";
};

class NodeDoubleDistance final : public NodeDistanceOf<Doubles> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleDistance";
};

}  // namespace quvex
