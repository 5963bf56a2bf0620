#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "solver/kernel/subset.h"
#include "solver/kernel/subsetbits.h"
#include "solver/kernel/subsetmask.h"

namespace quvex {

/// The operands changed in one move, beside an aggregate's persistent sets of type `Set`. It only grows during a move
/// and is then emptied, so it needs neither removals nor random members; in return, what it touches per move does not
/// depend on the operand count. It walks its members in the same order as a `Set` would: ascending in masks and bits,
/// in order of arrival in permutations. Sums of doubles depend on that order to the last bit.
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
    const std::uint64_t bit = std::uint64_t{1} << (p % 64);
    if ((words[i] & bit) != 0) return;
    words[i] |= bit;
    ++count;
    firstWord = std::min(firstWord, i);
    lastWord = std::max(lastWord, i);
  }
  void clear() {
    // Mostly a single word, for which a call of the library's fill costs more than the loop.
    for (std::uint32_t i = firstWord; i <= lastWord && i < nbWords; ++i) words[i] = 0;
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

/// A list in order of arrival, and a bit per operand that says what is on it. The list's head and the bits of a few
/// operands stay in the nearest caches where a permutation with its inverse would miss three times per change.
/// Invariant: bit p is set exactly when p is among the first `count` entries of the list.
template <class T>
class ChangedSet<Subset<T>> : public ListedChanges<ChangedSet<Subset<T>>, Subset<T>> {
 public:
  explicit ChangedSet(std::uint32_t n)
      : items(std::make_unique_for_overwrite<T[]>(n)), words(std::make_unique<std::uint64_t[]>((n + 63) / 64)) {}

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t) {
    std::uint64_t& word = words[p / 64];
    const std::uint64_t bit = std::uint64_t{1} << (p % 64);
    if ((word & bit) != 0) return;
    word |= bit;
    items[count++] = static_cast<T>(p);
  }
  void clear() {
    for (std::uint32_t k = 0; k < count; ++k) words[items[k] / 64] = 0;
    count = 0;
  }
  template <class Visit>
  void forEach(Visit visit) const {
    const T* const members = items.get();
    for (std::uint32_t k = 0, end = count; k < end; ++k) visit(OperandPos{members[k]});
  }

 private:
  std::unique_ptr<T[]> items;
  std::unique_ptr<std::uint64_t[]> words;
  std::uint32_t count = 0;
};

}  // namespace quvex
