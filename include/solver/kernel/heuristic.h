#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristiccallback.h"
#include "solver/kernel/move.h"
#include "solver/kernel/random.h"
#include "solver/kernel/solution.h"
#include "solver/kernel/types.h"

namespace quvex {

/// The search of one thread: at each iteration it draws a move from a weighted pool, lets the concrete class judge the
/// result, and remembers the best solution seen on its own `Dag`. It ends by limits or by objective bounds.
/// Nothing in it is shared with another thread; callbacks act at iteration boundaries.
///
/// Invariant between iterations: the `Dag` is in a committed state, and `bestSolution` is the state of the last
/// iteration whose outcome was an improvement.
class Heuristic {
 public:
  static constexpr const char* kName = "quvex::Heuristic";

  std::uint32_t seed = 0;      ///< start of `choiceState` at each run
  bool stopRequested = false;  ///< set by the parallelizer on this thread
  std::uint32_t optimizedObjective = 0;
  std::vector<std::unique_ptr<Move>> moves;
  std::vector<Move*> pool;       ///< each move `poolWeight` times: one access draws by weight
  std::int64_t startTime = 0;    ///< seconds since the epoch
  std::uint64_t iterations = 0;  ///< of the current run
  std::int64_t bestTime = 0;     ///< seconds from the start to the last improvement
  std::uint64_t bestIteration = 0;
  Solution bestSolution;

  /// The `Dag` must be initialised and have an objective. Its state is the first best solution.
  explicit Heuristic(Dag& ownDag);
  virtual ~Heuristic() = default;
  Heuristic(const Heuristic&) = delete;
  Heuristic& operator=(const Heuristic&) = delete;

  void addMove(std::unique_ptr<Move> move);
  /// Raises for an index past the end.
  [[nodiscard]] Move& getMove(std::uint32_t i) const;
  void addCallback(HeuristicCallback* callback) { callbacks.push_back(callback); }
  /// Takes out the first entry equal to the argument, if any.
  void removeCallback(HeuristicCallback* callback);
  [[nodiscard]] Dag& getDag() const { return dag; }

  /// A bound ends the run once the objective reaches it. An integer, or the bits of a double, by the objective's kind.
  void setObjectiveBound(std::uint32_t i, t_value bound);
  /// The last objective that counts in this phase. The level stays 0 while a constraint is violated.
  void setOptimizedObjective(std::uint32_t i);
  /// No limits, the last objective, and all move counters at 0. Best solution and bounds stay.
  void resetPhase();
  void setTimeLimit(std::uint32_t seconds) { timeLimit = seconds; }
  void setIterationLimit(std::uint64_t limit) { iterationLimit = limit; }
  /// Expands the weights into `pool`, in the order of `moves`.
  void rebuildPool();

  /// Searches until a limit, a bound or a stop. Entered on the search thread.
  void run();

  virtual void printTotals(std::ostream& stream) const;
  virtual void printMoveTable(std::ostream& stream) const;

 protected:
  Dag& dag;
  Move* currentMove = nullptr;
  RandomState choiceState = 0;  ///< draws of moves and of acceptance
  std::uint32_t timeLimit = 0;
  std::uint64_t iterationLimit = 0;

  virtual void iterate() = 0;

  /// Seconds of the wall clock since `startTime`.
  [[nodiscard]] std::int64_t elapsedSeconds() const;

  // The steps of an iteration; the concrete class puts its verdict between the second and the last.
  /// Draws a move and builds it. One that can't be built has ended.
  [[nodiscard]] bool buildMove();
  /// Runs stage 0 of the current move. False if a hard constraint broke.
  [[nodiscard]] bool evaluateMove() { return currentMove->evaluateConstraints(); }
  /// Whether the constraints alone give the verdict. If not, `outcome` means nothing.
  [[nodiscard]] bool constraintsDecide(bool evaluated, Outcome& outcome) const;
  /// Evaluates objective `i` and compares it with the move's reference. False on a tie, and `outcome` means nothing.
  [[nodiscard]] bool objectiveDecides(std::uint32_t i, Outcome& outcome) const;
  /// Ends the current move.
  void concludeMove(Outcome outcome);

  void recordBest();

 private:
  std::vector<HeuristicCallback*> callbacks;
  std::vector<t_value> objectiveBounds;

  bool atBounds = false;  ///< the answer of `computeBoundsReached` after so many commits
  std::uint64_t atBoundsCommit = 0;

  [[nodiscard]] bool mayContinue();
  [[nodiscard]] bool boundsReached();
  [[nodiscard]] bool computeBoundsReached() const;
  void promote();
};

// What every iteration runs through stands here, so that it becomes part of the concrete class's step.

inline bool Heuristic::buildMove() {
  currentMove = pool[rand(choiceState, static_cast<std::uint32_t>(pool.size()))];
  if (currentMove->apply()) return true;
  currentMove->conclude(Outcome::Infeasible);
  return false;
}

inline bool Heuristic::constraintsDecide(bool evaluated, Outcome& outcome) const {
  outcome = Outcome::Infeasible;
  if (!evaluated) return true;
  if (currentMove->leavesConstraintsAlone()) return false;
  outcome = Outcome::Improved;
  if (currentMove->constraintsBetter()) return true;
  const bool worse = currentMove->constraintsWorse();
  if (currentMove->referenceNbViolated() != 0) {
    outcome = worse ? Outcome::Rejected : Outcome::Accepted;
    return true;
  }
  outcome = Outcome::Infeasible;
  return worse;
}

inline bool Heuristic::objectiveDecides(std::uint32_t i, Outcome& outcome) const {
  currentMove->evaluateObjective(i);
  outcome = Outcome::Rejected;
  if (currentMove->isObjectiveWorse(i)) return true;
  outcome = Outcome::Improved;
  return currentMove->isObjectiveBetter(i);
}

inline void Heuristic::concludeMove(Outcome outcome) {
  currentMove->conclude(outcome);
  if (dag.propagation.committedNbViolated == 0 && !dag.propagation.allConstraintsActive()) promote();
}

}  // namespace quvex
