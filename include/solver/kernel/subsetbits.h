#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "solver/kernel/subsetbase.h"

namespace quvex {

/// A set of operand positions as an array of bits, for operators with some hundred operands.
///
/// Invariant: bit p mod 64 of word p / 64 is set exactly when position p is a member, bits beyond the operand count
/// stay clear, and `count` is the number of set bits. Members are walked in ascending order, scanning all words.
class SubsetBits : public SubsetBase<SubsetBits> {
 public:
  static constexpr const char* kName = "quvex::SubsetBits";

  explicit SubsetBits(std::uint32_t n) : nbWords((n + 63) / 64), words(std::make_unique<std::uint64_t[]>(nbWords)) {}

  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] bool contains(OperandPos p) const { return ((words[p / 64] >> (p % 64)) & 1U) != 0; }
  void add(OperandPos p, std::uint32_t) {
    std::uint64_t& word = words[p / 64];
    count += static_cast<std::uint32_t>(~word >> (p % 64)) & 1U;
    word |= bit(p);
  }
  void remove(OperandPos p, std::uint32_t) {
    std::uint64_t& word = words[p / 64];
    count -= static_cast<std::uint32_t>(word >> (p % 64)) & 1U;
    word &= ~bit(p);
  }
  /// Without a branch: whether an operand ends up as a member is as good as random.
  void set(OperandPos p, std::uint32_t, bool member) {
    std::uint64_t& word = words[p / 64];
    count += static_cast<std::uint32_t>(member) - (static_cast<std::uint32_t>(word >> (p % 64)) & 1U);
    word = (word & ~bit(p)) | (std::uint64_t{member} << (p % 64));
  }
  void clear() {
    std::fill_n(words.get(), nbWords, std::uint64_t{0});
    count = 0;
  }

  [[nodiscard]] OperandPos at(std::uint32_t k, std::uint32_t n) const {
    if (k < count) return select(k, 0, n);
    return select(k - count, ~std::uint64_t{0}, n);
  }

  template <class Visit>
  void forEach(Visit visit) const {
    for (std::uint32_t i = 0; i < nbWords; ++i) bits::forEach(words[i], i * 64, visit);
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
    for (std::uint32_t i = 0; i < nbWords; ++i) {
      bits::forEach(words[i], i * 64, [&](OperandPos p) {
        if (qualifies(p)) remove(p, n);
      });
    }
  }

 private:
  std::uint32_t nbWords;
  std::uint32_t count = 0;
  std::unique_ptr<std::uint64_t[]> words;

  static constexpr std::uint64_t bit(OperandPos p) { return std::uint64_t{1} << (p % 64); }

  /// The k-th set bit of the words, each first combined with `inversion`; n if it lies beyond the positions.
  [[nodiscard]] OperandPos select(std::uint32_t k, std::uint64_t inversion, std::uint32_t n) const {
    for (std::uint32_t i = 0; i < nbWords; ++i) {
      // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): without words there is no turn
      const std::uint64_t word = words[i] ^ inversion;
      const std::uint32_t nbHere = bits::count(word);
      if (k < nbHere) return std::min(i * 64 + bits::select(word, k), n);
      k -= nbHere;
    }
    return n;
  }
};

}  // namespace quvex
