#include "solver/node/nodedoubleat.h"

namespace quvex {

double NodeDoubleAt::computeValue(const Dag& dag, NodeId id) const {
  return read(OperandCells::committed(dag, id), here<NodeDoubleAt>());
}

void NodeDoubleAt::eval(Dag& dag, Propagation&, NodeId id) {
  dag.tentativeValue[id] = doubleToWord(read(OperandCells::tentative(dag, id), here<NodeDoubleAt>()));
}

}  // namespace quvex
