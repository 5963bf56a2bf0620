#include "api/qvparam.h"

#include <cmath>
#include <limits>
#include <sstream>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvphase.h"
#include "api/statecheck.h"

namespace quvex {

namespace {

constexpr int kMaxTimeBetweenDisplays = 65535;
constexpr int kMaxNbThreads = 1024;
constexpr std::uint32_t kMaxAnnealingLevel = 9;
constexpr ValueType kIntegral = kBoolean | kInteger;

/// The bound that no value of the objective reaches.
t_value unreachableBound(ValueType type, QVObjectiveDirection direction) {
  const bool maximize = direction == QVObjectiveDirection::Maximize;
  if (type == kDouble) return doubleToWord(maximize ? kInfinity : -kInfinity);
  return maximize ? kHighestInt : kLowestInt;
}

}  // namespace

Quvex* QVParam::getQuvex() const {
  checkState(*owner, StateRule::NotRunning, here<QVParam>());
  return owner;
}

void QVParam::setTimeBetweenDisplays(int seconds) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (seconds < 1) raise<QVException>(place, "Argument timeBetweenDisplays must be a strictly positive number.");
  if (seconds > kMaxTimeBetweenDisplays) {
    raise<QVException>(place, "The time between displays cannot exceed ", kMaxTimeBetweenDisplays, ".");
  }
  timeBetweenDisplays = seconds;
}

int QVParam::getTimeBetweenDisplays() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  return timeBetweenDisplays;
}

void QVParam::setSeed(int newSeed) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (newSeed < 0) raise<QVException>(place, "Argument seed must be a positive number.");
  seed = newSeed;
}

int QVParam::getSeed() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  return seed;
}

void QVParam::setNbThreads(int count) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (count < 1) raise<QVException>(place, "Argument nbThreads must be a strictly positive number.");
  if (count > kMaxNbThreads) raise<QVException>(place, "The number of threads cannot exceed ", kMaxNbThreads, ".");
  nbThreads = count;
}

int QVParam::getNbThreads() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  return nbThreads;
}

void QVParam::setAnnealingLevel(int level) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  const auto unsignedLevel = static_cast<std::uint32_t>(level);
  if (unsignedLevel > kMaxAnnealingLevel) {
    raise<QVException>(place, "The annealing level size must be an integer between 0 and 9.");
  }
  annealingLevel = unsignedLevel;
}

int QVParam::getAnnealingLevel() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  return static_cast<int>(annealingLevel);
}

void QVParam::setVerbosity(int level) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  if (level < 0) raise<QVException>(place, "Argument verbosity must be a positive number.");
  verbosity = level;
}

int QVParam::getVerbosity() const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  return verbosity;
}

void QVParam::checkObjective(int index, ValueType types, const Place& place) const {
  checkIndex("objective", index, objectiveTypes.size(), place);
  checkType(objectiveTypes[static_cast<std::size_t>(index)], types, place);
}

void QVParam::setObjectiveBound(int index, std::int64_t bound) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  checkObjective(index, kIntegral, place);
  objectiveBounds[static_cast<std::size_t>(index)] = bound;
}

void QVParam::setIntObjectiveBound(int index, std::int64_t bound) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  checkObjective(index, kIntegral, place);
  objectiveBounds[static_cast<std::size_t>(index)] = bound;
}

void QVParam::setDoubleObjectiveBound(int index, double bound) {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::StoppedOnly, place);
  checkObjective(index, kDouble, place);
  checkNotNan(bound, place);
  objectiveBounds[static_cast<std::size_t>(index)] = doubleToWord(bound);
}

std::int64_t QVParam::getObjectiveBound(int index) const {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::PausedOrStopped, place);
  checkObjective(index, kIntegral, place);
  return objectiveBounds[static_cast<std::size_t>(index)];
}

std::int64_t QVParam::getIntObjectiveBound(int index) const {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::PausedOrStopped, place);
  checkObjective(index, kIntegral, place);
  return objectiveBounds[static_cast<std::size_t>(index)];
}

