#include "api/heuristicpool.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvparam.h"
#include "builder/dagbuilder.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/heuristicdescent.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/dagstructures.h"
#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movefilter.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesimplekflip.h"
#include "solver/move/moveweights.h"

namespace quvex {

namespace {

/// What a row looks at, and what its move works on.
struct Workplace {
  Dag& dag;
  AutonomousStructure& structure;
  std::uint32_t rate;

  [[nodiscard]] const DagStructures& sums() const { return structure.structures; }
};

/// One family of moves: its switch, when it has something to work on, how often each size is drawn, how it is made.
struct MoveRow {
  const char* parameter;
  bool (*fits)(const Workplace& at, std::uint32_t k);
  const WeightsByK& weights;
  std::unique_ptr<Move> (*make)(const Workplace& at, std::uint32_t k, std::uint32_t weight);
};

bool fitsOperators(const Workplace& at, std::uint32_t k) { return k <= at.dag.fixed.nbOperators; }
bool fitsPairs(const Workplace& at, std::uint32_t k) { return 2 * k <= at.dag.fixed.nbBooleans; }
bool fitsFreeDecisions(const Workplace& at, std::uint32_t k) { return k <= at.sums().freeDecisions.size(); }
bool fitsPath(const Workplace& at, std::uint32_t k) { return k >= 2 && at.sums().nbSlackSums != 0; }
bool fitsCycle(const Workplace& at, std::uint32_t k) { return k >= 2 && !at.sums().sums.empty(); }
bool fitsEqualities(const Workplace& at, std::uint32_t k) { return k >= 2 && at.sums().nbEqualitySums() >= k; }
bool fitsForkPath(const Workplace& at, std::uint32_t k) { return k >= 3 && at.sums().nbSlackSums > 0; }
bool fitsForkCycle(const Workplace& at, std::uint32_t k) { return k >= 3 && !at.sums().sums.empty(); }

std::unique_ptr<Move> makeBalance(const Workplace& at, std::uint32_t k, std::uint32_t weight) {
  return std::make_unique<MoveKBalance>(k, weight, at.structure, at.dag);
}
template <class Flip>
std::unique_ptr<Move> makeFlip(const Workplace& at, std::uint32_t k, std::uint32_t weight) {
  return std::make_unique<Flip>(k, weight, at.rate, at.structure, at.dag);
}
template <class Chain>
std::unique_ptr<Move> makeChain(const Workplace& at, std::uint32_t k, std::uint32_t weight) {
  return std::make_unique<Chain>(k, weight, at.rate, at.structure);
}
template <class Fork, std::uint32_t NbForks>
std::unique_ptr<Move> makeFork(const Workplace& at, std::uint32_t k, std::uint32_t weight) {
  return std::make_unique<Fork>(k, NbForks, weight, at.rate, at.structure);
}

constexpr MoveRow kMoveRows[] = {
    {"moveBalanceEnabled", fitsOperators, kBalanceWeights, makeBalance},
    {"moveSwapEnabled", fitsPairs, kSwapWeights, makeFlip<MoveKSwap>},
    {"moveFlipEnabled", fitsFreeDecisions, kFlipWeights, makeFlip<MoveKFlip>},
    {"movePathEnabled", fitsPath, kPathWeights, makeChain<MoveKPath>},
    {"moveCycleEnabled", fitsCycle, kCycleWeights, makeChain<MoveKCycle>},
    {"moveRollEnabled", fitsEqualities, kRollWeights, makeChain<MoveKRoll>},
    {"moveMirrorEnabled", fitsEqualities, kMirrorWeights, makeChain<MoveKMirror>},
    {"moveForkCycleEnabled", fitsForkCycle, kForkCycle2Weights, makeFork<MoveKLForkCycle, 2>},
    {"moveForkCycleEnabled", fitsForkCycle, kForkCycle3Weights, makeFork<MoveKLForkCycle, 3>},
    {"moveForkPathEnabled", fitsForkPath, kForkPath2Weights, makeFork<MoveKLForkPath, 2>},
    {"moveForkPathEnabled", fitsForkPath, kForkPath3Weights, makeFork<MoveKLForkPath, 3>},
};

struct SequenceShape {
  std::uint32_t length;
  std::uint32_t freeSteps;
};
constexpr SequenceShape kSequences[] = {{2, 0}, {3, 1}, {4, 2}};

struct RepairShape {
  std::uint32_t maxSteps;
  std::uint32_t maxFlips;
  std::uint32_t violationSlack;
};
constexpr RepairShape kRepairs[] = {{2, 2, 1}, {3, 3, 1}, {4, 4, 2}};

/// The moves that repair by simulation.
template <class Repair>
void addRepairs(Heuristic& heuristic, const Workplace& at) {
  for (const auto& [maxSteps, maxFlips, violationSlack] : kRepairs) {
    heuristic.addMove(std::make_unique<Repair>(at.rate, maxSteps, maxFlips, violationSlack, at.structure, at.dag));
  }
}

}  // namespace

HeuristicPool::HeuristicPool(Quvex* owningQuvex, Dag& threadDag, RandomState seed)
    : quvex(owningQuvex), dag(threadDag) {
  createHeuristic();
  const DagBuilder& builder = *ModelAccess::dagBuilder(*quvex->model);
  structure = std::make_unique<AutonomousStructure>(dag, seed, builder.getStructures());
  createFilter();
  heuristic->seed = seed;
  addMoves();
  copyObjectiveBounds();
}

HeuristicPool::~HeuristicPool() = default;

int HeuristicPool::parameter(const char* key, int defaultValue) const {
  return quvex->param->getAdvancedParam(key, defaultValue);
}

void HeuristicPool::createHeuristic() {
  const std::uint32_t annealingLevel = quvex->param->annealingLevel;
  if (annealingLevel == 0) {
    heuristic = std::make_unique<HeuristicDescent>(dag);
    return;
  }
  auto annealing = std::make_unique<HeuristicAutoAnnealing>(dag);
  annealing->setMemorySize(annealingLevel + 1);
  heuristic = std::move(annealing);
}

void HeuristicPool::createFilter() {
  filter = std::make_unique<MoveFilter>(*heuristic, isEnabled("moveExplorationEnabled"));
  heuristic->addCallback(filter.get());
}

void HeuristicPool::addMoves() {
  const std::uint32_t rate = 10U * static_cast<std::uint32_t>(parameter("targetingLevel", 5));
  // Whatever the model: the search can always go on.
  heuristic->addMove(std::make_unique<MoveSimpleKFlip>(1, 1, rate, *structure, dag));
  const int largestSize = std::min(parameter("neighborhoodSize", 8), kLargestWeightedSize);
  for (int k = 1; k <= largestSize; ++k) addMovesOfSize(static_cast<std::uint32_t>(k), rate);
  if (isEnabled("advancedMovesEnabled")) addAdvancedMoves(rate);
}

void HeuristicPool::addMovesOfSize(std::uint32_t k, std::uint32_t rate) {
  const Workplace at{dag, *structure, rate};
  for (const MoveRow& row : kMoveRows) {
    const std::uint32_t weight = weightOf(row.weights, k);
    if (weight > 0 && isEnabled(row.parameter) && row.fits(at, k)) heuristic->addMove(row.make(at, k, weight));
  }
}

void HeuristicPool::addAdvancedMoves(std::uint32_t rate) {
  if (isEnabled("moveSequenceEnabled")) {
    for (const auto& [length, freeSteps] : kSequences) {
      heuristic->addMove(std::make_unique<MoveSequence>(length, freeSteps, rate, *heuristic, *structure, dag));
    }
  }
  if (structure->dynamicNodes.empty()) return;
  const Workplace at{dag, *structure, rate};
  if (isEnabled("moveBinPackingEnabled")) addRepairs<MoveBinPacking>(*heuristic, at);
  if (isEnabled("moveEjectionChainEnabled")) addRepairs<MoveEjectionChain>(*heuristic, at);
}

void HeuristicPool::copyObjectiveBounds() {
  const auto& bounds = quvex->param->objectiveBounds;
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    heuristic->setObjectiveBound(static_cast<std::uint32_t>(i), bounds[i]);
  }
}

}  // namespace quvex
