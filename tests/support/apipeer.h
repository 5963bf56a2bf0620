#pragma once

#include <cstdint>

#include "api/heuristicpool.h"
#include "api/quvex.h"
#include "api/qvstatistics.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/parallelizer.h"

namespace quvex {

/// What tests see and set behind the public objects.
struct ApiPeer {
  static Heuristic& heuristic(Quvex& quvex, std::size_t thread) {
    return *quvex.heuristicPools[thread]->getHeuristic();
  }
  static std::uint32_t timeLimit(const Heuristic& heuristic) {
    struct Reader : Heuristic {
      static std::uint32_t read(const Heuristic& of) { return of.*(&Reader::timeLimit); }
    };
    return Reader::read(heuristic);
  }
  /// Lets a test run the heuristic on its own thread.
  static void detachParallelizer(Quvex& quvex, std::size_t thread) {
    heuristic(quvex, thread).removeCallback(quvex.parallelizer.get());
  }
  static std::size_t nbPools(const Quvex& quvex) { return quvex.heuristicPools.size(); }
  static bool isStopRequested(const Quvex& quvex) { return quvex.stopRequested; }
  static void setState(Quvex& quvex, QVState state) { quvex.setState(state); }
  static bool wasStarted(const Quvex& quvex) { return quvex.wasStarted(); }

  static void setRunningTime(QVStatistics& statistics, int seconds) { statistics.runningTime = seconds; }
  static void setMoves(QVStatistics& statistics, std::int64_t moves, std::int64_t accepted, std::int64_t improving,
                       std::int64_t infeasible) {
    statistics.nbMoves = moves;
    statistics.nbAcceptedMoves = accepted;
    statistics.nbImprovingMoves = improving;
    statistics.nbInfeasibleMoves = infeasible;
  }
  static void refresh(QVStatistics& statistics) { statistics.refresh(); }
};

}  // namespace quvex
