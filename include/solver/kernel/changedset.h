#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "solver/kernel/noderecord.h"
#include "solver/kernel/subset.h"
#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

namespace quvex {

/// What an aggregate keeps of its changes beside its record: nothing, for most.
struct NoChangeFlags {
  explicit NoChangeFlags(std::uint32_t) {}
  void add(OperandPos) {}
  void clear(const ChangeLog&) {}
};

/// A bit per operand, for those who ask whether a certain one has changed: a list can't tell.
/// Invariant: bit p is set exactly when p is in the list.
class ChangeFlags {
 public:
  explicit ChangeFlags(std::uint32_t n) : words(std::make_unique<std::uint64_t[]>((n + 63) / 64)) {}

  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p) { words[p / 64] |= std::uint64_t{1} << (p % 64); }
  void clear(const ChangeLog& log) {
    std::for_each(log.items, log.items + log.word, [&](OperandPos p) { words[p / 64] = 0; });
  }

 private:
  std::unique_ptr<std::uint64_t[]> words;
};

/// The operands changed in one move, as an aggregate with persistent sets of type `Set` sees them. Each operand is
/// told once, so the set only grows during a move and is then emptied: it needs neither removals nor random members,
/// and what it touches per move does not depend on the operand count. It walks its members in the same order as a `Set`
/// would: ascending in masks and bits, in order of arrival in permutations. Sums of doubles depend on that order to the
/// last bit.
///
/// It is a list, whose head stays in the nearest caches, where a set of all operands would miss several times per
/// change. A permutation is walked in order of arrival, as the list is. Bits are walked ascending where the order
/// counts: the list is sorted if a move has changed more than one operand. Between walks its order means nothing.
template <class Set>
class ChangedSet {
 public:
  static constexpr ChangeKind kKind = ChangeKind::List;
  using Flags = NoChangeFlags;

  explicit ChangedSet(const ChangeLog& changes) : log(changes) {}
  ChangedSet(const ChangeLog& changes, const NoChangeFlags&) : log(changes) {}

  static void note(NodeRecord& record, OperandPos* allLists, OperandPos p) {
    record.noteInList(record.changes, allLists, p);
  }

  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(log.word); }
  [[nodiscard]] bool empty() const { return log.word == 0; }
  [[nodiscard]] bool hasOddSize() const { return (log.word & 1U) != 0; }
  /// Whether exactly the members of a persistent set have changed.
  [[nodiscard]] bool isSameAs(const Set& other) const {
    return size() == other.size() && std::all_of(begin(), end(), [&](OperandPos p) { return other.contains(p); });
  }
  template <class Visit>
  void forEach(Visit visit) const {
    if constexpr (std::is_same_v<Set, SubsetBits>) {
      if (log.word > 1) std::sort(begin(), end());
    }
    forEachInAnyOrder(visit);
  }
  /// For those to whom the order means nothing: nothing is sorted for them.
  template <class Visit>
  void forEachInAnyOrder(Visit visit) const {
    std::for_each(begin(), end(), visit);
  }

 private:
  ChangeLog log;

  [[nodiscard]] OperandPos* begin() const { return log.items; }
  [[nodiscard]] OperandPos* end() const { return log.items + log.word; }
};

/// The same questions to a mask, for the smaller sets.
template <class T>
class ChangedSet<SubsetMASK<T>> {
 public:
  static constexpr ChangeKind kKind = ChangeKind::Bit;
  using Flags = NoChangeFlags;

  explicit ChangedSet(const ChangeLog& log) : word(log.word) {}
  ChangedSet(const ChangeLog& log, const NoChangeFlags&) : word(log.word) {}

  static void note(NodeRecord& record, OperandPos*, OperandPos p) { record.noteBit(record.changes, p); }

  [[nodiscard]] std::uint32_t size() const { return bits::count(word); }
  [[nodiscard]] bool empty() const { return word == 0; }
  [[nodiscard]] bool hasOddSize() const { return bits::isOdd(static_cast<T>(word)); }
  [[nodiscard]] bool contains(OperandPos p) const { return ((word >> p) & 1U) != 0; }
  [[nodiscard]] bool isSameAs(const SubsetMASK<T>& other) const { return word == other.asWord(); }
  template <class Visit>
  void forEach(Visit visit) const {
    bits::forEach(word, 0, visit);
  }
  template <class Visit>
  void forEachInAnyOrder(Visit visit) const {
    forEach(visit);
  }

 private:
  std::uint64_t word;
};

/// The same for an aggregate that asks which operands have changed. A mask knows, a list needs flags.
template <class Set>
class SearchableChangedSet : public ChangedSet<Set> {
 public:
  static constexpr ChangeKind kKind = ChangeKind::Called;
  using Flags = ChangeFlags;

  SearchableChangedSet(const ChangeLog& log, const ChangeFlags& changeFlags)
      : ChangedSet<Set>(log), flags(changeFlags) {}

  [[nodiscard]] bool contains(OperandPos p) const { return flags.contains(p); }

 private:
  const ChangeFlags& flags;
};

template <class T>
class SearchableChangedSet<SubsetMASK<T>> : public ChangedSet<SubsetMASK<T>> {
 public:
  using ChangedSet<SubsetMASK<T>>::ChangedSet;
};

}  // namespace quvex
