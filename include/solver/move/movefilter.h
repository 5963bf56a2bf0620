#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/heuristic.h"
#include "solver/kernel/heuristiccallback.h"
#include "solver/kernel/random.h"

namespace quvex {

/// Watches the statistics of a heuristic's moves and shifts pool weights, a little at a time, toward those that pay. An
/// exploration step gives a chance to moves that were starved to zero.
/// Invariant: the sum of the weights stays `totalWeight`, whatever moves.
class MoveFilter final : public HeuristicCallback {
 public:
  MoveFilter(Heuristic& ownHeuristic, bool withExploration);

  void onStart() override;
  void onEnd() override {}
  void onIteration() override;

  /// Moves as many units of weight as there are moves that want less, to those that want more.
  void adapt();
  /// Gives one unit of weight to a move without any, at the cost of the heaviest.
  void explore();

 private:
  Heuristic& heuristic;
  std::uint32_t period = 1000;  ///< iterations between adaptations
  std::uint64_t lastCheck = 0;
  std::uint64_t nextCheck = 1000;
  std::uint32_t totalWeight = 0;
  bool explorationEnabled;
  RandomState randomState = 0;
  double maxInfeasibleRate = 0.99;  ///< above it a move scores 0

  // Scratch of one adaptation.
  std::vector<double> scores;
  std::vector<Move*> up;
  std::vector<Move*> down;
  std::vector<Move*> starved;

  void scheduleNext();
  void computeScores();
  void sortByWish();
  void shiftWeights();
};

}  // namespace quvex
