#pragma once

#include <cstddef>
#include <cstdint>

#include "solver/kernel/types.h"

namespace quvex {

/// One entry of a node's parent run: the parent, and the position that the node holds among its operands. A node used
/// twice by one parent has two entries.
struct ParentLink {
  NodeId parent;
  OperandPos childPos;
};

/// Entries that follow one another as pairs of words.
class ParentRange {
 public:
  class Iterator {
   public:
    using value_type = ParentLink;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    explicit Iterator(const std::uint32_t* first) : words(first) {}
    ParentLink operator*() const { return {words[0], words[1]}; }
    Iterator& operator++() {
      words += kEntryLength;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    const std::uint32_t* words = nullptr;
  };

  static constexpr std::uint32_t kEntryLength = 2;

  ParentRange(const std::uint32_t* firstWord, const std::uint32_t* lastWord) : first(firstWord), last(lastWord) {}

  [[nodiscard]] Iterator begin() const { return Iterator(first); }
  [[nodiscard]] Iterator end() const { return Iterator(last); }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(last - first) / kEntryLength; }
  [[nodiscard]] bool empty() const { return first == last; }
  [[nodiscard]] ParentLink operator[](std::uint32_t i) const {
    return *Iterator(first + std::size_t{kEntryLength} * i);
  }

 private:
  const std::uint32_t* first;
  const std::uint32_t* last;
};

}  // namespace quvex
