#pragma once

#include <vector>

#include "support/treegraph.h"

namespace quvex {

/// What a flip, raise or lower of one constraint node over boolean decisions should do, written down naively: the
/// values of the operands, which of them are flipped already, and the draws.
class FlipReference {
 public:
  std::vector<bool> value;  ///< by operand position, in the simulation
  std::vector<bool> isFlipped;
  RandomState state;
  std::vector<OperandPos> flips;  ///< in order

  FlipReference(const TreeGraph& graph, const std::vector<NodeId>& operands, RandomState seed) : state(seed) {
    for (const NodeId id : operands) {
      const bool flippedBefore = graph.structure->flippedDecisions.contains(graph.fixed.decisionPos[id]);
      isFlipped.push_back(flippedBefore);
      value.push_back((graph.dag->nodeValue[id] != 0) != flippedBefore);
    }
  }

  [[nodiscard]] std::uint32_t n() const { return static_cast<std::uint32_t>(value.size()); }

  bool flip(OperandPos p) {
    if (isFlipped[p]) return false;
    isFlipped[p] = true;
    value[p] = !value[p];
    flips.push_back(p);
    return true;
  }
  bool raise(OperandPos p) { return !value[p] && flip(p); }
  bool lower(OperandPos p) { return value[p] && flip(p); }
  bool move(bool up, OperandPos p) { return up ? raise(p) : lower(p); }

  /// Uniform among the positions that `belongs` accepts, in ascending order; kNone without a draw if there is none.
  template <class Belongs>
  OperandPos randomMember(Belongs belongs) {
    std::vector<OperandPos> members;
    for (OperandPos p = 0; p < n(); ++p) {
      if (belongs(p)) members.push_back(p);
    }
    return members.empty() ? kNone : members[rand(state, static_cast<std::uint32_t>(members.size()))];
  }
  OperandPos randomPosition() { return rand(state, n()); }

  template <class Attempt>
  static bool threeTimes(Attempt attempt) {
    for (int i = 0; i < 3; ++i) {
      if (attempt()) return true;
    }
    return false;
  }
};

}  // namespace quvex
