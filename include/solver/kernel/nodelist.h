#pragma once

#include <cassert>
#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/types.h"

namespace quvex {

/// A list of node ids with room for as many as can ever come, so that neither a push nor a clear tests anything.
/// Invariant: the entries are the first `size()` cells, and no more are pushed than were reserved.
class NodeList {
 public:
  void reserve(std::uint32_t capacity) { cells.resize(capacity); }
  void push(NodeId id) {
    assert(nbEntries < cells.size());
    cells[nbEntries++] = id;
  }
  void clear() { nbEntries = 0; }

  [[nodiscard]] std::uint32_t size() const { return nbEntries; }
  [[nodiscard]] bool empty() const { return nbEntries == 0; }
  [[nodiscard]] NodeId operator[](std::uint32_t i) const { return cells[i]; }
  [[nodiscard]] const NodeId* begin() const { return cells.data(); }
  [[nodiscard]] const NodeId* end() const { return cells.data() + nbEntries; }

  friend bool operator==(const NodeList& list, const std::vector<NodeId>& ids) {
    return std::vector<NodeId>(list.begin(), list.end()) == ids;
  }

 private:
  std::vector<NodeId> cells;
  std::uint32_t nbEntries = 0;
};

}  // namespace quvex
