#include "solver/move/movesequence.h"

#include <algorithm>

#include "api/qvexception.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesimplekflip.h"
#include "solver/move/moveweights.h"

namespace quvex {

namespace {

constexpr std::uint32_t kMaxFirstSize = 4;
constexpr std::uint32_t kNextWeight = 8;
constexpr std::uint32_t kAlwaysTarget = 100;

std::vector<Move*> expandByWeight(const std::vector<std::unique_ptr<Move>>& moves) {
  std::vector<Move*> pool;
  for (const auto& move : moves) pool.insert(pool.end(), move->poolWeight, move.get());
  return pool;
}

}  // namespace

MoveSequence::MoveSequence(std::uint32_t size, std::uint32_t nbFreeSteps, std::uint32_t rate, const Heuristic& owner,
                           AutonomousStructure& autonomous, Dag& moveDag)
    : Move(1, moveDag, autonomous.randomState),
      length(size),
      freeSteps(nbFreeSteps),
      targetingRate(rate),
      structure(autonomous),
      heuristic(owner) {
  judgedByCommitted = false;
  name = moveName(length, "MoveSequence");
  if (targetingRate > 100) raise<KernelException>(here<MoveSequence>(), "Targeting rate must be smaller than 100.");
  createFirstMoves();
  createNextMoves();
  firstPool = expandByWeight(firstMoves);
  nextPool = expandByWeight(nextMoves);
  startObjectives.resize(nbObjectives());
  touchedBits.resize(dag.fixed.nbBooleans);
  applied.reserve(length);
  touched.reserve(64);  // more than the steps of one sequence usually change
  recordStart();
}

void MoveSequence::createFirstMoves() {
  for (std::uint32_t k = 1; k <= kMaxFirstSize; ++k) createFirstMoves(k);
}

/// Moves that the parameters switch off still serve here. A weight of 0 makes a move that is never drawn.
void MoveSequence::createFirstMoves(std::uint32_t k) {
  const DagFixedFields& fixed = dag.fixed;
  const DagStructures& structures = structure.structures;
  const bool hasSums = !structures.sums.empty();
  const bool hasSlackSums = structures.nbSlackSums != 0;
  const auto weight = [k](const WeightsByK& weights) { return weightOf(weights, k); };
  const auto add = [this](std::unique_ptr<Move> move) { firstMoves.push_back(std::move(move)); };

  if (k <= fixed.nbOperators) add(std::make_unique<MoveKBalance>(k, weight(kBalanceWeights), structure, dag));
  if (2 * k <= fixed.nbBooleans) {
    add(std::make_unique<MoveKSwap>(k, weight(kSwapWeights), targetingRate, structure, dag));
  }
  if (k <= structures.freeDecisions.size()) {
    add(std::make_unique<MoveKFlip>(k, weight(kFlipWeights), targetingRate, structure, dag));
  }
  if (k >= 2 && hasSlackSums) add(std::make_unique<MoveKPath>(k, weight(kPathWeights), targetingRate, structure));
  if (k >= 2 && hasSums) add(std::make_unique<MoveKCycle>(k, weight(kCycleWeights), targetingRate, structure));
  if (k >= 3 && hasSums) {
    add(std::make_unique<MoveKLForkCycle>(k, 2, weight(kForkCycle2Weights), targetingRate, structure));
    add(std::make_unique<MoveKLForkCycle>(k, 3, weight(kForkCycle3Weights), targetingRate, structure));
  }
  if (k >= 3 && hasSlackSums) {
    add(std::make_unique<MoveKLForkPath>(k, 2, weight(kForkPath2Weights), targetingRate, structure));
    add(std::make_unique<MoveKLForkPath>(k, 3, weight(kForkPath3Weights), targetingRate, structure));
  }
  add(std::make_unique<MoveSimpleKFlip>(k, weight(kFlipWeights), targetingRate, structure, dag));
}

/// The later steps are repairs: single changes that targeting chooses.
void MoveSequence::createNextMoves() {
  if (!structure.structures.freeDecisions.empty()) {
    nextMoves.push_back(std::make_unique<MoveKFlip>(1, kNextWeight, kAlwaysTarget, structure, dag));
  }
  if (dag.fixed.nbBooleans != 0) {
    nextMoves.push_back(std::make_unique<MoveSimpleKFlip>(1, kNextWeight, kAlwaysTarget, structure, dag));
  }
}

bool MoveSequence::apply() {
  if (firstPool.empty() || nextPool.empty()) return false;
  applied.clear();
  touched.clear();
  if (relaxConstraints) dag.propagation.deactivateAllConstraints();
  recordStart();
  for (step = 0; step < length; ++step) {
    const std::vector<Move*>& pool = step == 0 ? firstPool : nextPool;
    current = pool[rand(randomState, static_cast<std::uint32_t>(pool.size()))];
    if (!current->apply()) {
      current->conclude(Outcome::Infeasible);
      continue;
    }
    runStep();
    if (betterThanStart()) return true;
  }
  return applied.size() >= 2;
}

void MoveSequence::recordStart() {
  startViolation = dag.propagation.committedViolation;
  startNbViolated = static_cast<std::uint32_t>(dag.propagation.committedNbViolated);
  for (std::uint32_t i = 0; i < startObjectives.size(); ++i) {
    startObjectives[i] = dag.nodeValue[dag.fixed.objectives[i]];
  }
}

void MoveSequence::runStep() {
  const Outcome outcome = judgeStep();
  if (outcome == Outcome::Accepted) {
    applied.push_back(current);
    noteTouched();
  }
  current->conclude(outcome);
}

Outcome MoveSequence::judgeStep() {
  if (touchesAgain()) return Outcome::Rejected;
  if (!current->evaluateLevel(0)) return Outcome::Infeasible;
  if (!skipStartCheck && worseThanStart()) return Outcome::Rejected;
  if (step > freeSteps && worseThanCommitted()) return Outcome::Rejected;
  return Outcome::Accepted;
}

bool MoveSequence::touchesAgain() const {
  return std::ranges::any_of(dag.propagation.touchedDecisions,
                             [this](NodeId id) { return touchedBits[dag.fixed.decisionPos[id]]; });
}

void MoveSequence::noteTouched() {
  for (const NodeId id : dag.propagation.touchedDecisions) {
    const BooleanIndex b = dag.fixed.decisionPos[id];
    touched.push_back(b);
    touchedBits[b] = true;
  }
}

void MoveSequence::clearTouched() {
  for (const BooleanIndex b : touched) touchedBits[b] = false;
  touched.clear();
}

bool MoveSequence::isStepWorse(const Move& judge) {
  current->evaluateLevel(0);
  if (judge.constraintsWorse()) return true;
  if (judge.constraintsBetter()) return false;
  for (std::uint32_t i = 0; i < nbObjectives(); ++i) {
    current->evaluateLevel(i + 1);
    if (judge.objectiveWorse(i)) return true;
    if (judge.objectiveBetter(i)) return false;
  }
  return false;
}

bool MoveSequence::betterThanStart() const {
  if (constraintsWorse()) return false;
  if (constraintsBetter()) return true;
  for (std::uint32_t i = 0; i < nbObjectives(); ++i) {
    if (objectiveWorse(i)) return false;
    if (objectiveBetter(i)) return true;
  }
  return false;
}

void MoveSequence::conclude(Outcome outcome) {
  countOutcome(outcome);
  switch (outcome) {
    case Outcome::Rejected:
    case Outcome::Infeasible:
      undoSteps();
      break;
    case Outcome::Accepted:
    case Outcome::Improved:
      clearTouched();
      break;
    default:
      return;
  }
  if (startNbViolated == 0) dag.propagation.activateAllConstraints();
}

void MoveSequence::undoSteps() {
  for (const BooleanIndex b : touched) dag.flip(dag.fixed.decisionList[b]);
  clearTouched();
  Move::evaluate();
  dag.propagation.commitAll(dag);
}

}  // namespace quvex
