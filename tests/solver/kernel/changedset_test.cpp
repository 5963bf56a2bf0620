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

/// A record with its list and flags, written as a node's is and read through a set.
template <class Set>
class Changes {
 public:
  explicit Changes(std::uint32_t n) : lists(kStart + n + 1), flags(n) {
    lists.back() = kNone;
    record.listStart = kStart;
  }

  void add(OperandPos p) {
    Set::note(record, lists.data(), p);
    flags.add(p);
  }
  void clear() {
    flags.clear(log());
    record.changes = 0;
  }
  [[nodiscard]] Set set() { return Set(log(), flags); }

 private:
  static constexpr std::uint32_t kStart = 3;  ///< others' lists lie before it

  std::vector<OperandPos> lists;
  NodeRecord record;
  typename Set::Flags flags;

  [[nodiscard]] ChangeLog log() { return {record.changes, lists.data() + record.listStart}; }
};

template <class Set>
class ChangedSetOfAnyType : public testing::Test {};

using AllSubsets =
    testing::Types<SubsetMASK<unsigned char>, SubsetMASK<unsigned short>, SubsetMASK<unsigned int>,
                   SubsetMASK<unsigned long long>, SubsetBits, Subset<unsigned short>, Subset<unsigned int>>;
TYPED_TEST_SUITE(ChangedSetOfAnyType, AllSubsets);

TYPED_TEST(ChangedSetOfAnyType, HoldsAndWalksWhatTheSubsetWould) {
  const std::uint32_t n = std::is_same_v<TypeParam, SubsetBits> ? 1000 : 8;
  Changes<ChangedSet<TypeParam>> changed(n);
  Changes<SearchableChangedSet<TypeParam>> searchable(n);
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
    ASSERT_EQ(changed.set().size(), subset.size());
    ASSERT_EQ(changed.set().empty(), subset.empty());
    ASSERT_EQ(membersOf(changed.set()), membersOf(subset)) << "same members in the same order";
    ASSERT_EQ(membersOf(searchable.set()), membersOf(subset));
    for (OperandPos p = 0; p < n; ++p) ASSERT_EQ(searchable.set().contains(p), subset.contains(p));
    changed.clear();
    searchable.clear();
    subset.clear();
    ASSERT_TRUE(membersOf(changed.set()).empty());
  }
}

TYPED_TEST(ChangedSetOfAnyType, KnowsItsParityAndWhetherItIsAnotherSet) {
  const std::uint32_t n = std::is_same_v<TypeParam, SubsetBits> ? 1000 : 8;
  RandomState state = 11;
  int nbSame = 0;
  for (int round = 0; round < 500; ++round) {
    Changes<ChangedSet<TypeParam>> changed(n);
    TypeParam subset(n);
    EXPECT_TRUE(changed.set().isSameAs(subset));
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
    ASSERT_EQ(changed.set().isSameAs(subset), same);
    ASSERT_EQ(changed.set().hasOddSize(), changed.set().size() % 2 == 1);
  }
  EXPECT_GT(nbSame, 50);
  EXPECT_LT(nbSame, 450);
}

TYPED_TEST(ChangedSetOfAnyType, IsWalkedInOrderBehindAWalkInAnyOrder) {
  const std::uint32_t n = std::is_same_v<TypeParam, SubsetBits> ? 1000 : 8;
  Changes<ChangedSet<TypeParam>> changed(n);
  TypeParam subset(n);
  for (const OperandPos p : {n - 1, 2U, 5U, 0U}) {
    changed.add(p);
    subset.add(p, n);
  }
  OperandPos sum = 0;
  changed.set().forEachInAnyOrder([&](OperandPos p) { sum += p; });
  EXPECT_EQ(sum, n + 6);
  EXPECT_EQ(membersOf(changed.set()), membersOf(subset));
}

TYPED_TEST(ChangedSetOfAnyType, MayHoldNoPositionAtAll) {
  Changes<ChangedSet<TypeParam>> changed(0);
  changed.clear();
  EXPECT_TRUE(changed.set().empty());
  EXPECT_TRUE(membersOf(changed.set()).empty());
}

}  // namespace
}  // namespace quvex
