#pragma once

#include <cstdint>
#include <memory>

#include "api/heuristicpool.h"
#include "api/modelaccess.h"
#include "builder/dagbuilder.h"
#include "quvex.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/greedysolution.h"
#include "solver/kernel/heuristic.h"

namespace bench {

/// A descent of one thread whose pool holds the flip of one decision alone, built as `solve` builds it, so that it
/// makes the same draws: the engine at its barest, and what the hand-written searches imitate.
class SingleFlips {
 public:
  template <class Problem>
  SingleFlips(const Problem& problem, quvex::RandomState seed) {
    problem.build(*quvex.getModel());
    quvex::QVParam& param = *quvex.getParam();
    for (const char* move : {"moveFlipEnabled", "moveBalanceEnabled", "moveSwapEnabled", "movePathEnabled",
                             "moveCycleEnabled", "moveRollEnabled", "moveMirrorEnabled", "moveForkCycleEnabled",
                             "moveForkPathEnabled", "advancedMovesEnabled", "moveExplorationEnabled"}) {
      param.setAdvancedParam(move, 0);
    }
    param.setAdvancedParam("targetingLevel", 0);
    quvex.getModel()->close();
    param.setAnnealingLevel(0);
    quvex::Dag& dag = getDag();
    if (!dag.propagation.allConstraintsActive() && !quvex::GreedySolution(seed).computeSolution(dag)) {
      dag.propagation.deactivateAllConstraints();
    }
    pool = std::make_unique<quvex::HeuristicPool>(&quvex, dag, quvex::scaleTo(quvex::randomStep(seed), 2147483647U));
    heuristic().setOptimizedObjective(0);
  }

  quvex::Dag& getDag() { return quvex::ModelAccess::dagBuilder(*quvex.getModel())->getDag(); }
  quvex::Heuristic& heuristic() { return *pool->getHeuristic(); }
  void run(std::uint64_t iterations) {
    heuristic().setIterationLimit(iterations);
    heuristic().run();
  }

 private:
  quvex::Quvex quvex;
  std::unique_ptr<quvex::HeuristicPool> pool;
};

}  // namespace bench
