#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "solver/kernel/changelog.h"
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
class ChangedSet;

template <class T>
class ChangedSet<SubsetMASK<T>> : public ChangeLog {
 public:
  static constexpr ChangeKind kKind = ChangeKind::Bit;

  explicit ChangedSet(std::uint32_t) {}

  [[nodiscard]] std::uint32_t size() const { return bits::count(word); }
  [[nodiscard]] bool empty() const { return word == 0; }
  [[nodiscard]] bool hasOddSize() const { return bits::isOdd(static_cast<T>(word)); }
  [[nodiscard]] bool contains(OperandPos p) const { return ((word >> p) & 1U) != 0; }
  /// Whether exactly the members of a persistent set have changed.
  [[nodiscard]] bool isSameAs(const SubsetMASK<T>& other) const { return word == other.asWord(); }
  void add(OperandPos p) { word |= std::uint64_t{1} << p; }
  void clear() { word = 0; }
  template <class Visit>
  void forEach(Visit visit) const {
    bits::forEach(word, 0, visit);
  }
};

/// The same questions to a list. Its head stays in the nearest caches, where a set of all operands would miss several
/// times per change.
template <class Set, class Position, ChangeKind Kind>
class ListedChanges : public ChangeList<Position> {
 public:
  static constexpr ChangeKind kKind = Kind;

  using ChangeList<Position>::ChangeList;

  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(this->word); }
  [[nodiscard]] bool empty() const { return this->word == 0; }
  [[nodiscard]] bool hasOddSize() const { return (this->word & 1U) != 0; }
  [[nodiscard]] bool isSameAs(const Set& other) const {
    return size() == other.size() && std::all_of(begin(), end(), [&](Position p) { return other.contains(p); });
  }
  void add(OperandPos p) { this->push(p); }
  void clear() { this->word = 0; }
  template <class Visit>
  void forEach(Visit visit) const {
    for (const Position *p = begin(), *last = end(); p != last; ++p) visit(OperandPos{*p});
  }

 protected:
  [[nodiscard]] Position* begin() const { return this->items.get(); }
  [[nodiscard]] Position* end() const { return begin() + this->word; }
};

/// A permutation is walked in order of arrival, as the list is.
template <>
class ChangedSet<Subset<unsigned short>>
    : public ListedChanges<Subset<unsigned short>, std::uint16_t, ChangeKind::Short> {
 public:
  using ListedChanges::ListedChanges;
};
template <>
class ChangedSet<Subset<unsigned int>> : public ListedChanges<Subset<unsigned int>, std::uint32_t, ChangeKind::Long> {
 public:
  using ListedChanges::ListedChanges;
};

/// Bits are walked ascending: the list is sorted where a move has changed more than one operand. Between walks the
/// order of its entries means nothing.
template <>
class ChangedSet<SubsetBits> : public ListedChanges<SubsetBits, std::uint16_t, ChangeKind::Short> {
 public:
  using ListedChanges::ListedChanges;

  template <class Visit>
  void forEach(Visit visit) const {
    if (word > 1) std::sort(begin(), end());
    ListedChanges::forEach(visit);
  }
};

/// The same for an aggregate that asks which operands have changed: a list has a bit per operand beside it.
/// Invariant: bit p is set exactly when p is among the members.
template <class Set>
class SearchableChangedSet : public ChangedSet<Set> {
 public:
  static constexpr ChangeKind kKind = ChangeKind::Called;

  explicit SearchableChangedSet(std::uint32_t n)
      : ChangedSet<Set>(n), words(std::make_unique<std::uint64_t[]>((n + 63) / 64)) {}

  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p) {
    words[p / 64] |= std::uint64_t{1} << (p % 64);
    ChangedSet<Set>::add(p);
  }
  void clear() {
    std::for_each(this->begin(), this->end(), [&](OperandPos p) { words[p / 64] = 0; });
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
