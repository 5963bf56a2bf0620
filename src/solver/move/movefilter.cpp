#include "solver/move/movefilter.h"

#include <numeric>

#include "solver/kernel/move.h"

namespace quvex {

namespace {

/// What one counter of a move is worth: its cost factor times the count, less for those that often fail.
double credit(const Move& move, std::uint32_t count) {
  return (move.costFactor() * count) / (static_cast<double>(move.nbInfeasibles) + 1.0);
}

/// A weight is wanted as a whole number; a share that is not a number wants nothing.
std::int64_t truncateShare(double share) { return share > 0 ? static_cast<std::int64_t>(share) : 0; }

}  // namespace

MoveFilter::MoveFilter(Heuristic& ownHeuristic, bool withExploration)
    : heuristic(ownHeuristic), explorationEnabled(withExploration) {}

void MoveFilter::onStart() {
  scheduleNext();
  totalWeight = 0;
  for (const auto& move : heuristic.moves) totalWeight += move->poolWeight;
  scores.reserve(heuristic.moves.size());
  for (std::vector<Move*>* list : {&up, &down, &starved}) list->reserve(heuristic.moves.size());
}

void MoveFilter::onIteration() {
  if (heuristic.iterations < nextCheck) return;
  scheduleNext();
  adapt();
  if (explorationEnabled) explore();
  heuristic.rebuildPool();
}

void MoveFilter::scheduleNext() {
  lastCheck = heuristic.iterations;
  nextCheck = heuristic.iterations + period;
}

void MoveFilter::adapt() {
  computeScores();
  sortByWish();
  if (!up.empty() && !down.empty()) shiftWeights();
}

void MoveFilter::computeScores() {
  double sumImproved = 0;
  double sumAccepted = 0;
  for (const auto& move : heuristic.moves) {
    sumImproved += credit(*move, move->nbImprovements);
    sumAccepted += credit(*move, move->nbAccepted);
  }

  scores.clear();
  for (const auto& move : heuristic.moves) {
    const double w = move->costFactor();
    // A move that was never tried has 0/0, which is not above any limit: it scores.
    const double infeasibleRate = static_cast<double>(move->nbInfeasibles) / static_cast<double>(move->nbAttempted);
    if (infeasibleRate > maxInfeasibleRate) {
      scores.push_back(0);
    } else if (sumImproved * sumAccepted == 0) {
      scores.push_back(w);
    } else {
      scores.push_back(w + 30 * w * move->nbImprovements / sumImproved + 10 * w * move->nbAccepted / sumAccepted);
    }
  }
}

void MoveFilter::sortByWish() {
  const double sumScores = std::accumulate(scores.begin(), scores.end(), 0.0);
  up.clear();
  down.clear();
  for (std::size_t i = 0; i < scores.size(); ++i) {
    Move& move = *heuristic.moves[i];
    std::int64_t wanted = truncateShare(totalWeight * (scores[i] / sumScores));
    if (wanted == 0 && move.nbAccepted != 0) wanted = 1;
    if (wanted > move.poolWeight) {
      up.push_back(&move);
    } else if (wanted < move.poolWeight) {
      down.push_back(&move);
    }
  }
}

void MoveFilter::shiftWeights() {
  const auto draw = [this](const std::vector<Move*>& list) -> Move& {
    return *list[rand(randomState, static_cast<std::uint32_t>(list.size()))];
  };
  for (std::size_t i = 0; i < down.size(); ++i) ++draw(up).poolWeight;
  for (std::size_t taken = 0; taken < down.size();) {
    Move& move = draw(down);
    if (move.poolWeight == 0) continue;
    --move.poolWeight;
    ++taken;
  }
}

void MoveFilter::explore() {
  starved.clear();
  double sumFactors = 0;
  Move* heaviest = nullptr;
  for (const auto& move : heuristic.moves) {
    if (move->poolWeight == 0) {
      starved.push_back(move.get());
      sumFactors += move->costFactor();
    } else if (heaviest == nullptr || move->poolWeight > heaviest->poolWeight) {
      heaviest = move.get();
    }
  }
  if (starved.empty() || heaviest == nullptr) return;

  const double x = rand(randomState, 2147483647U) / 2147483647.0;
  Move* chosen = starved.back();  // should rounding leave even the last share below x
  double cumulated = 0;
  for (Move* move : starved) {
    cumulated += move->costFactor();
    if (cumulated / sumFactors >= x) {
      chosen = move;
      break;
    }
  }
  chosen->poolWeight = 1;
  --heaviest->poolWeight;
}

}  // namespace quvex
