#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "solver/kernel/subset.h"
#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

namespace quvex {

/// The operands changed in one move, beside an aggregate's persistent sets of type `Set`. Each operand is told once, so
/// the set only grows during a move and is then emptied: it needs neither removals nor random members, and what it
/// touches per move does not depend on the operand count. It walks its members in the same order as a `Set` would:
/// ascending in masks and bits, in order of arrival in permutations. Sums of doubles depend on that order to the last
/// bit.
template <class Set>
class ChangedSet : public Set {
 public:
  using Set::Set;
};

/// A list of them, with the questions that a mask answers from its word. Its head stays in the nearest caches, where a
/// set of `n` operands would miss several times per change.
template <class Set, class Position>
class ChangedList {
 public:
  explicit ChangedList(std::uint32_t n) : items(std::make_unique_for_overwrite<Position[]>(n)) {}

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  [[nodiscard]] bool hasOddSize() const { return (count & 1U) != 0; }
  /// Whether exactly the members of a persistent set have changed.
  [[nodiscard]] bool isSameAs(const Set& other) const {
    return count == other.size() &&
           std::all_of(items.get(), items.get() + count, [&](Position p) { return other.contains(p); });
  }
  void add(OperandPos p, std::uint32_t) { items[count++] = static_cast<Position>(p); }
  void clear() { count = 0; }
  template <class Visit>
  void forEach(Visit visit) const {
    const Position* const members = items.get();
    for (std::uint32_t k = 0, end = count; k < end; ++k) visit(OperandPos{members[k]});
  }

 protected:
  std::unique_ptr<Position[]> items;
  std::uint32_t count = 0;
};

/// A permutation is walked in order of arrival, as the list is.
template <class T>
class ChangedSet<Subset<T>> : public ChangedList<Subset<T>, T> {
 public:
  using ChangedList<Subset<T>, T>::ChangedList;
};

/// Bits are walked ascending: the list is sorted where a move has changed more than one operand.
template <>
class ChangedSet<SubsetBits> : public ChangedList<SubsetBits, std::uint16_t> {
 public:
  using ChangedList::ChangedList;

  template <class Visit>
  void forEach(Visit visit) const {
    if (count > 1) std::sort(items.get(), items.get() + count);
    ChangedList::forEach(visit);
  }
};

/// The same for an aggregate that asks which operands have changed: a list has a bit per operand beside it.
/// Invariant: bit p is set exactly when p is among the members.
template <class Set>
class SearchableChangedSet : public ChangedSet<Set> {
 public:
  explicit SearchableChangedSet(std::uint32_t n)
      : ChangedSet<Set>(n), words(std::make_unique<std::uint64_t[]>((n + 63) / 64)) {}

  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t n) {
    words[p / 64] |= std::uint64_t{1} << (p % 64);
    ChangedSet<Set>::add(p, n);
  }
  void clear() {
    this->forEach([&](OperandPos p) { words[p / 64] = 0; });
    ChangedSet<Set>::clear();
  }

 private:
  std::unique_ptr<std::uint64_t[]> words;
};

/// A mask is searchable as it is.
template <class T>
class SearchableChangedSet<SubsetMASK<T>> : public ChangedSet<SubsetMASK<T>> {
 public:
  using ChangedSet<SubsetMASK<T>>::ChangedSet;
};

}  // namespace quvex
