#pragma once

#include <bit>
#include <cstdint>
#include <ostream>

#include "solver/kernel/random.h"
#include "solver/kernel/types.h"

namespace quvex {

/// What all sets of operand positions share; `Set` is the container that derives from it.
///
/// A container holds positions in [0, n), where n is the operator's operand count. It does not store n: calls that
/// need it are told. It offers `size`, `contains`, `add`, `remove`, `clear`, `at`, `forEach`, `addIf` and `removeIf`,
/// none of which allocates. `at(k, n)` is entry k of the sequence of all members followed by all non-members, n beyond
/// it. A walk must not change the set that it walks.
template <class Set>
class SubsetBase {
 public:
  [[nodiscard]] bool empty() const { return self().size() == 0; }

  /// A uniform member, kNone if there is none. Draws only if there are several.
  OperandPos randomMember(RandomState& state, std::uint32_t n) const {
    const std::uint32_t nbMembers = self().size();
    if (nbMembers == 0) return kNone;
    return self().at(rand(state, nbMembers), n);
  }

  /// A uniform position of [0, n) outside the set, kNone if there is none. Draws only if there are several.
  OperandPos randomNonMember(RandomState& state, std::uint32_t n) const {
    const std::uint32_t nbMembers = self().size();
    if (nbMembers == n) return kNone;
    return self().at(nbMembers + rand(state, n - nbMembers), n);
  }

  void set(OperandPos p, std::uint32_t n, bool member) {
    if (member) {
      self().add(p, n);
    } else {
      self().remove(p, n);
    }
  }

  /// Makes the set hold exactly the positions that `belongs` accepts. Each is added or removed in ascending order,
  /// without emptying first: the order of a permutation, and with it later random picks, depends on this.
  template <class Belongs>
  void assign(std::uint32_t n, Belongs belongs) {
    for (OperandPos p = 0; p < n; ++p) self().set(p, n, belongs(p));
  }

  /// Whether the set holds exactly the positions that `belongs` accepts.
  template <class Belongs>
  [[nodiscard]] bool agrees(std::uint32_t n, Belongs belongs) const {
    for (OperandPos p = 0; p < n; ++p) {
      if (self().contains(p) != belongs(p)) return false;
    }
    return true;
  }

  /// Debug dump: the label, the members in the order of a walk, each behind a blank, and an end of line.
  void print(std::ostream& out, const char* label) const {
    out << label;
    self().forEach([&](OperandPos p) { out << ' ' << p; });
    out << '\n';
  }

 private:
  [[nodiscard]] Set& self() { return static_cast<Set&>(*this); }
  [[nodiscard]] const Set& self() const { return static_cast<const Set&>(*this); }
};

/// Operations on one word of a bit set.
namespace bits {

/// The number of set bits, by adding neighbours in pairs, fours and bytes (H. S. Warren, Hacker's Delight, chapter 5).
/// Without a processor option `std::popcount` is a library call, and this is the inner loop of the search.
[[nodiscard]] constexpr std::uint32_t count(std::uint64_t w) {
  w -= (w >> 1U) & 0x5555555555555555U;
  w = (w & 0x3333333333333333U) + ((w >> 2U) & 0x3333333333333333U);
  w = (w + (w >> 4U)) & 0x0F0F0F0F0F0F0F0FU;
  return static_cast<std::uint32_t>((w * 0x0101010101010101U) >> 56U);
}

/// Whether an odd number of bits is set.
template <class T>
[[nodiscard]] constexpr bool isOdd(T word) {
  return __builtin_parityll(word) != 0;
}

/// The place of the k-th set bit (from 0), 64 if there are fewer.
[[nodiscard]] constexpr std::uint32_t select(std::uint64_t w, std::uint32_t k) {
  for (; k > 0; --k) w &= w - 1;
  return static_cast<std::uint32_t>(std::countr_zero(w));
}

/// Calls `visit` with `first` plus the place of each set bit, ascending.
template <class Visit>
void forEach(std::uint64_t w, OperandPos first, Visit&& visit) {
  for (; w != 0; w &= w - 1) visit(first + static_cast<OperandPos>(std::countr_zero(w)));
}

}  // namespace bits

}  // namespace quvex
