#pragma once

#include <cstdint>
#include <string>

namespace quvex {

class Quvex;
class QVPhase;

/// Counters of one phase, or of a whole solve. An iteration is one of the slowest thread; a move is one iteration of
/// any thread.
/// Invariant: the global object (without a phase) is the sum of those of all phases after each refresh.
class QVStatistics {
 public:
  static constexpr const char* kName = "quvex::QVStatistics";

  /// `ownPhase` is null for the global object.
  QVStatistics(Quvex* owningQuvex, QVPhase* ownPhase) : owner(owningQuvex), phase(ownPhase) {}
  QVStatistics(const QVStatistics&) = delete;
  QVStatistics& operator=(const QVStatistics&) = delete;

  [[nodiscard]] Quvex* getQuvex() const;  // rule: PausedOrStopped

  /// Seconds of search.
  [[nodiscard]] int getRunningTime() const;                 // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getNbIterations() const;       // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getNbMoves() const;            // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getNbAcceptedMoves() const;    // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getNbImprovingMoves() const;   // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getNbInfeasibleMoves() const;  // rule: PausedOrStopped
  /// Moves that were not accepted, infeasible ones among them.
  [[nodiscard]] std::int64_t getNbRejectedMoves() const;  // rule: PausedOrStopped

  /// Shares of all moves, 0 to 100; 0 when no move was made.
  [[nodiscard]] double getPercentAcceptedMoves() const;    // rule: PausedOrStopped
  [[nodiscard]] double getPercentImprovingMoves() const;   // rule: PausedOrStopped
  [[nodiscard]] double getPercentRejectedMoves() const;    // rule: PausedOrStopped
  [[nodiscard]] double getPercentInfeasibleMoves() const;  // rule: PausedOrStopped

  [[nodiscard]] std::string toString() const;  // rule: PausedOrStopped
  /// The second half of the progress line.
  [[nodiscard]] std::string getInfo() const;  // rule: PausedOrStopped, once the solver has been started

 private:
  friend struct ApiPeer;  // the tests' view
  friend class Quvex;

  void reset();
  /// Takes the figures from the heuristics (a phase's object) or from the phases (the global object).
  void refresh();
  void refreshFromHeuristics();
  void refreshFromPhases();
  [[nodiscard]] double percentOfMoves(double count) const;

  Quvex* owner;
  QVPhase* phase;
  int runningTime = 0;
  std::int64_t nbIterations = 0;
  std::int64_t nbMoves = 0;
  std::int64_t nbAcceptedMoves = 0;
  std::int64_t nbImprovingMoves = 0;
  std::int64_t nbInfeasibleMoves = 0;
};

}  // namespace quvex
