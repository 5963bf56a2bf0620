#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace quvex {

/// A set of integers below a fixed capacity as a permutation with a cut.
/// Invariant: `positions` is the inverse of `items`, and the members are exactly the first `count` entries of `items`.
/// The order of the members is the order of insertion disturbed by removals; random picks depend on it.
class IndexedSet {
 public:
  std::vector<std::uint32_t> items;
  std::vector<std::uint32_t> positions;
  std::uint32_t count = 0;
  std::uint32_t capacity = 0;

  IndexedSet() = default;
  explicit IndexedSet(std::uint32_t ofCapacity) { resize(ofCapacity); }

  /// Empties the set and makes it range over [0, newCapacity), in identity order.
  void resize(std::uint32_t newCapacity) {
    capacity = newCapacity;
    count = 0;
    items.resize(newCapacity);
    positions.resize(newCapacity);
    for (std::uint32_t i = 0; i < newCapacity; ++i) items[i] = positions[i] = i;
  }

  [[nodiscard]] bool contains(std::uint32_t x) const { return positions[x] < count; }
  [[nodiscard]] bool empty() const { return count == 0; }
  [[nodiscard]] std::uint32_t size() const { return count; }
  [[nodiscard]] std::uint32_t operator[](std::uint32_t i) const { return items[i]; }

  void add(std::uint32_t x) {
    if (positions[x] >= count) exchange(positions[x], count++);
  }
  void remove(std::uint32_t x) {
    if (positions[x] < count) exchange(positions[x], --count);
  }
  void clear() { count = 0; }
  void fill() { count = capacity; }

  [[nodiscard]] std::span<const std::uint32_t> members() const { return {items.data(), count}; }

  /// Swaps the entries at two places, whichever side of the cut they lie on.
  void exchange(std::uint32_t i, std::uint32_t j) {
    std::swap(items[i], items[j]);
    positions[items[i]] = i;
    positions[items[j]] = j;
  }
};

}  // namespace quvex
