#include "solver/kernel/dag.h"

#include <gtest/gtest.h>

#include "api/qvexception.h"
#include "solver/kernel/node.h"
#include "solver/node/allnodes.h"
#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

TEST(Dag, NeedsAnObjective) {
  DagFixedFields fixed;
  fixed.addBooleanDecision();
  fixed.init();
  Dag dag(fixed);
  EXPECT_EQ(failureOf([&] { dag.init(); }), refusal("Dag::init", "No objective."));
}

TEST(Dag, TestsTheDirectionsBeforeTheObjectives) {
  DagFixedFields fixed;
  fixed.addBooleanDecision();
  fixed.objectiveDirections.push_back(0);
  fixed.init();
  Dag dag(fixed);
  EXPECT_EQ(failureOf([&] { dag.init(); }),
            refusal("Dag::init", "Different number of directions and operators in the objective."));
}

TEST(Dag, IsInitialisedOnce) {
  GraphBuilder graph;
  graph.minimise(graph.boolean());
  Dag& dag = graph.build();
  EXPECT_EQ(failureOf([&] { dag.init(); }), refusal("Dag::init", "The dag is already initialized"));
}

TEST(Dag, RefusesAnUnknownType) {
  DagFixedFields fixed;
  fixed.addBooleanDecision();
  const std::vector<NodeId> many(100, 0);
  fixed.addNode(NodeType::Sum, many);  // owns memory, which must not be lost
  fixed.addBooleanDecision();
  fixed.nodeTypes[2] = static_cast<NodeType>(99);
  EXPECT_EQ(failureOf([&] { const Dag dag(fixed); }), refusal("Dag::createNode", "Unknown type (99) for node 2"));
  EXPECT_EQ(failureOf([&] { (void)NodeTypeUtils::toString(static_cast<NodeType>(61)); }),
            refusal("NodeTypeUtils::toString", "Unknown node type 61"));
  EXPECT_EQ(failureOf([&] { (void)NodeTypeUtils::getDomainValue(fixed, 2); }),
            refusal("NodeTypeUtils::getDomainValue", "Unknown node type 99"));
}

TEST(Dag, StartsFromTheValuesThatTheDecisionsHold) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId no = graph.add(NodeType::Not, {x});
  graph.minimise(no);
  graph.fixed.init();
  Dag dag(graph.fixed);
  dag.nodeValue[x] = 1;
  dag.init();
  EXPECT_EQ(dag.nodeValue[no], 0);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

template <class Set>
bool isSumOver(const GraphBuilder& graph, NodeId id) {
  return dynamic_cast<const NodeSumTemplate<Set>*>(graph.dag->nodes[id]) != nullptr;
}

TEST(Dag, ChoosesTheSubsetTypeByTheNumberOfOperands) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const auto sumOf = [&](std::uint32_t n) { return graph.add(NodeType::Sum, std::vector<NodeId>(n, x)); };
  const NodeId n8 = sumOf(8);
  const NodeId n9 = sumOf(9);
  const NodeId n16 = sumOf(16);
  const NodeId n17 = sumOf(17);
  const NodeId n32 = sumOf(32);
  const NodeId n33 = sumOf(33);
  const NodeId n64 = sumOf(64);
  const NodeId n65 = sumOf(65);
  const NodeId n1024 = sumOf(1024);
  const NodeId n1025 = sumOf(1025);
  const NodeId n65534 = sumOf(65534);
  const NodeId n65535 = sumOf(65535);
  graph.minimise(n8);
  graph.build();
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned char>>(graph, n8));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned short>>(graph, n9));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned short>>(graph, n16));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned int>>(graph, n17));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned int>>(graph, n32));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned long long>>(graph, n33));
  EXPECT_TRUE(isSumOver<SubsetMASK<unsigned long long>>(graph, n64));
  EXPECT_TRUE(isSumOver<SubsetBits>(graph, n65));
  EXPECT_TRUE(isSumOver<SubsetBits>(graph, n1024));
  EXPECT_TRUE(isSumOver<Subset<unsigned short>>(graph, n1025));
  EXPECT_TRUE(isSumOver<Subset<unsigned short>>(graph, n65534));
  EXPECT_TRUE(isSumOver<Subset<unsigned int>>(graph, n65535));
}

