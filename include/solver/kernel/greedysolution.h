#pragma once

#include "solver/kernel/random.h"
#include "solver/kernel/types.h"

namespace quvex {

class Dag;

/// One pass for feasibility before the search: each boolean decision is tried once towards 1, in random order, and what
/// does not add a violated constraint is kept. No objective is looked at.
class GreedySolution {
 public:
  static constexpr const char* kName = "quvex::GreedySolution";

  /// The caller owns the generator state; all threads share it in turn.
  explicit GreedySolution(RandomState& sharedState) : seedState(sharedState) {}
  virtual ~GreedySolution() = default;
  GreedySolution(const GreedySolution&) = delete;
  GreedySolution& operator=(const GreedySolution&) = delete;

  /// True when all constraints are active at the end. Raises on a `Dag` that is not initialised.
  [[nodiscard]] bool computeSolution(Dag& dag);

 private:
  RandomState& seedState;
  bool alwaysRun = false;  ///< run the pass from a feasible start too

  static void tryToSet(Dag& dag, NodeId id);
};

}  // namespace quvex
