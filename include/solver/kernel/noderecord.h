#pragma once

#include <cassert>
#include <cstdint>

#include "solver/kernel/queueslot.h"
#include "solver/kernel/types.h"

namespace quvex {

class Node;

/// Moves of one `Dag` are numbered, so that what a node notes in a move is void in the next without being wiped out.
/// 0 is the number of no move.
using MoveNumber = std::uint32_t;
inline constexpr MoveNumber kNoMove = 0;
/// Numbers begin shortly before their end, so that every longer run passes it.
inline constexpr MoveNumber kFirstMove = kNoMove - 1000;

/// Whether a node that has been evaluated tells its parents.
enum class TellKind : std::uint8_t {
  Never,   ///< it has none
  ByCell,  ///< if its two cells differ as words
  Asked,   ///< if `Node::hasChanged`
};

/// How the changed operands of a node are noted.
enum class ChangeKind : std::uint8_t {
  None,    ///< not at all: the node looks at all its operands
  Bit,     ///< as bits of a word
  List,    ///< as entries of a list, whose length is the word
  Called,  ///< by `Node::notifyChildChanged`, and taken back by `Node::rollback`: the node keeps more than a list
};

/// What the evaluation driver reads and writes of a node in every move, half a cache line: whether it is queued, and
/// its changed operands. They lie here, not in the node, so that a change is noted where the driver is writing anyway:
/// that is most of what a move does.
struct alignas(32) NodeRecord {
  /// Of the move in `queuedIn`: bits, or the length of a list, by `changeKind`. Void in the next moves, but 0 where the
  /// kind is `Called`: what such a node keeps beside its list has to be wiped out with it.
  std::uint64_t changes = 0;
  Node* node = nullptr;
  MoveNumber queuedIn = kNoMove;  ///< the last move that queued it, for an operator
  QueueSlot slot = 0;             ///< the queue that it belongs to
  std::uint32_t listStart = 0;    ///< of its list, in the room of all lists
  TellKind tellKind = TellKind::Never;
  ChangeKind changeKind = ChangeKind::None;

  // `before` are the changes of this move so far.
  void noteBit(std::uint64_t before, OperandPos p) { changes = before | std::uint64_t{1} << p; }
  /// In order of arrival. Behind the room of a list stands kNone: telling an operand twice in a move would overflow.
  void noteInList(std::uint64_t before, OperandPos* allLists, OperandPos p) {
    OperandPos& entry = allLists[listStart + before];
    assert(entry != kNone);
    entry = p;
    changes = before + 1;
  }
};
static_assert(sizeof(NodeRecord) == 32);

/// The changed operands of one node that is queued in the current move, as its record has them.
struct ChangeLog {
  std::uint64_t word;
  OperandPos* items;  ///< of a list; means nothing for other kinds
};

}  // namespace quvex
