#include "solver/kernel/indexedset.h"

#include <gtest/gtest.h>

#include <set>

#include "solver/kernel/random.h"

namespace quvex {
namespace {

std::vector<std::uint32_t> membersOf(const IndexedSet& set) { return {set.members().begin(), set.members().end()}; }

TEST(IndexedSet, KeepsTheOrderOfInsertionDisturbedByRemovals) {
  IndexedSet set(5);
  set.add(3);
  set.add(1);
  set.add(4);
  EXPECT_EQ(membersOf(set), (std::vector<std::uint32_t>{3, 1, 4}));
  set.remove(3);  // the last member takes its place
  EXPECT_EQ(membersOf(set), (std::vector<std::uint32_t>{4, 1}));
}

TEST(IndexedSet, IgnoresAddedMembersAndRemovedStrangers) {
  IndexedSet set(3);
  set.add(2);
  set.add(2);
  set.remove(0);
  EXPECT_EQ(membersOf(set), (std::vector<std::uint32_t>{2}));
}

TEST(IndexedSet, EmptiesAndFillsByAStore) {
  IndexedSet set(3);
  set.add(1);
  set.clear();
  EXPECT_TRUE(set.empty());
  set.fill();
  EXPECT_EQ(membersOf(set), (std::vector<std::uint32_t>{1, 0, 2}));  // the permutation stays as it was
}

TEST(IndexedSet, StaysAPermutationUnderRandomChanges) {
  constexpr std::uint32_t kCapacity = 37;
  IndexedSet set(kCapacity);
  std::set<std::uint32_t> truth;
  RandomState state = 1;
  for (int step = 0; step < 5000; ++step) {
    const std::uint32_t x = rand(state, kCapacity);
    if (coin(state)) {
      set.add(x);
      truth.insert(x);
    } else {
      set.remove(x);
      truth.erase(x);
    }
    ASSERT_EQ(std::set<std::uint32_t>(set.members().begin(), set.members().end()), truth);
    for (std::uint32_t i = 0; i < kCapacity; ++i) ASSERT_EQ(set.positions[set.items[i]], i);
  }
}

}  // namespace
}  // namespace quvex
