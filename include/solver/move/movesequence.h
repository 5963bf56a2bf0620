#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/heuristic.h"
#include "solver/kernel/move.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Several small moves in a row, each committed, and judged as one against the state before the first: the search may
/// pass through a worse or infeasible state on the way to a better one. A negative verdict is carried out by a further
/// move that restores the decisions, since what is committed can't be rolled back.
///
/// Invariant: `applied` and `touched` hold something between `apply` and `conclude` only, and `touchedBits` is
/// `touched` as a set; no decision changes twice in one sequence. The sub-moves and their weights never change.
class MoveSequence : public Move {
 public:
  static constexpr const char* kName = "quvex::MoveSequence";

  bool relaxConstraints = true;  ///< all constraints are inactive during the sequence, so that steps may violate them
  bool skipStartCheck = true;    ///< no step is compared with the start

  /// `size` steps at most, of which those after number `nbFreeSteps` must not be worse than the state that they find.
  /// Raises when the rate is above 100.
  MoveSequence(std::uint32_t size, std::uint32_t nbFreeSteps, std::uint32_t rate, const Heuristic& owner,
               AutonomousStructure& autonomous, Dag& moveDag);

  /// Runs the steps, each of them committed or rolled back.
  [[nodiscard]] bool apply() override;
  /// Every step is evaluated and committed already.
  bool evaluateLevel(Level) override { return true; }
  bool evaluate() override { return true; }
  /// Counts; keeps the committed steps, or undoes them by a move of its own.
  void conclude(Outcome outcome) override;

  [[nodiscard]] t_value referenceObjective(std::uint32_t i) const override { return startObjectives[i]; }
  [[nodiscard]] std::uint32_t referenceNbViolated() const override { return startNbViolated; }
  [[nodiscard]] std::int64_t referenceViolation() const override { return startViolation; }
  [[nodiscard]] double costFactor() const override { return 1.0 / (2.0 * length); }

  [[nodiscard]] const std::vector<std::unique_ptr<Move>>& getFirstMoves() const { return firstMoves; }
  [[nodiscard]] const std::vector<std::unique_ptr<Move>>& getNextMoves() const { return nextMoves; }

 private:
  std::uint32_t step = 0;
  Move* current = nullptr;  ///< the sub-move of the present step
  std::vector<std::unique_ptr<Move>> firstMoves;
  std::vector<Move*> firstPool;  ///< `firstMoves`, each by its weight
  std::vector<std::unique_ptr<Move>> nextMoves;
  std::vector<Move*> nextPool;
  std::uint32_t startNbViolated = 0;
  std::int64_t startViolation = 0;
  std::vector<t_value> startObjectives;
  std::vector<Move*> applied;         ///< accepted steps
  std::vector<BooleanIndex> touched;  ///< decisions changed by accepted steps
  std::vector<bool> touchedBits;
  std::uint32_t length;
  std::uint32_t freeSteps;
  std::uint32_t targetingRate;
  AutonomousStructure& structure;
  const Heuristic& heuristic;

  void createFirstMoves();
  void createFirstMoves(std::uint32_t k);
  void createNextMoves();
  void recordStart();
  [[nodiscard]] Outcome judgeStep();
  void runStep();
  [[nodiscard]] bool touchesAgain() const;
  void noteTouched();
  void clearTouched();
  void undoSteps();

  [[nodiscard]] std::uint32_t nbObjectives() const { return heuristic.getDag().fixed.nbObjectives(); }
  /// Evaluates as far as needed whether the present step is worse than the reference of `judge`.
  [[nodiscard]] bool isStepWorse(const Move& judge);
  [[nodiscard]] bool worseThanStart() { return isStepWorse(*this); }
  [[nodiscard]] bool worseThanCommitted() { return isStepWorse(*current); }
  /// Evaluates nothing.
  [[nodiscard]] bool betterThanStart() const;
};

}  // namespace quvex
