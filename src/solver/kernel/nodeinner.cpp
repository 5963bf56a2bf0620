#include "solver/kernel/nodeinner.h"

#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"

namespace quvex {

bool NodeInner::isInit(const Dag& dag, NodeId id) const {
  const t_value value = dag.nodeValue[id];
  return value == dag.tentativeValue[id] && value >= dag.fixed.minBounds[id] && value <= dag.fixed.maxBounds[id] &&
         value == computeValue(dag, id);
}

void NodeInner::init(Dag& dag, NodeId id) {
  dag.nodeValue[id] = computeValue(dag, id);
  dag.tentativeValue[id] = dag.nodeValue[id];
}

bool NodeDoubleInner::isInit(const Dag& dag, NodeId id) const {
  // An infinity equals itself exactly, so the first test of `isEqual` covers it.
  const double value = wordToDouble(dag.nodeValue[id]);
  const double min = wordToDouble(dag.fixed.minBounds[id]);
  const double max = wordToDouble(dag.fixed.maxBounds[id]);
  return MathDouble::isEqual(value, wordToDouble(dag.tentativeValue[id])) &&
         (value > min || MathDouble::isEqual(value, min)) && (value < max || MathDouble::isEqual(value, max)) &&
         MathDouble::isEqual(computeValue(dag, id), value);
}

void NodeDoubleInner::init(Dag& dag, NodeId id) {
  dag.nodeValue[id] = doubleToWord(computeValue(dag, id));
  dag.tentativeValue[id] = dag.nodeValue[id];
}

}  // namespace quvex
