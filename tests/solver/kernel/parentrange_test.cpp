#include "solver/kernel/parentrange.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "support/graphbuilder.h"

namespace quvex {
namespace {

static_assert(std::input_iterator<ParentRange::Iterator>);

TEST(ParentRange, ReadsPairsOfWords) {
  const std::array<std::uint32_t, 6> words{7, 0, 9, 2, 9, 5};
  const ParentRange range(words.data(), words.data() + words.size());
  EXPECT_EQ(range.size(), 3U);
  EXPECT_FALSE(range.empty());
  EXPECT_EQ(range[1].parent, 9U);
  EXPECT_EQ(range[2].childPos, 5U);
  EXPECT_EQ(std::ranges::count_if(range, [](ParentLink link) { return link.parent == 9; }), 2);
  EXPECT_TRUE(ParentRange(words.data(), words.data()).empty());
}

std::vector<NodeId> parentIds(const ParentRange& range) {
  std::vector<NodeId> ids;
  for (const ParentLink link : range) ids.push_back(link.parent);
  return ids;
}

TEST(ParentRun, CutsRunsByLevelWhereverTheyLie) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();       // two objectives, a constraint, and a node that serves nothing
  const NodeId y = graph.boolean();       // one parent only, which lies in its row
  const NodeId lonely = graph.boolean();  // none
  const NodeId second = graph.add(NodeType::Sum, {x, y});
  const NodeId first = graph.add(NodeType::Sum, {x, x});
  const NodeId barrier = graph.add(NodeType::Not, {x});
  const NodeId idle = graph.add(NodeType::Abs, {x});
  graph.constraint(barrier);
  graph.minimise(first);
  graph.minimise(second);
  graph.build();
  const DagFixedFields& fixed = graph.fixed;
  EXPECT_EQ(parentIds(fixed.parentRun(x).between(0, 0)), std::vector<NodeId>{barrier});
  EXPECT_EQ(parentIds(fixed.parentRun(x).between(1, 1)), (std::vector<NodeId>{first, first}));
  EXPECT_EQ(parentIds(fixed.parentRun(x).between(1, 2)).size(), 4U);
  EXPECT_EQ(fixed.parentCount(x), 5U);
  EXPECT_TRUE(std::ranges::any_of(fixed.parentsOf(x), [&](ParentLink link) { return link.parent == idle; }));
  EXPECT_TRUE(fixed.parentRun(y).between(0, 1).empty());
  EXPECT_EQ(parentIds(fixed.parentsOf(y)), std::vector<NodeId>{second});
  EXPECT_EQ(fixed.parentsOf(y)[0].childPos, 1U);
  EXPECT_TRUE(fixed.parentsOf(lonely).empty());
}

}  // namespace
}  // namespace quvex
