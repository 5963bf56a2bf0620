#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "solver/kernel/types.h"

namespace quvex {

class Quvex;
class QVStatistics;

/// One stage of a solve: limits, and the objective up to which it optimises. The limits of all phases up to this one
/// add up, and a phase gets what its predecessors have left.
/// Invariant: the limits are positive, and the objective is one that the model had when it was set.
class QVPhase {
 public:
  static constexpr const char* kName = "quvex::QVPhase";

  explicit QVPhase(Quvex* owningQuvex);  // rule: StoppedOnly
  ~QVPhase();
  QVPhase(const QVPhase&) = delete;
  QVPhase& operator=(const QVPhase&) = delete;

  [[nodiscard]] Quvex* getQuvex() const;  // rule: StoppedOnly

  /// Seconds, at least 1. Default 2147483647, which means no limit.
  void setTimeLimit(int timeLimit);        // rule: StoppedOnly
  [[nodiscard]] int getTimeLimit() const;  // rule: PausedOrStopped

  /// Iterations of each thread, at least 1. Default 9223372036854775807, which means no limit.
  void setIterationLimit(std::int64_t iterationLimit);   // rule: StoppedOnly
  [[nodiscard]] std::int64_t getIterationLimit() const;  // rule: PausedOrStopped

  /// Index of the last objective that counts in this phase; those before it matter more. Default: the last one.
  void setOptimizedObjective(int index);            // rule: StoppedOnly
  [[nodiscard]] int getOptimizedObjective() const;  // rule: PausedOrStopped

  /// What this phase did in the last solve.
  [[nodiscard]] QVStatistics* getStatistics();  // rule: PausedOrStopped

  [[nodiscard]] std::string toString() const;  // rule: none

 private:
  friend class QVParam;
  friend class QVStatistics;
  friend class Quvex;
  friend struct ModelAccess;

  Quvex* owner;
  std::unique_ptr<QVStatistics> statistics;
  int timeLimit = kNoTimeLimit;
  std::int64_t iterationLimit = kNoIterationLimit;
  int optimizedObjective = 0;
};

}  // namespace quvex
