#include "solver/kernel/subset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

#include "solver/kernel/subsetchoice.h"

namespace quvex {
namespace {

template <class Set>
std::vector<OperandPos> membersOf(const Set& set) {
  std::vector<OperandPos> members;
  set.forEach([&](OperandPos p) { members.push_back(p); });
  return members;
}

/// The sequence that `at` enumerates.
template <class Set>
std::vector<OperandPos> sequenceOf(const Set& set, std::uint32_t n) {
  std::vector<OperandPos> sequence;
  for (std::uint32_t k = 0; k < n; ++k) sequence.push_back(set.at(k, n));
  return sequence;
}

template <class Set>
constexpr bool kHasOwnOrder = std::is_same_v<Set, Subset<unsigned short>> || std::is_same_v<Set, Subset<unsigned int>>;

template <class Set>
constexpr std::uint32_t kTestSize = 200;
template <class T>
constexpr std::uint32_t kTestSize<SubsetMASK<T>> = SubsetMASK<T>::kCapacity;

template <class Set>
class SubsetOfAnyType : public testing::Test {
 protected:
  static constexpr std::uint32_t kN = kTestSize<Set>;
};

using AllSubsets =
    testing::Types<SubsetMASK<unsigned char>, SubsetMASK<unsigned short>, SubsetMASK<unsigned int>,
                   SubsetMASK<unsigned long long>, SubsetBits, Subset<unsigned short>, Subset<unsigned int>>;
TYPED_TEST_SUITE(SubsetOfAnyType, AllSubsets);

TYPED_TEST(SubsetOfAnyType, StartsEmptyWithAllPositionsInAscendingOrder) {
  const TypeParam set(this->kN);
  EXPECT_EQ(set.size(), 0U);
  EXPECT_TRUE(set.empty());
  EXPECT_TRUE(membersOf(set).empty());
  for (std::uint32_t k = 0; k < this->kN; ++k) EXPECT_EQ(set.at(k, this->kN), k);
}

TYPED_TEST(SubsetOfAnyType, AddingAMemberOrRemovingAStrangerChangesNothing) {
  TypeParam set(this->kN);
  set.add(3, this->kN);
  set.add(6, this->kN);
  const auto before = sequenceOf(set, this->kN);
  set.add(3, this->kN);
  set.remove(5, this->kN);
  EXPECT_EQ(set.size(), 2U);
  EXPECT_EQ(sequenceOf(set, this->kN), before);
}

TYPED_TEST(SubsetOfAnyType, AtListsMembersThenNonMembersThenN) {
  TypeParam set(this->kN);
  for (const OperandPos p : {1U, 4U, 5U, 0U}) set.add(p, this->kN);
  set.remove(4, this->kN);
  auto sequence = sequenceOf(set, this->kN);
  for (std::uint32_t k = 0; k < this->kN; ++k) EXPECT_EQ(set.contains(sequence[k]), k < set.size());
  std::ranges::sort(sequence);
  for (std::uint32_t k = 0; k < this->kN; ++k) EXPECT_EQ(sequence[k], k);
  EXPECT_EQ(set.at(this->kN, this->kN), this->kN);
  EXPECT_EQ(set.at(this->kN + 1, this->kN), this->kN);
}

TYPED_TEST(SubsetOfAnyType, AtOverAFullSetGivesNBeyondIt) {
  TypeParam set(this->kN);
  for (OperandPos p = 0; p < this->kN; ++p) set.add(p, this->kN);
  EXPECT_EQ(set.size(), this->kN);
  EXPECT_EQ(set.at(this->kN - 1, this->kN), this->kN - 1);
  EXPECT_EQ(set.at(this->kN, this->kN), this->kN);
}

TYPED_TEST(SubsetOfAnyType, AgreesWithAReferenceOverRandomOperations) {
  TypeParam set(this->kN);
  std::set<OperandPos> reference;
  RandomState state = 7;
  for (int i = 0; i < 20000; ++i) {
    const OperandPos p = rand(state, this->kN);
    switch (rand(state, 6)) {
      case 0:
      case 1:
        set.add(p, this->kN);
        reference.insert(p);
        break;
      case 2:
      case 3:
        set.remove(p, this->kN);
        reference.erase(p);
        break;
      case 4: {
        const bool member = coin(state);
        set.set(p, this->kN, member);
        member ? (void)reference.insert(p) : (void)reference.erase(p);
        break;
      }
      default:
        if (rand(state, 100) == 0) {
          set.clear();
          reference.clear();
        }
    }
    ASSERT_EQ(set.size(), reference.size());
    ASSERT_EQ(set.contains(p), reference.contains(p));
  }
  auto members = membersOf(set);
  EXPECT_TRUE(kHasOwnOrder<TypeParam> || std::ranges::is_sorted(members));
  std::vector<OperandPos> sequence = sequenceOf(set, this->kN);
  sequence.resize(members.size());
  EXPECT_EQ(sequence, members);
  std::ranges::sort(members);
  EXPECT_TRUE(std::ranges::equal(members, reference));
  EXPECT_TRUE(set.agrees(this->kN, [&](OperandPos p) { return reference.contains(p); }));
}

TYPED_TEST(SubsetOfAnyType, SetIsAddOrRemove) {
  TypeParam set(this->kN);
  for (const bool member : {true, true, false, false}) {
    set.set(6, this->kN, member);
    EXPECT_EQ(set.contains(6), member);
    EXPECT_EQ(set.size(), member ? 1U : 0U);
  }
}

TYPED_TEST(SubsetOfAnyType, ClearLeavesNoMember) {
  TypeParam set(this->kN);
  for (OperandPos p = 0; p < this->kN; p += 2) set.add(p, this->kN);
  set.clear();
  EXPECT_EQ(set.size(), 0U);
  for (OperandPos p = 0; p < this->kN; ++p) EXPECT_FALSE(set.contains(p));
}

TYPED_TEST(SubsetOfAnyType, CertainChoicesDrawNothing) {
  TypeParam set(this->kN);
  RandomState state = 42;
  EXPECT_EQ(set.randomMember(state, this->kN), kNone);
  set.add(5, this->kN);
  EXPECT_EQ(set.randomMember(state, this->kN), 5U);
  for (OperandPos p = 0; p < this->kN; ++p) set.set(p, this->kN, p != 2);
  EXPECT_EQ(set.randomNonMember(state, this->kN), 2U);
  set.add(2, this->kN);
  EXPECT_EQ(set.randomNonMember(state, this->kN), kNone);
  EXPECT_EQ(state, 42U);
}

TYPED_TEST(SubsetOfAnyType, RandomChoicesAreAtOfOneDraw) {
  TypeParam set(this->kN);
  for (const OperandPos p : {6U, 1U, 3U}) set.add(p, this->kN);
  RandomState state = 1;
  RandomState expected = 1;
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(set.randomMember(state, this->kN), set.at(rand(expected, 3), this->kN));
    EXPECT_EQ(set.randomNonMember(state, this->kN), set.at(3 + rand(expected, this->kN - 3), this->kN));
    EXPECT_EQ(state, expected);
  }
}

TYPED_TEST(SubsetOfAnyType, RandomNonMemberCountsPositionsAndNotBits) {
  constexpr std::uint32_t few = 6;
  TypeParam set(few);
  for (OperandPos p = 0; p < few; ++p) set.set(p, few, p < 4);
  RandomState state = 3;
  std::set<OperandPos> seen;
  for (int i = 0; i < 100; ++i) seen.insert(set.randomNonMember(state, few));
  EXPECT_EQ(seen, (std::set<OperandPos>{4, 5}));
  EXPECT_EQ(set.at(few, few), few);
  EXPECT_EQ(set.at(few + 1, few), few);
}

TYPED_TEST(SubsetOfAnyType, HoldsNoPositionAtAll) {
  TypeParam set(0);
  RandomState state = 9;
  EXPECT_EQ(set.size(), 0U);
  EXPECT_EQ(set.at(0, 0), 0U);
  EXPECT_EQ(set.randomMember(state, 0), kNone);
  EXPECT_EQ(set.randomNonMember(state, 0), kNone);
  set.clear();
  EXPECT_TRUE(membersOf(set).empty());
  EXPECT_EQ(state, 9U);
}

TYPED_TEST(SubsetOfAnyType, AddIfAndRemoveIfLookAtEachCandidateOnce) {
  TypeParam set(this->kN);
  for (OperandPos p = 0; p < this->kN; p += 3) set.add(p, this->kN);
  std::vector<OperandPos> looked;
  set.addIf(this->kN, [&](OperandPos p) { return looked.push_back(p), p % 3 == 1; });
  EXPECT_TRUE(set.agrees(this->kN, [](OperandPos p) { return p % 3 != 2; }));
  std::ranges::sort(looked);
  EXPECT_TRUE(std::ranges::all_of(looked, [](OperandPos p) { return p % 3 != 0; }));
  EXPECT_TRUE(std::ranges::adjacent_find(looked) == looked.end());

  looked.clear();
  set.removeIf(this->kN, [&](OperandPos p) { return looked.push_back(p), p % 3 == 0; });
  EXPECT_TRUE(set.agrees(this->kN, [](OperandPos p) { return p % 3 == 1; }));
  std::ranges::sort(looked);
  EXPECT_TRUE(std::ranges::all_of(looked, [](OperandPos p) { return p % 3 != 2; }));
  EXPECT_TRUE(std::ranges::adjacent_find(looked) == looked.end());
}

TYPED_TEST(SubsetOfAnyType, PrintsTheLabelAndTheMembers) {
  TypeParam set(this->kN);
  set.add(2, this->kN);
  set.add(7, this->kN);
  std::ostringstream out;
  set.print(out, "oneNodes=");
  EXPECT_EQ(out.str(), "oneNodes= 2 7\n");
  set.clear();
  out.str("");
  set.print(out, "oneNodes=");
  EXPECT_EQ(out.str(), "oneNodes=\n");
}

TEST(Subset, SwapsAcrossTheCut) {
  Subset<unsigned short> set(6);
  set.add(4, 6);  // 4 1 2 3 0 5
  set.add(2, 6);  // 4 2 1 3 0 5
  set.add(5, 6);  // 4 2 5 3 0 1
  EXPECT_EQ(sequenceOf(set, 6), (std::vector<OperandPos>{4, 2, 5, 3, 0, 1}));
  set.remove(4, 6);
  EXPECT_EQ(sequenceOf(set, 6), (std::vector<OperandPos>{5, 2, 4, 3, 0, 1}));
  EXPECT_EQ(membersOf(set), (std::vector<OperandPos>{5, 2}));
}

TEST(Subset, KeepsItsPermutationWhenCleared) {
  Subset<unsigned int> set(5);
  set.add(3, 5);
  set.add(4, 5);
  set.clear();
  EXPECT_EQ(sequenceOf(set, 5), (std::vector<OperandPos>{3, 4, 2, 0, 1}));
  set.add(0, 5);  // swaps places 3 and 0
  EXPECT_EQ(sequenceOf(set, 5), (std::vector<OperandPos>{0, 4, 2, 3, 1}));
}

TEST(Subset, AddIfGoesDownAndLooksAgainAtAPlaceThatWasSwapped) {
  Subset<unsigned short> set(5);
  std::vector<OperandPos> looked;
  set.addIf(5, [&](OperandPos p) { return looked.push_back(p), p == 4 || p == 1; });
  // 4 is added and brings 0 into the last place; then 3, 2 and 1 follow.
  EXPECT_EQ(looked, (std::vector<OperandPos>{4, 0, 3, 2, 1}));
  EXPECT_EQ(sequenceOf(set, 5), (std::vector<OperandPos>{4, 1, 2, 3, 0}));
}

TEST(Subset, RemoveIfGoesUpAndLooksAgainAtAPlaceThatWasSwapped) {
  Subset<unsigned short> set(4);
  for (OperandPos p = 0; p < 4; ++p) set.add(p, 4);
  std::vector<OperandPos> looked;
  set.removeIf(4, [&](OperandPos p) { return looked.push_back(p), p == 0 || p == 3; });
  // 0 goes and brings 3 to the front, which goes too and brings 2.
  EXPECT_EQ(looked, (std::vector<OperandPos>{0, 3, 2, 1}));
  EXPECT_EQ(sequenceOf(set, 4), (std::vector<OperandPos>{2, 1, 3, 0}));
}

TEST(Subset, AssignAddsAndRemovesInAscendingOrderWithoutEmptying) {
  Subset<unsigned short> set(4);
  set.add(3, 4);  // 3 1 2 0
  set.add(0, 4);  // 3 0 2 1
  set.assign(4, [](OperandPos p) { return p != 3; });
  // 0 stays; 1 swaps with 2; 2 is added in place; 3 leaves for the last member.
  EXPECT_EQ(sequenceOf(set, 4), (std::vector<OperandPos>{2, 0, 1, 3}));
}

TEST(Subset, HoldsTheHighestCountOfItsWidth) {
  constexpr std::uint32_t n = kMaxOperandsOfSubset16;
  Subset<unsigned short> set(n);
  for (OperandPos p = 0; p < n; ++p) set.add(p, n);
  EXPECT_EQ(set.size(), n);
  EXPECT_EQ(set.at(n - 1, n), n - 1);
  EXPECT_EQ(set.at(n, n), n);
  set.remove(n - 1, n);
  EXPECT_FALSE(set.contains(n - 1));
}

TEST(SubsetMASK, SelectsAmongTheClearBitsBelowNOnly) {
  SubsetMASK<unsigned char> set;
  for (const OperandPos p : {0U, 2U, 3U}) set.add(p, 5);
  EXPECT_EQ(set.at(3, 5), 1U);
  EXPECT_EQ(set.at(4, 5), 4U);
  EXPECT_EQ(set.at(5, 5), 5U);  // bit 5 is clear, but lies beyond the positions
}

TEST(SubsetBits, SelectsAcrossWords) {
  constexpr std::uint32_t n = 300;
  SubsetBits set(n);
  for (const OperandPos p : {0U, 63U, 64U, 127U, 130U, 256U, 299U}) set.add(p, n);
  EXPECT_EQ(membersOf(set), (std::vector<OperandPos>{0, 63, 64, 127, 130, 256, 299}));
  EXPECT_EQ(set.at(4, n), 130U);
  EXPECT_EQ(set.at(6, n), 299U);
  EXPECT_EQ(set.at(7, n), 1U);
  EXPECT_EQ(set.at(7 + 62, n), 65U);
  EXPECT_EQ(set.at(n - 1, n), 298U);
}

TEST(SubsetChoice, BordersLieWhereTheContainersEnd) {
  const auto nameFor = [](std::uint32_t n) {
    return std::string(withSubsetFor(n, []<class Set>(std::type_identity<Set>) { return subsetName<Set>(); }));
  };
  EXPECT_EQ(nameFor(0), "quvex::SubsetMASK<unsigned char>");
  EXPECT_EQ(nameFor(8), "quvex::SubsetMASK<unsigned char>");
  EXPECT_EQ(nameFor(9), "quvex::SubsetMASK<unsigned short>");
  EXPECT_EQ(nameFor(16), "quvex::SubsetMASK<unsigned short>");
  EXPECT_EQ(nameFor(17), "quvex::SubsetMASK<unsigned int>");
  EXPECT_EQ(nameFor(32), "quvex::SubsetMASK<unsigned int>");
  EXPECT_EQ(nameFor(33), "quvex::SubsetMASK<unsigned long long>");
  EXPECT_EQ(nameFor(64), "quvex::SubsetMASK<unsigned long long>");
  EXPECT_EQ(nameFor(65), "quvex::SubsetBits");
  EXPECT_EQ(nameFor(1024), "quvex::SubsetBits");
  EXPECT_EQ(nameFor(1025), "quvex::Subset<unsigned short>");
  EXPECT_EQ(nameFor(65534), "quvex::Subset<unsigned short>");
  EXPECT_EQ(nameFor(65535), "quvex::Subset<unsigned int>");
  EXPECT_EQ(nameFor(1000000), "quvex::Subset<unsigned int>");
}

TEST(SubsetChoice, NamesClassesOverTheirContainer) {
  EXPECT_EQ(nameOver<SubsetBits>("quvex::NodeSumTemplate"), "quvex::NodeSumTemplate<quvex::SubsetBits>");
}

TEST(SubsetChoice, ContainersStaySmallEnoughForNodes) {
  EXPECT_EQ(sizeof(SubsetMASK<unsigned char>), 1U);
  EXPECT_EQ(sizeof(SubsetMASK<unsigned long long>), 8U);
  EXPECT_LE(sizeof(SubsetBits), 16U);
  EXPECT_LE(sizeof(Subset<unsigned int>), 24U);
}

}  // namespace
}  // namespace quvex
