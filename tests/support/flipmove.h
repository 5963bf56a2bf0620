#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/move.h"

namespace quvex {

/// A move that follows a script: attempt i flips the decisions of entry i, the last entry repeats. An empty entry is an
/// attempt that can't be built.
class FlipMove : public Move {
 public:
  std::vector<std::vector<NodeId>> script;
  std::function<void()> beforeApply = [] {};

  FlipMove(Dag& moveDag, RandomState& state, std::vector<std::vector<NodeId>> flips, std::uint32_t weight = 1)
      : Move(weight, moveDag, state), script(std::move(flips)) {
    name = "Script";
  }

  /// Starts a new script at its first entry.
  void play(std::vector<std::vector<NodeId>> flips) {
    script = std::move(flips);
    attempt = 0;
  }

  bool apply() override {
    beforeApply();
    const auto& flips = script[std::min<std::size_t>(attempt++, script.size() - 1)];
    for (const NodeId id : flips) dag.flip(id);
    return !flips.empty();
  }

 private:
  std::size_t attempt = 0;
};

}  // namespace quvex
