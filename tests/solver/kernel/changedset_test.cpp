#include "solver/kernel/changedset.h"

#include <gtest/gtest.h>

#include <vector>

namespace quvex {
namespace {

template <class Set>
std::vector<OperandPos> membersOf(const Set& set) {
  std::vector<OperandPos> members;
  set.forEach([&](OperandPos p) { members.push_back(p); });
  return members;
}

template <class Set>
class ChangedSetOfAnyType : public testing::Test {};

using AllSubsets =
    testing::Types<SubsetMASK<unsigned char>, SubsetMASK<unsigned short>, SubsetMASK<unsigned int>,
                   SubsetMASK<unsigned long long>, SubsetBits, Subset<unsigned short>, Subset<unsigned int>>;
TYPED_TEST_SUITE(ChangedSetOfAnyType, AllSubsets);

TYPED_TEST(ChangedSetOfAnyType, HoldsAndWalksWhatTheSubsetWould) {
  const std::uint32_t n = std::is_same_v<TypeParam, SubsetBits> ? 1000 : 8;
  ChangedSet<TypeParam> changed(n);
  SearchableChangedSet<TypeParam> searchable(n);
  TypeParam subset(n);
  RandomState state = 5;
  for (int move = 0; move < 500; ++move) {
    for (std::uint32_t k = rand(state, 10); k > 0; --k) {
      const OperandPos p = rand(state, n);
      if (subset.contains(p)) continue;
      changed.add(p);
      searchable.add(p);
      subset.add(p, n);
    }
    ASSERT_EQ(changed.size(), subset.size());
    ASSERT_EQ(changed.empty(), subset.empty());
    ASSERT_EQ(membersOf(changed), membersOf(subset)) << "same members in the same order";
    ASSERT_EQ(membersOf(searchable), membersOf(subset));
    for (OperandPos p = 0; p < n; ++p) ASSERT_EQ(searchable.contains(p), subset.contains(p));
    changed.clear();
    searchable.clear();
    subset.clear();
    ASSERT_TRUE(membersOf(changed).empty());
  }
}

TYPED_TEST(ChangedSetOfAnyType, KnowsItsParityAndWhetherItIsAnotherSet) {
  const std::uint32_t n = std::is_same_v<TypeParam, SubsetBits> ? 1000 : 8;
  RandomState state = 11;
  int nbSame = 0;
  for (int round = 0; round < 500; ++round) {
    ChangedSet<TypeParam> changed(n);
    TypeParam subset(n);
    EXPECT_TRUE(changed.isSameAs(subset));
    TypeParam told(n);
    for (std::uint32_t k = rand(state, 4); k > 0; --k) told.add(rand(state, n), n);
    told.forEach([&](OperandPos p) {
      changed.add(p);
      subset.add(p, n);
    });
    if (coin(state)) subset.add(rand(state, n), n);
    if (coin(state)) subset.remove(rand(state, n), n);
    bool same = true;
    for (OperandPos p = 0; p < n; ++p) same = same && told.contains(p) == subset.contains(p);
    nbSame += same ? 1 : 0;
    ASSERT_EQ(changed.isSameAs(subset), same);
    ASSERT_EQ(changed.hasOddSize(), changed.size() % 2 == 1);
  }
  EXPECT_GT(nbSame, 50);
  EXPECT_LT(nbSame, 450);
}

TYPED_TEST(ChangedSetOfAnyType, MayHoldNoPositionAtAll) {
  ChangedSet<TypeParam> changed(0);
  changed.clear();
  EXPECT_TRUE(changed.empty());
  EXPECT_TRUE(membersOf(changed).empty());
}

}  // namespace
}  // namespace quvex
