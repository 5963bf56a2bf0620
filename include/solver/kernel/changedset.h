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

/// The questions that an aggregate asks beside a mask, which answers them from its word.
template <class Derived, class Set>
class ListedChanges {
 public:
  [[nodiscard]] bool hasOddSize() const { return (self().size() & 1U) != 0; }
  /// Whether exactly the members of a persistent set have changed.
  [[nodiscard]] bool isSameAs(const Set& other) const {
    if (self().size() != other.size()) return false;
    bool same = true;
    self().forEach([&](OperandPos p) { same = same && other.contains(p); });
    return same;
  }

 private:
  [[nodiscard]] const Derived& self() const { return static_cast<const Derived&>(*this); }
};

/// Bits, of which a move scans and clears only the words between the lowest and the highest that it has touched.
/// Invariant: all set bits lie in words [firstWord, lastWord].
template <>
class ChangedSet<SubsetBits> : public ListedChanges<ChangedSet<SubsetBits>, SubsetBits> {
 public:
  explicit ChangedSet(std::uint32_t n)
      : nbWords((n + 63) / 64), firstWord(nbWords), words(std::make_unique<std::uint64_t[]>(nbWords)) {}

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t) {
    const std::uint32_t i = p / 64;
    words[i] |= std::uint64_t{1} << (p % 64);
    ++count;
    firstWord = std::min(firstWord, i);
    lastWord = std::max(lastWord, i);
  }
  void clear() {
    // Mostly a single word, for which a call of the library's fill costs more than the loop.
    for (std::uint32_t i = firstWord; i <= lastWord && i < nbWords; ++i) {
      words[i] = 0;  // NOLINT(clang-analyzer-cplusplus.NewDelete): without words there is no turn
    }
    count = 0;
    firstWord = nbWords;
    lastWord = 0;
  }
  template <class Visit>
  void forEach(Visit visit) const {
    for (std::uint32_t i = firstWord; i <= lastWord && i < nbWords; ++i) bits::forEach(words[i], i * 64, visit);
  }

 private:
  std::uint32_t nbWords;
  std::uint32_t count = 0;
  std::uint32_t firstWord;
  std::uint32_t lastWord = 0;
  std::unique_ptr<std::uint64_t[]> words;
};

/// A list in order of arrival. Its head stays in the nearest caches, where a permutation with its inverse would miss
/// three times per change.
template <class T>
class ChangedSet<Subset<T>> : public ListedChanges<ChangedSet<Subset<T>>, Subset<T>> {
 public:
  explicit ChangedSet(std::uint32_t n) : items(std::make_unique_for_overwrite<T[]>(n)) {}

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  void add(OperandPos p, std::uint32_t) { items[count++] = static_cast<T>(p); }
  void clear() { count = 0; }
  template <class Visit>
  void forEach(Visit visit) const {
    const T* const members = items.get();
    for (std::uint32_t k = 0, end = count; k < end; ++k) visit(OperandPos{members[k]});
  }

 private:
  std::unique_ptr<T[]> items;
  std::uint32_t count = 0;
};

/// The same for an aggregate that asks which operands have changed: the list has a bit per operand beside it.
/// Invariant: bit p is set exactly when p is among the members.
template <class Set>
class SearchableChangedSet : public ChangedSet<Set> {
 public:
  using ChangedSet<Set>::ChangedSet;
};

template <class T>
class SearchableChangedSet<Subset<T>> : public ChangedSet<Subset<T>> {
  using Base = ChangedSet<Subset<T>>;

 public:
  explicit SearchableChangedSet(std::uint32_t n) : Base(n), words(std::make_unique<std::uint64_t[]>((n + 63) / 64)) {}

  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t n) {
    words[p / 64] |= std::uint64_t{1} << (p % 64);
    Base::add(p, n);
  }
  void clear() {
    this->forEach([&](OperandPos p) { words[p / 64] = 0; });
    Base::clear();
  }

 private:
  std::unique_ptr<std::uint64_t[]> words;
};

}  // namespace quvex
