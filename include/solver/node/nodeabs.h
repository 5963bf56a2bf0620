#pragma once

#include <algorithm>
#include <cmath>

#include "solver/node/plainnode.h"

namespace quvex {

/// The absolute value of the operand. The lowest integer wraps to itself; its bound saturates.
template <class Numbers>
class NodeAbsOf : public PlainNode<NodeAbsOf<Numbers>, typename Numbers::Inner> {
 public:
  [[nodiscard]] static typename Numbers::Value value(const OperandCells& cells) {
    return absolute(cells.get<Numbers>(0));
  }

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId a = fixed.child(id, 0);
    const auto min = Numbers::min(fixed, a);
    const auto max = Numbers::max(fixed, a);
    if (min >= 0) return Numbers::bounds(min, max);
    if (max > 0) return Numbers::bounds(0, std::max(Numbers::negative(min), max));
    return Numbers::bounds(Numbers::negative(max), Numbers::negative(min));
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    const NodeId a = request.operand(id, 0);
    const auto value = Numbers::committed(request.dag, a);
    // From zero both ways lead up; down is taken.
    if (d == Direction::Up) return Numbers::greater(value, 0) ? request.increase(a) : request.decrease(a);
    if (Numbers::equal(value, 0)) return false;
    return value < 0 ? request.increase(a) : request.decrease(a);
  }
  static bool pickOther(const PickRequest& request, NodeId id) { return request.change(request.operand(id, 0)); }

 private:
  [[nodiscard]] static std::int64_t absolute(std::int64_t a) { return wrapAbs(a); }
  [[nodiscard]] static double absolute(double a) { return std::abs(a); }
};

class NodeAbs final : public NodeAbsOf<Integers> {
 public:
  static constexpr const char* kName = "quvex::NodeAbs";
};

class NodeDoubleAbs final : public NodeAbsOf<Doubles> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleAbs";
};

}  // namespace quvex
