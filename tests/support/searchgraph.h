#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/random.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/dagstructures.h"
#include "support/graphbuilder.h"

namespace quvex {

/// A kernel graph with its structure analysis: what a move works on. Add nodes, then `start`.
class SearchGraph : public GraphBuilder {
 public:
  DagStructures structures;
  std::unique_ptr<AutonomousStructure> structure;

  Dag& start(RandomState seed = 1, bool wantTree = false) {
    Dag& built = build();
    structures.build(fixed, wantTree);
    structure = std::make_unique<AutonomousStructure>(built, seed, structures);
    return built;
  }

  NodeId booleanSum(const std::vector<NodeId>& operands) { return add(NodeType::BooleanSum, operands); }
  /// A sum that an equality constraint ties to `value`.
  NodeId tiedSum(const std::vector<NodeId>& operands, std::int64_t value) {
    const NodeId sum = booleanSum(operands);
    constraint(add(NodeType::Eq, {sum, constant(value)}));
    return sum;
  }
  /// A sum that a constraint limits from above.
  NodeId limitedSum(const std::vector<NodeId>& operands, std::int64_t limit) {
    const NodeId sum = booleanSum(operands);
    constraint(add(NodeType::Leq, {sum, constant(limit)}));
    return sum;
  }

  RandomState& state() { return structure->randomState; }
};

enum class Places { Tied, Limited };

/// n items on n places: `x[i][j]` tells whether item i is on place j. One sum per item, tied to 1, then one per place,
/// tied to 1 or limited by 1: then the places are the slack sums and the items the equality sums.
/// Starts with item i on place i.
class AssignmentGraph : public SearchGraph {
 public:
  std::vector<std::vector<NodeId>> x;
  std::vector<NodeId> itemSums;
  std::vector<NodeId> placeSums;

  explicit AssignmentGraph(std::uint32_t n, Places places = Places::Tied) {
    for (std::uint32_t i = 0; i < n; ++i) x.push_back(booleans(n));
    for (std::uint32_t i = 0; i < n; ++i) itemSums.push_back(tiedSum(x[i], 1));
    for (std::uint32_t j = 0; j < n; ++j) {
      std::vector<NodeId> column;
      for (std::uint32_t i = 0; i < n; ++i) column.push_back(x[i][j]);
      placeSums.push_back(places == Places::Tied ? tiedSum(column, 1) : limitedSum(column, 1));
    }
    Dag& built = start();
    for (std::uint32_t i = 0; i < n; ++i) built.propagation.setTentativeValue(built, x[i][i], 1);
    built.propagation.commitAll(built);
  }

  /// The place of an item in the tentative state, kNone if it has none or several.
  [[nodiscard]] std::uint32_t placeOf(std::uint32_t item) const {
    std::uint32_t place = kNone;
    for (std::uint32_t j = 0; j < x[item].size(); ++j) {
      if (dag->tentativeValue[x[item][j]] == 0) continue;
      if (place != kNone) return kNone;
      place = j;
    }
    return place;
  }
};

/// Two items on two places each, starting on their first ones. Place 0 is the first of item 0 and the second of item 1,
/// place 1 the other way round; the places count what is not on them, so that they fall where their items rise.
/// The places are the slack sums, the items the equality sums.
class NegatedPlaces : public SearchGraph {
 public:
  std::vector<NodeId> a = booleans(3);
  std::vector<NodeId> b = booleans(3);
  NodeId other = boolean();  ///< in both places, in no item
  NodeId itemA = tiedSum(a, 1);
  NodeId itemB = tiedSum(b, 1);

  NegatedPlaces() {
    for (const auto& [first, second] : {std::pair{a[0], b[1]}, std::pair{a[1], b[0]}}) {
      const NodeId place = add(NodeType::ScalarSum, {first, second, other}, {-1, -1, -1});
      constraint(add(NodeType::Leq, {place, constant(0)}));
    }
    commitValues(start(), {{a[0], 1}, {b[0], 1}});
  }
};

/// Two sums tied to 1 that share their only operand at 1.
class SharedOne : public SearchGraph {
 public:
  NodeId shared = boolean();
  std::vector<NodeId> first = booleans(2);
  std::vector<NodeId> second = booleans(2);
  NodeId a = tiedSum({shared, first[0], first[1]}, 1);
  NodeId b = tiedSum({shared, second[0], second[1]}, 1);

  SharedOne() { commitValues(start(), {{shared, 1}}); }

  /// Puts a random operand of the sum behind `changed`, unless it is among these already.
  void drawInto(std::vector<NodeId>& changed, RandomState& state, NodeId sum) const {
    const NodeId drawn = dag->child(sum, rand(state, 3));
    if (std::ranges::find(changed, drawn) == changed.end()) changed.push_back(drawn);
  }
};

/// Draws one of the sum's operands that are committed at `value`, kNone if there is none: what a small sum's candidate
/// sets do.
inline NodeId drawOperandAt(const Dag& dag, RandomState& state, NodeId sum, t_value value) {
  std::vector<NodeId> operands;
  for (const NodeId operand : dag.fixed.childrenOf(sum)) {
    if (dag.nodeValue[operand] == value) operands.push_back(operand);
  }
  if (operands.empty()) return kNone;
  return operands[rand(state, static_cast<std::uint32_t>(operands.size()))];
}

/// The decisions that the running move has set, in order.
inline std::vector<NodeId> touched(const Dag& dag) {
  const NodeList& list = dag.propagation.touchedDecisions;
  return {list.begin(), list.end()};
}

/// The same in ascending order.
inline std::vector<NodeId> touchedSorted(const Dag& dag) {
  std::vector<NodeId> ids = touched(dag);
  std::ranges::sort(ids);
  return ids;
}

/// The state after `n` draws.
inline RandomState stepped(RandomState state, unsigned n) {
  while (n-- > 0) randomStep(state);
  return state;
}

/// Seeds whose first draws are spread over the whole range; neighbouring numbers draw nearly alike.
inline std::vector<RandomState> someSeeds(std::uint32_t n) {
  std::vector<RandomState> seeds;
  for (std::uint32_t i = 0; i < n; ++i) seeds.push_back(i * 2654435769U + 1);
  return seeds;
}

}  // namespace quvex
