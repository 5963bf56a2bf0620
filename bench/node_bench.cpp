// Evaluation of one aggregate by operand count: a decision flips, the node is evaluated, the move is rolled back or
// committed. What does not depend on the operand count should stay flat.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "support/graphbuilder.h"

namespace bench {
namespace {

using quvex::Dag;
using quvex::NodeId;
using quvex::NodeType;
using quvex::t_value;

/// One node over decisions, each behind a term "2 - x" or "x", whatever suits the operator: products get no zeros.
struct OneAggregate {
  quvex::GraphBuilder graph;
  std::vector<NodeId> decisions;
  Dag* dag = nullptr;

  OneAggregate(NodeType type, std::uint32_t nbOperands) {
    decisions = graph.booleans(nbOperands);
    std::vector<NodeId> operands = decisions;
    const bool product = type == NodeType::Product || type == NodeType::DoubleProduct;
    if (product) {
      const NodeId one = graph.constant(1);
      for (NodeId& operand : operands) operand = graph.add(NodeType::Sum, {operand, one});
    }
    std::vector<t_value> constants;
    for (std::uint32_t p = 0; p < nbOperands; ++p) {
      if (type == NodeType::ScalarSum || type == NodeType::ScalarMin) constants.push_back(1 + p % 97);
      if (type == NodeType::DoubleScalarSum) constants.push_back(quvex::doubleToWord(0.5 + p % 97));
    }
    NodeId node = graph.add(type, operands, constants);
    if (type == NodeType::Array) {
      const NodeId index = graph.add(NodeType::Sum, {decisions[0], decisions[1]});
      node = graph.add(NodeType::At, {node, index});
    }
    graph.minimise(node);
    dag = &graph.build();
  }
};

void evaluate(benchmark::State& state, NodeType type, bool commit) {
  OneAggregate aggregate(type, static_cast<std::uint32_t>(state.range(0)));
  Dag& dag = *aggregate.dag;
  quvex::RandomState random = 1;
  for (auto _ : state) {
    dag.flip(aggregate.decisions[quvex::rand(random, static_cast<std::uint32_t>(aggregate.decisions.size()))]);
    benchmark::DoNotOptimize(dag.propagation.evaluateConstraints(dag));
    benchmark::DoNotOptimize(dag.propagation.evaluateUpTo(dag, 1));
    if (commit) {
      dag.propagation.commitAll(dag);
    } else {
      dag.propagation.rollbackAll(dag);
    }
  }
}

void byOperandCount(benchmark::internal::Benchmark* benchmark) {
  for (const int n : {8, 64, 65, 1024, 1025, 100000}) benchmark->Arg(n);
}

#define QUVEX_NODE_BENCH(Type)                                                                \
  BENCHMARK_CAPTURE(evaluate, Type##_rollback, NodeType::Type, false)->Apply(byOperandCount); \
  BENCHMARK_CAPTURE(evaluate, Type##_commit, NodeType::Type, true)->Apply(byOperandCount);

QUVEX_NODE_BENCH(Sum)
QUVEX_NODE_BENCH(ScalarSum)
QUVEX_NODE_BENCH(DoubleScalarSum)
QUVEX_NODE_BENCH(Or)
QUVEX_NODE_BENCH(Min)
QUVEX_NODE_BENCH(Max)
QUVEX_NODE_BENCH(ScalarMin)
QUVEX_NODE_BENCH(DoubleMax)
QUVEX_NODE_BENCH(Product)
QUVEX_NODE_BENCH(DoubleProduct)
QUVEX_NODE_BENCH(Array)

}  // namespace
}  // namespace bench
