#include "solver/kernel/nodeintegervar.h"

#include <iostream>

#include "api/qvexception.h"

namespace quvex {

void NodeIntegerVar::check(const Dag& dag, NodeId id) const {
  if (isInit(dag, id)) return;
  print(dag, id);
  raise<KernelException>(here<NodeIntegerVar>(), "Error in check of operator.");
}

void NodeIntegerVar::print(const Dag& dag, NodeId id) const {
  std::cout << "PosInNodes= " << id << "\nOperator= " << NodeTypeUtils::toString(dag.fixed.nodeTypes[id])
            << "\nisInit=" << isInit(dag, id) << "\nvalue=" << dag.nodeValue[id]
            << "\nt_value=" << dag.tentativeValue[id] << std::endl;
}

}  // namespace quvex
