#include "solver/node/nodeat.h"

namespace quvex {

std::int64_t NodeAt::computeValue(const Dag& dag, NodeId id) const {
  return read(OperandCells::committed(dag, id), here<NodeAt>());
}

void NodeAt::eval(Dag& dag, Propagation&, NodeId id) {
  dag.tentativeValue[id] = read(OperandCells::tentative(dag, id), here<NodeAt>());
}

}  // namespace quvex
