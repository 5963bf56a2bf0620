#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "solver/kernel/subsetbase.h"

namespace quvex {

/// A set of operand positions as one word, for operators with at most as many operands as `T` has bits.
///
/// Invariant: bit p is set exactly when position p is a member; bits at and beyond the operand count stay clear.
/// Members are walked in ascending order.
template <class T>
class SubsetMASK : public SubsetBase<SubsetMASK<T>> {
  static_assert(std::is_unsigned_v<T>);

  static constexpr const char* spelledName() {
    if constexpr (std::is_same_v<T, unsigned char>) return "quvex::SubsetMASK<unsigned char>";
    if constexpr (std::is_same_v<T, unsigned short>) return "quvex::SubsetMASK<unsigned short>";
    if constexpr (std::is_same_v<T, unsigned int>) return "quvex::SubsetMASK<unsigned int>";
    return "quvex::SubsetMASK<unsigned long long>";
  }

 public:
  static constexpr const char* kName = spelledName();
  static constexpr std::uint32_t kCapacity = std::numeric_limits<T>::digits;

  SubsetMASK() = default;
  /// The operand count is of no interest to a mask; all containers are built alike.
  explicit SubsetMASK(std::uint32_t) {}

  [[nodiscard]] std::uint32_t size() const { return bits::count(word); }
  [[nodiscard]] bool empty() const { return word == 0; }
  [[nodiscard]] bool contains(OperandPos p) const { return ((word >> p) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t) { word = static_cast<T>(word | bit(p)); }
  void remove(OperandPos p, std::uint32_t) { word = static_cast<T>(word & ~bit(p)); }
  /// Without a branch: whether an operand ends up as a member is as good as random.
  void set(OperandPos p, std::uint32_t, bool member) { word = static_cast<T>((word & ~bit(p)) | (T{member} << p)); }
  void clear() { word = 0; }
  [[nodiscard]] T asWord() const { return word; }

  [[nodiscard]] OperandPos at(std::uint32_t k, std::uint32_t n) const {
    const std::uint32_t nbMembers = size();
    if (k < nbMembers) return bits::select(word, k);
    return std::min(bits::select(~std::uint64_t{word}, k - nbMembers), n);
  }

  template <class Visit>
  void forEach(Visit visit) const {
    bits::forEach(word, 0, visit);
  }

  /// Adds the non-members that `qualifies` accepts. In a container without an order of its own, the order of looking
  /// leaves no trace.
  template <class Qualifies>
  void addIf(std::uint32_t n, Qualifies qualifies) {
    for (OperandPos p = 0; p < n; ++p) {
      if (!contains(p) && qualifies(p)) add(p, n);
    }
  }

  /// Removes the members that `qualifies` accepts.
  template <class Qualifies>
  void removeIf(std::uint32_t n, Qualifies qualifies) {
    bits::forEach(word, 0, [&](OperandPos p) {
      if (qualifies(p)) remove(p, n);
    });
  }

 private:
  T word = 0;

  static constexpr T bit(OperandPos p) { return static_cast<T>(T{1} << p); }
};

}  // namespace quvex
