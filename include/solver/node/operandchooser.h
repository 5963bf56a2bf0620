#pragma once

#include "solver/node/pickrequest.h"

namespace quvex {

/// The operand that "and" and "or" ask when any will do: of exactly two, the one that is not at its maximum while the
/// other is; otherwise a uniform one. Fails without operands.
inline bool increaseChosenOperand(const PickRequest& request, NodeId id) {
  const Dag& dag = request.dag;
  const auto children = dag.fixed.childrenOf(id);
  if (children.empty()) return false;
  if (children.size() == 2) {
    if (dag.nodeValue[children[0]] == dag.fixed.maxBounds[children[0]]) return request.increase(children[1]);
    if (dag.nodeValue[children[1]] == dag.fixed.maxBounds[children[1]]) return request.increase(children[0]);
  }
  return request.increase(children[rand(request.state, static_cast<std::uint32_t>(children.size()))]);
}

}  // namespace quvex
