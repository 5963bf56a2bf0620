#pragma once

#include <cassert>
#include <cstdint>

#include "solver/kernel/types.h"

namespace quvex {

/// How the changed operands of a node are noted.
enum class ChangeKind : std::uint8_t {
  None,    ///< not at all: the node looks at all its operands
  Bit,     ///< as bits of the log's word
  List,    ///< as entries of a list, whose length is the word
  Called,  ///< by `Node::notifyChildChanged`, and taken back by `Node::rollback`: the node keeps more than a list
};

/// The changed operands of one node in a move; a `ChangeKind` tells what the word means. It lies with what the
/// evaluation driver keeps of the node, not in the node, so that a change is noted and taken back where the driver is
/// writing anyway: that is most of what a move does.
struct ChangeLog {
  std::uint64_t word = 0;       ///< 0 between moves
  OperandPos* items = nullptr;  ///< of a list, in order of arrival, with room for every operand once

  void setBit(OperandPos p) { word |= std::uint64_t{1} << p; }
  /// Telling an operand twice in a move would overflow: behind the room stands kNone.
  void push(OperandPos p) {
    assert(items[word] != kNone);
    items[word++] = p;
  }
};

}  // namespace quvex
