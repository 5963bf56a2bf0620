#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/objectivecompare.h"
#include "solver/kernel/random.h"
#include "solver/kernel/types.h"

namespace quvex {

/// How an attempt ended. The first two roll it back, the last two commit it.
enum class Outcome : std::uint32_t {
  Rejected = 0,    ///< refused by the acceptance rule
  Infeasible = 1,  ///< not built, or it broke a hard constraint
  Accepted = 2,
  Improved = 3,
};

/// One neighbourhood of the search. `apply` sets a few boolean decisions tentatively, the heuristic evaluates and
/// judges through the operations below, `conclude` commits or rolls back. A move never touches integer decisions and
/// never writes the value arrays itself.
///
/// Invariant: between attempts a move holds counters and reusable buffers, nothing about the last attempt; all moves of
/// one heuristic draw from the same random state.
///
/// For those who derive: `apply` returns false at a dead end and leaves what it has set, `conclude` undoes it; it
/// allocates nothing once its buffers have grown; it draws exactly what its rule says, also when the result is unused.
/// A move that overrides an operation of the judgement other than `conclude` clears `judgedByCommitted`.
class Move {
 public:
  static constexpr const char* kName = "quvex::Move";

  std::string name;                  ///< for printing only
  std::uint32_t poolWeight;          ///< entries in the heuristic's pool
  std::uint32_t nbAttempted = 0;     ///< `conclude` calls
  std::uint32_t nbAccepted = 0;      ///< commits, improving or not
  std::uint32_t nbRejected = 0;      ///< refused by the acceptance rule
  std::uint32_t nbImprovements = 0;  ///< commits that improved the solution
  std::uint32_t nbInfeasibles = 0;   ///< not built, or broke a hard constraint

  /// Raises when the dag is not initialised. The dag and the state must outlive the move.
  Move(std::uint32_t weight, Dag& moveDag, RandomState& state);
  Move(const Move&) = delete;
  Move& operator=(const Move&) = delete;
  virtual ~Move() = default;

  /// Chooses the change and sets it tentatively. False if no neighbour could be built.
  [[nodiscard]] virtual bool apply() = 0;
  /// Evaluates the constraints, then the stages up to `stage`. False if a hard constraint broke.
  virtual bool evaluateLevel(Level stage);
  /// The same up to the last stage that the search cares about.
  virtual bool evaluate();
  /// Counts and ends the attempt. A code outside of the enumeration is counted as an attempt and ends nothing.
  virtual void conclude(Outcome outcome);

  /// What the tentative state is compared with: the committed state, unless a move judges against another.
  [[nodiscard]] virtual t_value referenceObjective(std::uint32_t i) const;
  [[nodiscard]] virtual std::uint32_t referenceNbViolated() const;
  [[nodiscard]] virtual std::int64_t referenceViolation() const;

  virtual void resetStatistics();
  virtual void printStatistics(std::ostream& stream) const;

  [[nodiscard]] virtual bool constraintsWorse() const;
  [[nodiscard]] virtual bool constraintsBetter() const;
  [[nodiscard]] virtual bool objectiveWorse(std::uint32_t i) const;
  [[nodiscard]] virtual bool objectiveBetter(std::uint32_t i) const;

  /// What every iteration asks, without a call for the moves that are judged by the committed state: `evaluateLevel` of
  /// stage 0, then of an objective's, `objectiveWorse`, `objectiveBetter`.
  [[nodiscard]] bool evaluateConstraints() {
    return judgedByCommitted ? dag.propagation.evaluateConstraints(dag) : evaluateLevel(0);
  }
  void evaluateObjective(std::uint32_t i) {
    if (judgedByCommitted) {
      (void)dag.propagation.evaluateUpTo(dag, i + 1);
    } else {
      evaluateLevel(i + 1);
    }
  }
  [[nodiscard]] bool isObjectiveWorse(std::uint32_t i) const {
    return judgedByCommitted ? isWorse(dag, i, committedObjective(i)) : objectiveWorse(i);
  }
  [[nodiscard]] bool isObjectiveBetter(std::uint32_t i) const {
    return judgedByCommitted ? isBetter(dag, i, committedObjective(i)) : objectiveBetter(i);
  }
  /// Whether the constraints leave the verdict to the objectives, as they do for nearly every attempt of a feasible
  /// search: judged against the committed state, feasible there, and counted the same now. It spares asking the
  /// reference and the comparisons one by one.
  [[nodiscard]] bool leavesConstraintsAlone() const {
    const Propagation& now = dag.propagation;
    return judgedByCommitted && now.committedNbViolated == 0 && now.tentativeNbViolated == 0 &&
           now.tentativeViolation == now.committedViolation;
  }

  /// How much the credit of one attempt counts when weights are adapted; below 1 for attempts of several steps.
  [[nodiscard]] virtual double costFactor() const { return 1.0; }

 protected:
  Dag& dag;
  RandomState& randomState;
  bool judgedByCommitted = true;  ///< false in a move that overrides the reference, how it is evaluated or compared

  void countOutcome(Outcome outcome);

  /// The start of a targeted attempt: a percentage test (no draw for a rate of 0), then what `pickTarget` proposes.
  /// None if either fails.
  [[nodiscard]] NodeId drawTarget(std::uint32_t rate) { return rate == 0 ? kNone : drawTargetAt(rate); }

  [[nodiscard]] t_value committedObjective(std::uint32_t i) const { return dag.nodeValue[dag.fixed.objectives[i]]; }

 private:
  [[nodiscard]] NodeId drawTargetAt(std::uint32_t rate);
};

/// "2-Path".
[[nodiscard]] std::string moveName(std::uint32_t size, std::string_view word);
/// "3-2-ForkCycle".
[[nodiscard]] std::string moveName(std::uint32_t size, std::uint32_t forks, std::string_view word);

/// Fills `out` with `k` distinct indices of [0, n), `k <= n`, in the order drawn: a Fisher-Yates shuffle cut after k
/// steps (Knuth, The Art of Computer Programming, volume 2, algorithm 3.4.2P), in O(k) memory. A draw of one among one
/// is certain and steps nothing.
void sampleDistinct(RandomState& state, std::uint32_t n, std::uint32_t k, std::vector<std::uint32_t>& out);

/// Proposes one decision whose change goes toward what the search wants now: the rise of a random violated constraint,
/// or the first objective with room for improvement. False, with `decision` untouched, if there is no proposal.
[[nodiscard]] bool pickTarget(const Dag& dag, RandomState& state, NodeId& decision);

/// The first of the objectives below `limit` whose tentative value is not on its bound; kNone if all are.
[[nodiscard]] std::uint32_t firstImprovableObjective(const Dag& dag, std::uint32_t limit);

}  // namespace quvex