double QVParam::getDoubleObjectiveBound(int index) const {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::PausedOrStopped, place);
  checkObjective(index, kDouble, place);
  return wordToDouble(objectiveBounds[static_cast<std::size_t>(index)]);
}

void QVParam::setAdvancedParam(const std::string& key, int value) {
  checkState(*owner, StateRule::NotRunning, here<QVParam>());
  advancedParams[key] = value;
}

int QVParam::getAdvancedParam(const std::string& key) const {
  const Place place = here<QVParam>();
  checkState(*owner, StateRule::PausedOrStopped, place);
  const auto found = advancedParams.find(key);
  if (found == advancedParams.end()) raise<QVException>(place, "Advanced parameter '", key, "' does not exist.");
  return found->second;
}

int QVParam::getAdvancedParam(const std::string& key, int defaultValue) const {
  checkState(*owner, StateRule::PausedOrStopped, here<QVParam>());
  const auto found = advancedParams.find(key);
  return found == advancedParams.end() ? defaultValue : found->second;
}

void QVParam::initObjectiveBounds() {
  const QVModel& model = *owner->model;
  const std::size_t nbObjectives = ModelAccess::objectives(model).size();
  objectiveBounds.resize(nbObjectives, 0);
  objectiveTypes.resize(nbObjectives, 0);
  for (std::size_t i = 0; i < nbObjectives; ++i) {
    const QVExpression& objective = *ModelAccess::objectives(model)[i];
    const ValueType type = ModelAccess::valueType(objective);
    if (ModelAccess::isConstant(objective)) {
      objectiveBounds[i] = ModelAccess::constantValue(objective);
    } else if (type != objectiveTypes[i]) {
      objectiveBounds[i] = unreachableBound(type, ModelAccess::objectiveDirection(model, i));
    }
    objectiveTypes[i] = type;
  }
}

bool QVParam::hasBound(std::size_t index) const {
  if (index >= objectiveBounds.size()) return false;
  const t_value cell = objectiveBounds[index];
  if (objectiveTypes[index] == kDouble) return !std::isinf(wordToDouble(cell));
  return cell != kLowestInt && cell != kHighestInt;
}

int QVParam::totalTimeLimit() const {
  return owner->phases.empty() ? kNoTimeLimit : owner->timeLimitUpTo(owner->phases.size());
}

std::int64_t QVParam::totalIterationLimit() const {
  return owner->phases.empty() ? kNoIterationLimit : owner->iterationLimitUpTo(owner->phases.size());
}

std::string QVParam::boundToString(std::size_t index) const {
  if (!hasBound(index)) return "no bound";
  std::ostringstream text;
  text << "bound = ";
  if (objectiveTypes[index] == kDouble) {
    text << wordToDouble(objectiveBounds[index]);
  } else {
    text << objectiveBounds[index];
  }
  return text.str();
}

std::string QVParam::toString() const {
  checkState(*owner, StateRule::NotRunning, here<QVParam>());
  std::ostringstream text;
  text << "Param: \n";
  if (totalTimeLimit() >= kNoTimeLimit) {
    text << "  no time limit, ";
  } else {
    text << "  time limit = " << totalTimeLimit() << " sec, ";
  }
  if (totalIterationLimit() >= kNoIterationLimit) {
    text << "no iteration limit\n";
  } else {
    text << "iteration limit = " << totalIterationLimit() << "\n";
  }
  text << "  seed = " << seed << ", nb threads = " << nbThreads << ", annealing level = " << annealingLevel << "\n\n";

  text << "Objectives:\n";
  const auto& directions = ModelAccess::objectiveDirections(*owner->model);
  for (std::size_t i = 0; i < directions.size(); ++i) {
    text << "  Obj " << i << ": " << (directions[i] == QVObjectiveDirection::Maximize ? "maximize" : "minimize") << ", "
         << boundToString(i) << "\n";
  }

  if (advancedParams.empty()) return text.str();
  text << "\nAdvanced params:\n";
  for (const auto& [key, value] : advancedParams) text << "  " << key << " = " << value << "\n";
  return text.str();
}

}  // namespace quvex