TEST(Dag, PrintsItsStatistics) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId half = graph.constantDouble(0.5);
  const NodeId product = graph.add(NodeType::DoubleProduct, {x, half});
  graph.constraint(x);
  graph.minimise(product);
  graph.maximise(x);
  graph.fixed.init();
  Dag dag(graph.fixed);
  EXPECT_EQ(failureOf([&] { dag.printStats(); }), refusal("Dag::printStats", "The dag must be initialized"));
  dag.init();
  CapturedOutput output;
  dag.printStats();
  const std::string text = output.text();
  EXPECT_EQ(text.substr(0, text.find("  boolean")),
            "Kernel dag statistics:\n  nodes=3\n  variables=1\n  constraints=1\n  objectives=2\n  maxRank=2\n\n");
  EXPECT_NE(text.find("\n  boolean=1\n  integer=0\n  abs=0\n"), std::string::npos);
  EXPECT_NE(text.find("\n  double_product=1\n\nObjective bounds:\n"), std::string::npos);
  EXPECT_EQ(text.substr(text.find("Objective bounds:")),
            "Objective bounds:\n  Obj 0: min = 0, max = 0.5\n  Obj 1: min = 0, max = 1\n");
}

TEST(Dag, DumpsANodeThatDisagreesWithItsOperands) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId no = graph.add(NodeType::Not, {x});
  graph.minimise(no);
  Dag& dag = graph.build();
  dag.nodes[no]->check(dag, no);
  dag.nodeValue[no] = dag.tentativeValue[no] = 0;
  CapturedOutput output;
  EXPECT_EQ(failureOf([&] { dag.nodes[no]->check(dag, no); }), refusal("Node::check", "Error in check of operator."));
  EXPECT_EQ(output.text(),
            "\n\nId= 1\nOperator= not\nisInit=0\nvalue=0\nt_value=0\nmin=0\nmax=1\n"
            "childNode[0]= id=0 type=boolean value=0 t_value=0 min=0 max=1\n");
}

TEST(Dag, LooksAtTheValueOfAConstantForItsDomain) {
  GraphBuilder graph;
  const NodeId one = graph.constant(1);
  const NodeId two = graph.constant(2);
  const NodeId x = graph.boolean();
  const NodeId booleanIf = graph.add(NodeType::If, {x, one, x});
  const NodeId integerIf = graph.add(NodeType::If, {x, one, two});
  graph.minimise(x);
  graph.build();
  EXPECT_EQ(graph.fixed.nodeDomains[one], Domain::Boolean);
  EXPECT_EQ(graph.fixed.nodeDomains[two], Domain::Integer);
  EXPECT_EQ(graph.fixed.nodeDomains[booleanIf], Domain::Boolean);
  EXPECT_EQ(graph.fixed.nodeDomains[integerIf], Domain::Integer);
}

TEST(Dag, RecomputesAllNodesWhenTheOptimisedLevelRises) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId first = graph.add(NodeType::Not, {x});
  const NodeId second = graph.add(NodeType::Sum, {x, first, x});
  graph.minimise(first);
  graph.minimise(second);
  Dag& dag = graph.build();
  dag.setOptimizedLevel(1);
  commitValues(dag, {{x, 1}});
  EXPECT_EQ(dag.nodeValue[second], 1);  // stale
  EXPECT_TRUE(dag.propagation.laggingNodes.contains(x));
  dag.setOptimizedLevel(2);
  EXPECT_EQ(dag.nodeValue[second], 2);
  EXPECT_TRUE(dag.propagation.laggingNodes.empty());
}

TEST(Dag, CatchesUpBeforeTheOptimisedLevelFalls) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId first = graph.add(NodeType::Not, {y});
  const NodeId second = graph.add(NodeType::Not, {x});
  graph.minimise(first);
  graph.minimise(second);
  Dag& dag = graph.build();
  dag.setOptimizedLevel(1);
  commitValues(dag, {{x, 1}});
  EXPECT_EQ(dag.nodeValue[second], 1);
  dag.setOptimizedLevel(0);
  EXPECT_EQ(dag.nodeValue[second], 0);
  EXPECT_TRUE(dag.propagation.laggingNodes.empty());
}

}  // namespace
}  // namespace quvex
