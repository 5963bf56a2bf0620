#include "solver/move/gallop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <vector>

#include "solver/kernel/random.h"

namespace quvex {
namespace {

/// A run of operands that counts its reads.
class CountedRun {
 public:
  explicit CountedRun(std::vector<NodeId> ids) : operands(std::move(ids)) {}
  NodeId operator[](OperandPos p) const {
    ++reads;
    return operands[p];
  }
  mutable unsigned reads = 0;

 private:
  std::vector<NodeId> operands;
};

std::vector<NodeId> evenNumbers(std::uint32_t n) {
  std::vector<NodeId> ids;
  for (std::uint32_t i = 0; i < n; ++i) ids.push_back(2 * i);
  return ids;
}

TEST(Gallop, FindsTheFirstOperandThatIsNotBelow) {
  RandomState state = 3;
  for (int round = 0; round < 3000; ++round) {
    std::vector<NodeId> run;
    for (std::uint32_t i = 0, n = 1 + rand(state, 40); i < n; ++i) run.push_back(rand(state, 60));
    std::ranges::sort(run);
    const OperandPos lo = rand(state, static_cast<std::uint32_t>(run.size()));
    const OperandPos hi = lo + rand(state, static_cast<std::uint32_t>(run.size()) - lo);
    const NodeId value = rand(state, 62);
    const auto found = std::lower_bound(run.begin() + lo, run.begin() + hi + 1, value);
    const OperandPos expected = found == run.begin() + hi + 1 ? kNone : static_cast<OperandPos>(found - run.begin());
    EXPECT_EQ(gallop(run, value, lo, hi), expected);
  }
}

TEST(Gallop, CostsTheLogarithmOfTheDistance) {
  const std::uint32_t n = 1U << 20U;
  const CountedRun run(evenNumbers(n));
  for (std::uint32_t distance = 1; distance < n; distance *= 2) {
    run.reads = 0;
    ASSERT_EQ(gallop(run, 2 * distance, 0, n - 1), distance);
    EXPECT_LE(run.reads, 4U + 2U * static_cast<unsigned>(std::bit_width(distance))) << "distance " << distance;
  }
}

TEST(Gallop, ProbesTheEndThenTheStartThenDoublesItsSteps) {
  // Out of order, so that the answer tells the probes: positions 6, 0, 1, 3, then a bisection of 4 to 6.
  const std::vector<NodeId> run = {0, 1, 9, 2, 9, 3, 9};
  EXPECT_EQ(gallop(run, 5, 0, 6), 6U);
  EXPECT_EQ(gallop(run, 10, 0, 6), kNone);
  EXPECT_EQ(gallop(run, 0, 0, 6), 0U);
}

TEST(LowerBound, TakesTheFirstOfEqualOperands) {
  const std::vector<NodeId> run = {1, 4, 4, 4, 9};
  EXPECT_EQ(lowerBound(run, 4, 0, 5), 1U);
  EXPECT_EQ(lowerBound(run, 10, 0, 5), 5U);
  EXPECT_EQ(lowerBound(run, 4, 2, 2), 2U);
}

}  // namespace
}  // namespace quvex
