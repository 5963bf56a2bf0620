#pragma once

#include <cstdint>
#include <memory>

#include "solver/kernel/types.h"

namespace quvex {

/// How a changed operand is noted with its parent.
enum class ChangeKind : std::uint8_t {
  None,    ///< not at all: the parent looks at all its operands
  Bit,     ///< as a bit of the log's word
  Short,   ///< as an entry of a list of 16-bit positions, whose length is the word
  Long,    ///< the same with 32-bit positions
  Called,  ///< by `Node::notifyChildChanged`, and taken back by `Node::rollback`
};

/// The part of a set of changed operands that a move writes; a `ChangeKind` tells what the word means. It is the base
/// of all those sets and has nothing virtual, so that the evaluation driver notes and empties changes through a
/// pointer: that is most of what a move does.
struct ChangeLog {
  std::uint64_t word = 0;  ///< 0 between moves
};

/// Positions in order of arrival. There is room for every operand once: telling one twice in a move would overflow.
template <class Position>
struct ChangeList : ChangeLog {
  std::unique_ptr<Position[]> items;

  explicit ChangeList(std::uint32_t n) : items(std::make_unique_for_overwrite<Position[]>(n)) {}

  void push(OperandPos p) { items[word++] = static_cast<Position>(p); }
};

/// The log of a node, which lies in the node, and how it is written.
struct ChangeTarget {
  ChangeKind kind = ChangeKind::None;
  ChangeLog* log = nullptr;
};

}  // namespace quvex
