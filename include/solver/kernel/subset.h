#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

#include "solver/kernel/subsetbase.h"

namespace quvex {

/// A set of operand positions as a permutation with a cut, for operators with very many operands of which few change
/// per move: emptying is one store, and a walk visits the members alone.
///
/// Invariant: `places` is the inverse of the permutation, and the members are exactly its first `count` entries.
/// Members are walked in permutation order, that is, in order of insertion disturbed by removals. Emptying keeps the
/// permutation as it is.
template <class T>
class Subset : public SubsetBase<Subset<T>> {
  static_assert(std::is_same_v<T, unsigned short> || std::is_same_v<T, unsigned int>);

 public:
  static constexpr const char* kName =
      std::is_same_v<T, unsigned short> ? "quvex::Subset<unsigned short>" : "quvex::Subset<unsigned int>";

  /// `n` must be representable in `T`.
  explicit Subset(std::uint32_t n) {
    if (n == 0) return;
    items = std::make_unique_for_overwrite<T[]>(std::size_t{2} * n);
    places = items.get() + n;
    for (std::uint32_t p = 0; p < n; ++p) items[p] = places[p] = static_cast<T>(p);
  }

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool contains(OperandPos p) const { return places[p] < count; }
  void add(OperandPos p, std::uint32_t) {
    if (places[p] >= count) exchange(places[p], count++);
  }
  void remove(OperandPos p, std::uint32_t) {
    if (places[p] < count) exchange(places[p], --count);
  }
  void clear() { count = 0; }

  [[nodiscard]] OperandPos at(std::uint32_t k, std::uint32_t n) const { return k < n ? items[k] : n; }

  template <class Visit>
  void forEach(Visit visit) const {
    const T* const members = items.get();
    for (std::uint32_t k = 0, end = count; k < end; ++k) visit(OperandPos{members[k]});
  }

  /// Adds the non-members that `qualifies` accepts, looked through from the last one down. An addition swaps the first
  /// non-member into the place just looked at, so that place is looked at again.
  template <class Qualifies>
  void addIf(std::uint32_t n, Qualifies qualifies) {
    for (std::uint32_t end = n; end > count;) {
      const OperandPos p = items[end - 1];
      if (qualifies(p)) {
        add(p, n);
      } else {
        --end;
      }
    }
  }

  /// Removes the members that `qualifies` accepts, looked through from the first one up. A removal swaps the last
  /// member into the place just looked at, so that place is looked at again.
  template <class Qualifies>
  void removeIf(std::uint32_t n, Qualifies qualifies) {
    for (std::uint32_t k = 0; k < count;) {
      const OperandPos p = items[k];
      if (qualifies(p)) {
        remove(p, n);
      } else {
        ++k;
      }
    }
  }

 private:
  std::unique_ptr<T[]> items;  ///< the permutation, and behind it the inverse
  T* places = nullptr;         ///< the second half of `items`
  T count = 0;

  void exchange(T i, T j) {
    const T atI = items[i];
    const T atJ = items[j];
    items[i] = atJ;
    items[j] = atI;
    places[atJ] = i;
    places[atI] = j;
  }
};

}  // namespace quvex
