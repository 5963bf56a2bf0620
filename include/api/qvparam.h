#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "solver/kernel/types.h"

namespace quvex {

class Quvex;
struct Place;

/// The parameters of the search: a few named ones, one bound per objective, and a free map of advanced integers.
/// Limits of time and iterations belong to phases.
/// Invariant: once the model has been closed, there is one bound and one recorded type per objective of that model.
class QVParam {
 public:
  static constexpr const char* kName = "quvex::QVParam";

  explicit QVParam(Quvex* owningQuvex) : owner(owningQuvex) {}
  QVParam(const QVParam&) = delete;
  QVParam& operator=(const QVParam&) = delete;

  [[nodiscard]] Quvex* getQuvex() const;  // rule: NotRunning

  /// Seconds between two progress lines, 1 to 65535. Default 1.
  void setTimeBetweenDisplays(int timeBetweenDisplays);  // rule: StoppedOnly
  [[nodiscard]] int getTimeBetweenDisplays() const;      // rule: PausedOrStopped

  /// Start of all random draws, at least 0. Default 0.
  void setSeed(int seed);             // rule: StoppedOnly
  [[nodiscard]] int getSeed() const;  // rule: PausedOrStopped

  /// Number of search threads, 1 to 1024. Default 2.
  void setNbThreads(int nbThreads);        // rule: StoppedOnly
  [[nodiscard]] int getNbThreads() const;  // rule: PausedOrStopped

  /// 0 is a pure descent; higher levels, up to 9, accept more. Default 1.
  void setAnnealingLevel(int annealingLevel);   // rule: StoppedOnly
  [[nodiscard]] int getAnnealingLevel() const;  // rule: PausedOrStopped

  /// 0 prints nothing; at least 1 prints the description, progress and the result. Default 1.
  void setVerbosity(int verbosity);        // rule: StoppedOnly
  [[nodiscard]] int getVerbosity() const;  // rule: PausedOrStopped

  /// A value at which a boolean or integer objective is good enough: the search ends when all objectives are at
  /// their bounds. The extreme integers mean that there is no bound.
  void setObjectiveBound(int index, std::int64_t bound);             // rule: StoppedOnly
  void setIntObjectiveBound(int index, std::int64_t bound);          // rule: StoppedOnly
  [[nodiscard]] std::int64_t getObjectiveBound(int index) const;     // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getIntObjectiveBound(int index) const;  // rule: PausedOrStopped
  /// The same for a double objective; infinities mean that there is no bound.
  void setDoubleObjectiveBound(int index, double bound);          // rule: StoppedOnly
  [[nodiscard]] double getDoubleObjectiveBound(int index) const;  // rule: PausedOrStopped

  /// Any name may be stored; only what the system knows has an effect.
  void setAdvancedParam(const std::string& key, int value);  // rule: NotRunning
  /// Fails unless the caller has set the key.
  [[nodiscard]] int getAdvancedParam(const std::string& key) const;                    // rule: PausedOrStopped
  [[nodiscard]] int getAdvancedParam(const std::string& key, int defaultValue) const;  // rule: PausedOrStopped

  [[nodiscard]] std::string toString() const;  // rule: NotRunning

 private:
  friend class HeuristicPool;
  friend class QVModel;
  friend struct ModelAccess;

  /// One bound per objective of the model being closed. A bound survives a reopening as long as its type stays.
  void initObjectiveBounds();
  [[nodiscard]] bool hasBound(std::size_t index) const;
  [[nodiscard]] std::string boundToString(std::size_t index) const;
  [[nodiscard]] int totalTimeLimit() const;
  [[nodiscard]] std::int64_t totalIterationLimit() const;
  /// An objective whose type shares no bit with `types` is refused.
  void checkObjective(int index, ValueType types, const Place& place) const;

  Quvex* owner;
  int seed = 0;
  int nbThreads = 2;
  std::uint32_t annealingLevel = 1;
  int timeBetweenDisplays = 1;
  int verbosity = 1;
  // Limits moved to the phases; the record keeps its shape.
  [[maybe_unused]] std::int64_t reservedIterationLimit = kNoIterationLimit;
  [[maybe_unused]] int reservedTimeLimit = kNoTimeLimit;
  std::vector<t_value> objectiveBounds;
  std::vector<ValueType> objectiveTypes;
  std::map<std::string, int> advancedParams;
};

}  // namespace quvex
