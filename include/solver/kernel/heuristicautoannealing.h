#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/heuristic.h"

namespace quvex {

/// Annealing without temperature or schedule: a value worse than the best is accepted with a probability that falls
/// geometrically from 1 at the best value to 1% at the average of the last improvements; nothing beyond that average
/// is. Before enough improvements, after a long stagnation and in the last tenth of the budget it is a plain descent.
///
/// Invariant: `recentSums[j]` is kept incrementally from the ring of objective `j`, whose next slot is `nbImprovements`
/// modulo `memorySize`; all of this survives phases.
class HeuristicAutoAnnealing final : public Heuristic {
 public:
  static constexpr const char* kName = "quvex::HeuristicAutoAnnealing";

  std::uint64_t maxStagnation = 1000000;  ///< iterations without improvement that end annealing
  double endRatio = 0.9;                  ///< share of the expected iterations after which annealing ends
  std::uint32_t nbImprovements = 0;
  std::uint32_t stagnation = 0;    ///< iterations since the last improvement
  std::uint32_t nbAnnealed = 0;    ///< worsening moves accepted by the probability rule
  std::vector<double> recentSums;  ///< per objective
  bool annealing = true;
  std::uint64_t expectedIterations = 0;  ///< set once, at mid-time of the first phase that reaches it

  explicit HeuristicAutoAnnealing(Dag& ownDag);

  /// Number of recent improvements kept, at least 2. New cells hold 0.0; the sums stay.
  void setMemorySize(std::uint32_t size);
  [[nodiscard]] std::uint32_t getMemorySize() const { return memorySize; }

 private:
  std::uint32_t memorySize = 2;
  std::vector<std::vector<double>> recentValues;  ///< one ring per objective

  void iterate() override;
  [[nodiscard]] Outcome verdict(bool evaluated);

  void updateAnnealing();
  void updateRecent();
  /// Whether a tentative value worse than the best one is taken nevertheless. Draws only within the recent average.
  [[nodiscard]] bool acceptByProbability();
};

}  // namespace quvex
