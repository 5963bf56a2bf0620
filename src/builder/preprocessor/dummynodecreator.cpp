#include "builder/preprocessor/dummynodecreator.h"

#include "api/qvexception.h"
#include "builder/evaluatortools.h"

namespace quvex {

NodeId DummyNodeCreator::lower(ExprId e, const Lowering& row, ExprStack& stack) {
  return row.rewriting == Rewriting::Scalar ? createScalar(e, stack) : createPlain(e, row, stack);
}

/// The arrays get their nodes too, like all operands, and with them the elements.
NodeId DummyNodeCreator::createScalar(ExprId e, ExprStack& stack) {
  if (!collectOperandNodes(e, stack)) return kNone;
  const std::span<const ExprId> a = preprocessor.operands(preprocessor.operands(e)[0]);
  const std::span<const ExprId> b = preprocessor.operands(preprocessor.operands(e)[1]);
  EvaluatorTools::checkScalarLengths(a.size(), b.size(), here<DummyNodeCreator>());

  const bool isDouble = hasDoubleElement(e);
  std::vector<NodeId> products;
  for (std::size_t i = 0; i < a.size(); ++i) {
    products.push_back(createElementProduct(preprocessor.exprToNode[a[i]], preprocessor.exprToNode[b[i]], isDouble));
  }
  return createElementSum(products, isDouble);
}

}  // namespace quvex
