#include "solver/kernel/heuristic.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <ostream>
#include <utility>

#include "api/qvexception.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/objectivecompare.h"

namespace quvex {

namespace {

/// The bound that no value reaches.
t_value unreachableBound(bool isDouble, std::uint32_t direction) {
  if (direction == kMaximise) return isDouble ? doubleToWord(kInfinity) : kHighestInt;
  return isDouble ? doubleToWord(-kInfinity) : kLowestInt;
}

Dag& checkedDag(Dag& dag, const Place& place) {
  if (!dag.initialized) raise<KernelException>(place, "The dag must be initialized before creating a heuristic");
  if (dag.fixed.objectives.empty()) raise<KernelException>(place, "At least one objective is needed.");
  return dag;
}

}  // namespace

Heuristic::Heuristic(Dag& ownDag) : bestSolution(checkedDag(ownDag, here<Heuristic>())), dag(ownDag) {
  const DagFixedFields& fixed = dag.fixed;
  for (std::uint32_t i = 0; i < fixed.nbObjectives(); ++i) {
    objectiveBounds.push_back(unreachableBound(fixed.isDouble(fixed.objectives[i]), fixed.objectiveDirections[i]));
  }
  resetPhase();
  recordBest();
}

void Heuristic::addMove(std::unique_ptr<Move> move) {
  moves.push_back(std::move(move));
  pool.clear();
}

Move& Heuristic::getMove(std::uint32_t i) const {
  if (i >= moves.size()) {
    raise<KernelException>(here<Heuristic>(), "The asked move (idx ", i, ") is not in the pool");
  }
  return *moves[i];
}

void Heuristic::removeCallback(HeuristicCallback* callback) {
  const auto found = std::find(callbacks.begin(), callbacks.end(), callback);
  if (found != callbacks.end()) callbacks.erase(found);
}

void Heuristic::setObjectiveBound(std::uint32_t i, t_value bound) {
  if (i >= objectiveBounds.size()) raise<KernelException>(here<Heuristic>(), "Bad argument.");
  objectiveBounds[i] = bound;
}

void Heuristic::setOptimizedObjective(std::uint32_t i) {
  if (i >= dag.fixed.nbObjectives()) {
    raise<KernelException>(here<Heuristic>(), "The given objective index is invalid");
  }
  optimizedObjective = i;
  dag.setOptimizedLevel(dag.propagation.committedNbViolated > 0 ? 0 : i + 1);
}

void Heuristic::resetPhase() {
  timeLimit = static_cast<std::uint32_t>(kNoTimeLimit);
  iterationLimit = static_cast<std::uint64_t>(kNoIterationLimit);
  optimizedObjective = dag.fixed.nbObjectives() - 1;
  for (const auto& move : moves) move->resetStatistics();
}

void Heuristic::rebuildPool() {
  pool.clear();
  for (const auto& move : moves) pool.insert(pool.end(), move->poolWeight, move.get());
}

void Heuristic::run() {
  if (moves.empty()) raise<KernelException>(here<Heuristic>(), "At least one move is needed");
  rebuildPool();
  choiceState = seed;
  stopRequested = false;
  startTime = std::time(nullptr);
  iterations = 0;
  bestTime = 0;
  bestIteration = 0;
  atBounds = computeBoundsReached();
  atBoundsCommit = dag.propagation.nbCommits;
  for (HeuristicCallback* callback : callbacks) callback->onStart();
  while (mayContinue()) {
    iterate();
    ++iterations;
    for (HeuristicCallback* callback : callbacks) callback->onIteration();
  }
  for (HeuristicCallback* callback : callbacks) callback->onEnd();
}

std::int64_t Heuristic::elapsedSeconds() const { return std::time(nullptr) - startTime; }

bool Heuristic::mayContinue() {
  return !stopRequested && iterations < iterationLimit && static_cast<std::uint32_t>(elapsedSeconds()) < timeLimit &&
         !boundsReached() && !pool.empty();
}

/// Asked at every iteration, computed after commits. Constraints may turn active without one.
bool Heuristic::boundsReached() {
  if (!dag.propagation.allConstraintsActive()) return false;
  if (atBoundsCommit != dag.propagation.nbCommits) {
    atBounds = computeBoundsReached();
    atBoundsCommit = dag.propagation.nbCommits;
  }
  return atBounds;
}

/// Whether no objective of this phase can still come nearer to its bound, the user's or the computed one.
bool Heuristic::computeBoundsReached() const {
  const DagFixedFields& fixed = dag.fixed;
  for (std::uint32_t i = 0; i <= optimizedObjective; ++i) {
    const t_value value = dag.nodeValue[fixed.objectives[i]];
    if (isCellBetter(fixed, i, objectiveBounds[i], value) && isCellBetter(fixed, i, bestBound(fixed, i), value)) {
      return false;
    }
  }
  return true;
}

/// Once nothing is violated, every constraint turns into a barrier and the objectives come into play.
void Heuristic::promote() {
  dag.setOptimizedLevel(optimizedObjective + 1);
  dag.propagation.activateAllConstraints();
}

void Heuristic::recordBest() {
  bestIteration = iterations;
  bestTime = elapsedSeconds();
  bestSolution.save();
}

void Heuristic::printTotals(std::ostream& stream) const {
  std::uint64_t attempted = 0;
  std::uint64_t accepted = 0;
  std::uint64_t improved = 0;
  std::uint64_t infeasibles = 0;
  for (const auto& move : moves) {
    attempted += move->nbAttempted;
    accepted += move->nbAccepted;
    improved += move->nbImprovements;
    infeasibles += move->nbInfeasibles;
  }
  stream << "attempted =" << attempted << "\naccepted =" << accepted << "\nimproved =" << improved
         << "\ninfeasibles =" << infeasibles << '\n';
}

void Heuristic::printMoveTable(std::ostream& stream) const {
  stream << std::left << std::setw(20) << "Heur. stats" << std::right << std::setw(10) << "moves" << std::setw(10)
         << "accepted" << std::setw(10) << "improved" << std::setw(10) << "infeas" << std::setw(8) << "rate" << '\n';
  for (const auto& move : moves) {
    stream << "  " << std::left << std::setw(18) << move->name << std::right << std::setw(10) << move->nbAttempted
           << std::setw(10) << move->nbAccepted << std::setw(10) << move->nbImprovements << std::setw(10)
           << move->nbInfeasibles << std::setw(8) << move->poolWeight << '\n';
  }
}

}  // namespace quvex
