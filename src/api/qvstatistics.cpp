#include "api/qvstatistics.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <sstream>

#include "api/heuristicpool.h"
#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvphase.h"
#include "api/statecheck.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/move.h"

namespace quvex {

namespace {

double roundUpToTenth(double percent) { return std::ceil(percent * 10.0) / 10.0; }

}  // namespace

Quvex* QVStatistics::getQuvex() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return owner;
}

int QVStatistics::getRunningTime() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return runningTime;
}

std::int64_t QVStatistics::getNbIterations() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbIterations;
}

std::int64_t QVStatistics::getNbMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbMoves;
}

std::int64_t QVStatistics::getNbAcceptedMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbAcceptedMoves;
}

std::int64_t QVStatistics::getNbImprovingMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbImprovingMoves;
}

std::int64_t QVStatistics::getNbInfeasibleMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbInfeasibleMoves;
}

std::int64_t QVStatistics::getNbRejectedMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return nbMoves - nbAcceptedMoves;
}

double QVStatistics::percentOfMoves(double count) const {
  return nbMoves == 0 ? 0.0 : count * 100.0 / static_cast<double>(nbMoves);
}

double QVStatistics::getPercentAcceptedMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return percentOfMoves(static_cast<double>(nbAcceptedMoves));
}

double QVStatistics::getPercentImprovingMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return percentOfMoves(static_cast<double>(nbImprovingMoves));
}

double QVStatistics::getPercentRejectedMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return percentOfMoves(static_cast<double>(nbMoves) - static_cast<double>(nbAcceptedMoves));
}

double QVStatistics::getPercentInfeasibleMoves() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  return percentOfMoves(static_cast<double>(nbInfeasibleMoves));
}

std::string QVStatistics::toString() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVStatistics>());
  // The accepted figures stand under all four labels; the getters tell the others.
  std::ostringstream figures;
  figures << nbAcceptedMoves << " (" << percentOfMoves(static_cast<double>(nbAcceptedMoves)) << "%)";
  std::ostringstream text;
  text << "running time = " << runningTime << " sec, nb iterations = " << nbIterations << ", nb moves = " << nbMoves
       << "\n";
  text << "accepted = " << figures.str() << ", improving = " << figures.str() << "\n";
  text << "rejected = " << figures.str() << ", infeasible = " << figures.str() << "\n";
  return text.str();
}

std::string QVStatistics::getInfo() const {
  const Place place = here<QVStatistics>();
  if (!owner->wasStarted()) {
    raise<QVException>(place, "This method cannot be called if the solver has not been started at least once.");
  }
  checkState(*owner, StateRule::PausedOrStopped, place);

  std::ostringstream text;
  const auto writeShare = [&text](const char* label, double percent) {
    text << label;
    if (percent > 0.1) {
      text << " = " << percent << "%, ";
    } else {
      text << " < 0.1%, ";
    }
  };
  text << "mov = " << nbMoves << ", ";
  writeShare("inf", roundUpToTenth(percentOfMoves(static_cast<double>(nbInfeasibleMoves))));
  writeShare("acc", roundUpToTenth(percentOfMoves(static_cast<double>(nbAcceptedMoves))));
  text << "imp = " << nbImprovingMoves;
  return text.str();
}

void QVStatistics::reset() {
  runningTime = 0;
  nbIterations = 0;
  nbMoves = 0;
  nbAcceptedMoves = 0;
  nbImprovingMoves = 0;
  nbInfeasibleMoves = 0;
}

void QVStatistics::refresh() {
  if (phase != nullptr) {
    refreshFromHeuristics();
  } else {
    refreshFromPhases();
  }
}

void QVStatistics::refreshFromHeuristics() {
  reset();
  runningTime = std::numeric_limits<int>::max();
  nbIterations = std::numeric_limits<std::int64_t>::max();
  const std::int64_t now = std::time(nullptr);
  for (const auto& pool : owner->heuristicPools) {
    const Heuristic& heuristic = *pool->getHeuristic();
    runningTime = std::min(runningTime, static_cast<int>(now - heuristic.startTime));
    // The candidate is judged by its low 32 bits, as a signed number, and kept in full.
    const auto iterations = static_cast<std::int64_t>(heuristic.iterations);
    if (static_cast<std::int32_t>(iterations) < nbIterations) nbIterations = iterations;
    nbMoves += iterations;
    for (const auto& move : heuristic.moves) {
      nbAcceptedMoves += static_cast<std::int64_t>(move->nbAccepted);
      nbImprovingMoves += static_cast<std::int64_t>(move->nbImprovements);
      nbInfeasibleMoves += static_cast<std::int64_t>(move->nbInfeasibles);
    }
  }
}

void QVStatistics::refreshFromPhases() {
  reset();
  for (const auto& each : owner->phases) {
    const QVStatistics& figures = *each->statistics;
    runningTime += figures.runningTime;
    nbIterations += figures.nbIterations;
    nbMoves += figures.nbMoves;
    nbAcceptedMoves += figures.nbAcceptedMoves;
    nbImprovingMoves += figures.nbImprovingMoves;
    nbInfeasibleMoves += figures.nbInfeasibleMoves;
  }
}

}  // namespace quvex
