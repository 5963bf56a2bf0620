#pragma once

#include "builder/preprocessor/nodecreatorbase.h"

namespace quvex {

/// Makes the node closest to each expression, one to one, for models compiled without preprocessing. Only "scalar",
/// for which there is no node, is taken apart.
class DummyNodeCreator : public NodeCreatorBase {
 public:
  static constexpr const char* kName = "quvex::DummyNodeCreator";

  using NodeCreatorBase::NodeCreatorBase;

 protected:
  NodeId lower(ExprId e, const Lowering& row, ExprStack& stack) override;

 private:
  /// A sum of products over the elements, as many as the first array has.
  NodeId createScalar(ExprId e, ExprStack& stack);
};

}  // namespace quvex
