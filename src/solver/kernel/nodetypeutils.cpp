#include "solver/kernel/nodetypeutils.h"

#include <array>

#include "api/qvexception.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/subsetbits.h"
#include "solver/node/allnodes.h"

namespace quvex {

namespace {

struct TypeRow {
  const char* name;
  Domain domain;
  Bounds (*computeBounds)(const DagFixedFields& fixed, NodeId id);
};

// The bounds of an aggregate do not depend on its subset type, so any instantiation answers.
constexpr std::array<TypeRow, kNbNodeTypes> kTypeTable = {{
#define QUVEX_NODE(Type, Text, DomainName, Class) {Text, Domain::DomainName, &Class::computeBounds},
#define QUVEX_AGGREGATE(Type, Text, DomainName, Class) {Text, Domain::DomainName, &Class<SubsetBits>::computeBounds},
#include "solver/kernel/nodetypes.def"
#undef QUVEX_NODE
#undef QUVEX_AGGREGATE
}};

const TypeRow& rowOf(NodeType type, const Place& place) {
  const auto code = static_cast<unsigned>(type);
  if (code >= kNbNodeTypes) raise<KernelException>(place, "Unknown node type ", code);
  return kTypeTable[code];
}

}  // namespace

std::string NodeTypeUtils::toString(NodeType type) { return rowOf(type, here<NodeTypeUtils>()).name; }

Domain NodeTypeUtils::getDomainValue(const DagFixedFields& fixed, NodeId id) {
  const NodeType type = fixed.nodeTypes[id];
  if (type == NodeType::Constant) {
    const t_value value = fixed.constant(id, 0);
    return value == 0 || value == 1 ? Domain::Boolean : Domain::Integer;
  }
  if (type == NodeType::If) {
    const bool boolean = fixed.nodeDomains[fixed.child(id, 1)] == Domain::Boolean &&
                         fixed.nodeDomains[fixed.child(id, 2)] == Domain::Boolean;
    return boolean ? Domain::Boolean : Domain::Integer;
  }
  return rowOf(type, here<NodeTypeUtils>()).domain;
}

void NodeTypeUtils::computeBounds(const DagFixedFields& fixed, NodeId id, t_value& min, t_value& max) {
  const Bounds bounds = rowOf(fixed.nodeTypes[id], here<NodeTypeUtils>()).computeBounds(fixed, id);
  min = bounds.min;
  max = bounds.max;
}

}  // namespace quvex
