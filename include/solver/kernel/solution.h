#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/daglistener.h"
#include "solver/kernel/indexedset.h"
#include "solver/kernel/types.h"

namespace quvex {

class Dag;

/// A snapshot of one `Dag`: decisions, objective values, violated count and the satisfied constraints.
/// It listens to its `Dag`'s commits, so that a save copies only what differs from the previous one.
/// Invariant between commits: `changedDecisions` holds exactly the positions where the snapshot differs from the
/// `Dag`'s committed decisions. It lives no longer than its `Dag`.
class Solution : public DagListener {
 public:
  static constexpr const char* kName = "quvex::Solution";

  Dag* dag;
  std::uint32_t nbViolated = 0;
  std::vector<t_value> objectives;
  std::vector<t_value> decisions;   ///< the boolean and integer decisions, by position in `decisionList`
  IndexedSet changedDecisions;      ///< over those positions
  IndexedSet satisfiedConstraints;  ///< the constraints that were active at the save

  /// Registers with the `Dag`, which must be initialised, and takes its state.
  explicit Solution(Dag& ownDag);
  ~Solution() override;
  Solution(const Solution&) = delete;
  Solution& operator=(const Solution&) = delete;

  void onCommit() override;

  /// Takes the `Dag`'s committed state, at a cost proportional to the distance from the previous snapshot.
  void save();
  /// 1 when this one is better, -1 when it is worse, 0 when tied: fewer violated constraints first, then all
  /// objectives in order. Raises for solutions of different graphs.
  [[nodiscard]] int compare(const Solution& other) const;
  /// Loads the snapshot into its own `Dag` or another of the same graph. Raises when it can't be evaluated.
  void restore(Dag& target) const;

 private:
  void saveSatisfiedConstraints();
};

}  // namespace quvex
