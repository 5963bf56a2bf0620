#include "solver/kernel/dag.h"

#include <array>
#include <cassert>
#include <iostream>
#include <new>
#include <type_traits>

#include "api/qvexception.h"
#include "solver/kernel/largepages.h"
#include "solver/kernel/node.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/node/allnodes.h"

namespace quvex {

namespace {

using NodeMaker = Node* (*)(NodePool& pool, std::uint32_t nbOperands);

template <class Class>
Node* makeNode(NodePool& pool, std::uint32_t) {
  static_assert(sizeof(Class) <= NodePool::kMaxObjectSize);
  return new (pool.allocate(sizeof(Class))) Class();
}

template <template <class> class Aggregate>
Node* makeAggregate(NodePool& pool, std::uint32_t nbOperands) {
  return withSubsetFor(nbOperands, [&]<class Set>(std::type_identity<Set>) -> Node* {
    static_assert(sizeof(Aggregate<Set>) <= NodePool::kMaxObjectSize);
    return new (pool.allocate(sizeof(Aggregate<Set>))) Aggregate<Set>(nbOperands);
  });
}

constexpr std::array<NodeMaker, kNbNodeTypes> kMakers = {{
#define QUVEX_NODE(Type, Text, DomainName, Class) &makeNode<Class>,
#define QUVEX_AGGREGATE(Type, Text, DomainName, Class) &makeAggregate<Class>,
#include "solver/kernel/nodetypes.def"
#undef QUVEX_NODE
#undef QUVEX_AGGREGATE
}};

}  // namespace

Dag::Dag(const DagFixedFields& fixedFields)
    : fixed(fixedFields),
      records(fixedFields.nbNodes),
      nodeValue(fixedFields.nbNodes, 0),
      tentativeValue(fixedFields.nbNodes, 0),
      liesInNearCaches(fixedFields.nbNodes < kNodesInNearCaches) {
  nodes.reserve(fixed.nbNodes);
  try {
    for (NodeId id = 0; id < fixed.nbNodes; ++id) nodes.push_back(createNode(id));
    layOutRecords();
  } catch (...) {
    destroyNodes();
    throw;
  }
}

Dag::~Dag() { destroyNodes(); }

/// Ends the nodes without releasing their memory, which is the pool's.
void Dag::destroyNodes() {
  for (Node* node : nodes) node->~Node();
}

Node* Dag::createNode(NodeId id) {
  const auto code = static_cast<unsigned>(fixed.nodeTypes[id]);
  if (code >= kNbNodeTypes) raise<KernelException>(here<Dag>(), "Unknown type (", code, ") for node ", id);
  return kMakers[code](pool, fixed.nbChildren[id]);
}

void Dag::init() {
  if (initialized) raise<KernelException>(here<Dag>(), "The dag is already initialized");
  if (fixed.objectiveDirections.size() != fixed.objectives.size()) {
    raise<KernelException>(here<Dag>(), "Different number of directions and operators in the objective.");
  }
  if (fixed.objectives.empty()) raise<KernelException>(here<Dag>(), "No objective.");
  for (NodeId id = 0; id < fixed.nbNodes; ++id) {
    records[id].slot = fixed.slotOf(id);
    records[id].tellKind = tellKindOf(id);
  }
  for (const auto* cells : {&nodeValue, &tentativeValue}) holdInLargePages(*cells);
  holdInLargePages(records);
  holdInLargePages(listRoom);
  reinitAllNodes();
  initialized = true;
  propagation.init(*this);
}

TellKind Dag::tellKindOf(NodeId id) const {
  if (fixed.parentCount(id) == 0) return TellKind::Never;
  return fixed.nodeDomains[id] <= Domain::Integer ? TellKind::ByCell : TellKind::Asked;
}

void Dag::layOutRecords() {
  const auto needsList = [](ChangeKind kind) { return kind == ChangeKind::List || kind == ChangeKind::Called; };
  std::size_t length = 0;
  for (NodeId id = 0; id < fixed.nbNodes; ++id) {
    records[id].node = nodes[id];
    records[id].changeKind = nodes[id]->changeKind();
    if (needsList(records[id].changeKind)) length += std::size_t{fixed.nbChildren[id]} + 1;
  }
  assert(length <= kNone);  // `DagFixedFields` sees to it: the parents take more words than the lists
  listRoom.resize(length);
  allLists = listRoom.data();
  std::uint32_t next = 0;
  for (NodeId id = 0; id < fixed.nbNodes; ++id) {
    if (!needsList(records[id].changeKind)) continue;
    records[id].listStart = next;
    next += fixed.nbChildren[id];
    listRoom[next++] = kNone;
  }
}

void Dag::reinitAllNodes() {
  assert(propagation.touchedDecisions.empty());  // between moves
  for (const auto& rank : fixed.nodesByRank) {
    for (const NodeId id : rank) nodes[id]->init(*this, id);
  }
  propagation.laggingNodes.clear();
}

void Dag::setOptimizedLevel(Level level) {
  if (level > propagation.optimizedLevel) reinitAllNodes();
  if (level < propagation.optimizedLevel) propagation.catchUp(*this);
  propagation.optimizedLevel = level;
}

void Dag::printStats() const {
  if (!initialized) raise<KernelException>(here<Dag>(), "The dag must be initialized");
  std::cout << "Kernel dag statistics:\n"
            << "  nodes=" << fixed.nbNodes << '\n'
            << "  variables=" << fixed.firstOperator << '\n'
            << "  constraints=" << fixed.nbConstraints() << '\n'
            << "  objectives=" << fixed.nbObjectives() << '\n'
            << "  maxRank=" << fixed.nbRanks() << "\n\n";
  for (std::size_t code = 0; code < fixed.typeCounts.size(); ++code) {
    std::cout << "  " << NodeTypeUtils::toString(static_cast<NodeType>(code)) << '=' << fixed.typeCounts[code] << '\n';
  }
  std::cout << "\nObjective bounds:\n";
  for (std::uint32_t i = 0; i < fixed.nbObjectives(); ++i) {
    const NodeId id = fixed.objectives[i];
    std::cout << "  Obj " << i << ": ";
    if (fixed.isDouble(id)) {
      std::cout << "min = " << wordToDouble(fixed.minBounds[id]) << ", max = " << wordToDouble(fixed.maxBounds[id]);
    } else {
      std::cout << "min = " << fixed.minBounds[id] << ", max = " << fixed.maxBounds[id];
    }
    std::cout << '\n';
  }
  std::cout.flush();
}

}  // namespace quvex
