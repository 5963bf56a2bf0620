#include "api/qvphase.h"

#include <sstream>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvstatistics.h"
#include "api/statecheck.h"

namespace quvex {

QVPhase::QVPhase(Quvex* owningQuvex) : owner(owningQuvex) {
  checkState(*owner, StateRule::StoppedOnly, here<QVPhase>());
  statistics = std::make_unique<QVStatistics>(owner, this);
  optimizedObjective = owner->getModel()->getNbObjectives() - 1;
}

QVPhase::~QVPhase() = default;

Quvex* QVPhase::getQuvex() const {
  checkState(*owner, StateRule::StoppedOnly, here<QVPhase>());
  return owner;
}

void QVPhase::setTimeLimit(int limit) {
  const Place place = here<QVPhase>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (limit < 1) raise<QVException>(place, "Argument timeLimit must be a strictly positive number.");
  timeLimit = limit;
}

int QVPhase::getTimeLimit() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVPhase>());
  return timeLimit;
}

void QVPhase::setIterationLimit(std::int64_t limit) {
  const Place place = here<QVPhase>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (limit < 1) raise<QVException>(place, "Argument iterationLimit must be a strictly positive number.");
  iterationLimit = limit;
}

std::int64_t QVPhase::getIterationLimit() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVPhase>());
  return iterationLimit;
}

void QVPhase::setOptimizedObjective(int index) {
  const Place place = here<QVPhase>();
  checkState(*owner, StateRule::StoppedOnly, place);
  checkIndex("objective", index, ModelAccess::objectives(*owner->getModel()).size(), place);
  optimizedObjective = index;
}

int QVPhase::getOptimizedObjective() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVPhase>());
  return optimizedObjective;
}

QVStatistics* QVPhase::getStatistics() {
  checkState(*owner, StateRule::PausedOrStopped, here<QVPhase>());
  return statistics.get();
}

std::string QVPhase::toString() const {
  std::ostringstream text;
  if (timeLimit == kNoTimeLimit) {
    text << "no time limit";
  } else {
    text << "time limit = " << timeLimit << " sec";
  }
  text << ", ";
  if (iterationLimit >= kNoIterationLimit) {
    text << "no iteration limit";
  } else {
    text << "iteration limit = " << iterationLimit;
  }
  text << ", optimized objective = " << optimizedObjective;
  return text.str();
}

}  // namespace quvex
