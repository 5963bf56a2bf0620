#include "solver/kernel/move.h"

#include <array>
#include <ostream>

#include "api/qvexception.h"
#include "solver/kernel/node.h"

namespace quvex {

namespace {

/// One entry of the virtual array of a shuffle that no longer holds its own index.
struct Displaced {
  std::uint32_t position;
  std::uint32_t value;
};

/// The shuffle with room for k displaced entries.
void shuffleWith(Displaced* displaced, RandomState& state, std::uint32_t n, std::vector<std::uint32_t>& out) {
  std::uint32_t nbDisplaced = 0;
  const auto find = [&](std::uint32_t position) {
    std::uint32_t i = 0;
    while (i < nbDisplaced && displaced[i].position != position) ++i;
    return i;
  };
  std::uint32_t m = n;
  for (std::uint32_t& drawn : out) {
    const std::uint32_t r = rand(state, m);
    --m;
    const std::uint32_t last = find(m);
    const std::uint32_t lastValue = last < nbDisplaced ? displaced[last].value : m;
    const std::uint32_t slot = find(r);
    drawn = slot < nbDisplaced ? displaced[slot].value : r;
    displaced[slot] = {r, lastValue};
    if (slot == nbDisplaced) ++nbDisplaced;
  }
}

}  // namespace

Move::Move(std::uint32_t weight, Dag& moveDag, RandomState& state)
    : poolWeight(weight), dag(moveDag), randomState(state) {
  if (!dag.initialized) raise<KernelException>(here<Move>(), "Cannot create a move with an unitialized dag");
}

bool Move::evaluateLevel(Level stage) {
  return dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, stage);
}

bool Move::evaluate() {
  const Level stage = dag.propagation.optimizedLevel;
  return dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, stage);
}

void Move::countOutcome(Outcome outcome) {
  ++nbAttempted;
  switch (outcome) {
    case Outcome::Rejected:
      ++nbRejected;
      return;
    case Outcome::Infeasible:
      ++nbInfeasibles;
      return;
    case Outcome::Improved:
      ++nbImprovements;
      [[fallthrough]];
    case Outcome::Accepted:
      ++nbAccepted;
      return;
  }
}

void Move::conclude(Outcome outcome) {
  countOutcome(outcome);
  switch (outcome) {
    case Outcome::Rejected:
    case Outcome::Infeasible:
      dag.propagation.rollbackAll(dag);
      return;
    case Outcome::Accepted:
    case Outcome::Improved:
      dag.propagation.commitAll(dag);
      return;
  }
}

t_value Move::referenceObjective(std::uint32_t i) const { return committedObjective(i); }

std::uint32_t Move::referenceNbViolated() const {
  return static_cast<std::uint32_t>(dag.propagation.committedNbViolated);
}

std::int64_t Move::referenceViolation() const { return dag.propagation.committedViolation; }

void Move::resetStatistics() { nbAttempted = nbAccepted = nbRejected = nbImprovements = nbInfeasibles = 0; }

void Move::printStatistics(std::ostream& stream) const {
  stream << "Move :" << name << std::endl;
  stream << "NbImprovements : " << nbImprovements << std::endl;
  stream << "NbAccepted : " << nbAccepted << std::endl;
  stream << "NbRejected : " << nbRejected << std::endl;
  stream << "NbInfeasibles : " << nbInfeasibles << std::endl;
  stream << "NbAttempted : " << nbAttempted << std::endl;
}

bool Move::constraintsWorse() const {
  return static_cast<std::uint32_t>(dag.propagation.tentativeNbViolated) > referenceNbViolated() ||
         dag.propagation.tentativeViolation > referenceViolation();
}

bool Move::constraintsBetter() const {
  return static_cast<std::uint32_t>(dag.propagation.tentativeNbViolated) <= referenceNbViolated() &&
         dag.propagation.tentativeViolation < referenceViolation();
}

bool Move::objectiveWorse(std::uint32_t i) const { return isWorse(dag, i, referenceObjective(i)); }

bool Move::objectiveBetter(std::uint32_t i) const { return isBetter(dag, i, referenceObjective(i)); }

NodeId Move::drawTargetAt(std::uint32_t rate) {
  NodeId decision = kNone;
  return rand(randomState, 100) < rate && pickTarget(dag, randomState, decision) ? decision : kNone;
}

std::string moveName(std::uint32_t size, std::string_view word) {
  return std::to_string(size) + "-" + std::string(word);
}

std::string moveName(std::uint32_t size, std::uint32_t forks, std::string_view word) {
  return std::to_string(size) + "-" + moveName(forks, word);
}

void sampleDistinct(RandomState& state, std::uint32_t n, std::uint32_t k, std::vector<std::uint32_t>& out) {
  constexpr std::uint32_t kUsualSize = 16;  // twice what the default neighbourhoods ask for
  out.resize(k);
  if (k <= kUsualSize) {
    std::array<Displaced, kUsualSize> displaced;
    shuffleWith(displaced.data(), state, n, out);
    return;
  }
  std::vector<Displaced> displaced(k);
  shuffleWith(displaced.data(), state, n, out);
}

bool pickTarget(const Dag& dag, RandomState& state, NodeId& decision) {
  const Propagation& propagation = dag.propagation;
  int delta = 0;
  if (propagation.committedNbViolated > 0) {
    const IndexedSet& violated = propagation.violatedConstraints;
    const NodeId constraint = dag.fixed.constraints[violated[rand(state, violated.size())]];
    return dag.nodes[constraint]->pickIncrease(dag, state, decision, delta, constraint);
  }
  if (propagation.optimizedLevel == 0) return false;
  const std::uint32_t i = firstImprovableObjective(dag, propagation.optimizedLevel);
  if (i == kNone) return false;
  const NodeId objective = dag.fixed.objectives[i];
  const Node& node = *dag.nodes[objective];
  if (dag.fixed.objectiveDirections[i] == kMaximise) return node.pickIncrease(dag, state, decision, delta, objective);
  return node.pickDecrease(dag, state, decision, delta, objective);
}

std::uint32_t firstImprovableObjective(const Dag& dag, std::uint32_t limit) {
  for (std::uint32_t i = 0; i < limit; ++i) {
    if (isWorse(dag, i, bestBound(dag.fixed, i))) return i;
  }
  return kNone;
}

}  // namespace quvex
