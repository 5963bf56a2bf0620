#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "api/qvstate.h"

namespace quvex {

class Dag;
class DagBuilder;
class GreedySolution;
class HeuristicPool;
class Parallelizer;
class QVModel;
class QVParam;
class QVPhase;
class QVSolution;
class QVStatistics;
class Solution;

/// What runs at each display point of a search, on the thread that called `solve`.
using DisplayCallback = void (*)(void* context);

/// The root of everything: one model, one set of parameters, a list of phases, one solution, global statistics.
/// It owns all of them; callers keep plain pointers and free none.
///
/// Its state decides what may be called:
///
///                 QVModel::close                solve
///     Modeling ------------------> Stopped ---------------> Paused ----- a phase starts or resumes ----> Running
///         ^                         |   ^                    |  ^                                          |
///         +-------------------------+   +--------------------+  +------- display, or end of a phase -------+
///                 QVModel::open           all phases done,
///                                         or stop
///
/// and every operation follows one of four rules, or none; a call against its rule raises QVException.
///
///     rule              Modeling   Running   Paused   Stopped
///     ModelingOnly         x
///     StoppedOnly                                        x
///     PausedOrStopped                          x         x
///     NotRunning           x                   x         x
///
/// Invariant: the search objects (`parallelizer`, `heuristicPools`) exist from the first `solve` on, and go when the
/// model is opened. All operations but `stop` belong to one thread, the caller's.
class Quvex {
 public:
  static constexpr const char* kName = "quvex::Quvex";

  Quvex();
  /// Ends a search that is still held, without raising.
  ~Quvex();
  Quvex(const Quvex&) = delete;
  Quvex& operator=(const Quvex&) = delete;

  [[nodiscard]] QVState getState() const { return state; }  // rule: none

  [[nodiscard]] QVModel* getModel();  // rule: NotRunning
  [[nodiscard]] QVParam* getParam();  // rule: NotRunning

  [[nodiscard]] int getNbPhases() const;       // rule: PausedOrStopped
  [[nodiscard]] QVPhase* getPhase(int index);  // rule: PausedOrStopped
  /// Appends a phase without limits that optimises all objectives. Phases are never removed.
  QVPhase* createPhase();  // rule: StoppedOnly

  /// The current solution: what the caller set, or the best of the last search.
  [[nodiscard]] QVSolution* getSolution();  // rule: PausedOrStopped
  /// Sums over all phases of the last solve.
  [[nodiscard]] QVStatistics* getStatistics();  // rule: PausedOrStopped

  /// Searches from the current solution through all phases and leaves the best solution found. Without a phase, one
  /// without limits is created first. A run is a function of the seed, the number of threads and the iteration limits.
  /// A failure on a search thread is raised here; the state then stays as it was at that moment.
  void solve();  // rule: StoppedOnly

  /// Ends a search, for good: every later solve of this object leaves its first phase at the first display.
  /// The one operation for other threads. Without a search it does nothing. It returns when the search threads have
  /// ended, or at once when they are held for a display: the search then ends behind that display.
  void stop();  // rule: none

  /// Replaces the progress line. Called with `context` before, during and at the end of each phase, in state Paused.
  /// Null means that the search is never held for a display.
  void setDisplayCallback(DisplayCallback callback, void* context);  // rule: StoppedOnly
  /// The callback of a new object: prints `getInfo` of the Quvex in its context, unless verbosity is 0.
  static void displayProgress(void* quvex);

  /// Description of model, parameters and phases.
  [[nodiscard]] std::string toString() const;  // rule: NotRunning
  /// One line of progress: "[<seconds> sec, <iterations> itr]: <objectives>, <statistics>".
  [[nodiscard]] std::string getInfo() const;  // rule: PausedOrStopped, once the solver has been started

  /// Writes model, phases, parameters and solution to a file. Names that end in ".qvb" mean the binary format, all
  /// others the text format; a further ".gz" means gzip.
  void saveEnvironment(const std::string& fileName);  // rule: NotRunning
  /// Reads what `saveEnvironment` wrote into an empty model, and closes it. A failure leaves what was read so far.
  void loadEnvironment(const std::string& fileName);  // rule: ModelingOnly

 private:
  friend struct ApiPeer;  // the tests' view
  friend struct ModelAccess;
  friend class HeuristicPool;
  friend class QVExpression;
  friend class QVModel;
  friend class QVParam;
  friend class QVStatistics;

  void setState(QVState next) { state = next; }
  [[nodiscard]] bool wasStarted() const { return parallelizer != nullptr; }

  [[nodiscard]] DagBuilder& dagBuilder() const;
  [[nodiscard]] bool isTraced() const;

  void dumpIfAsked();
  void resetStatistics();
  void clearSearch();
  void createSearch();
  void startFrom(const Solution& start, GreedySolution& greedy, Dag& dag) const;
  void createThreadSearch(std::size_t thread, const Solution& start, GreedySolution& greedy, std::uint32_t& seedState);
  void createDefaultPhase();
  void reportInconsistent() const;
  void describeSearch() const;

  /// Sums of the limits of the first phases, or "no limit" as soon as the sum comes to that.
  [[nodiscard]] int timeLimitUpTo(std::size_t nbPhases) const;
  [[nodiscard]] std::int64_t iterationLimitUpTo(std::size_t nbPhases) const;

  void runPhase(std::size_t index);
  void prepareHeuristics(const QVPhase& phase, int timeLimit, std::int64_t iterationLimit);
  void startSearch();
  /// Shows progress every `period` seconds until a heuristic ends, or a display finds a request to stop.
  void searchUntilEnd(std::size_t index, int period);
  /// Holds the search for a display; false when it has to end there.
  [[nodiscard]] bool displayHeld(std::size_t index);
  void finishPhase(std::size_t index);
  void updateResults(std::size_t index);
  void display();

  [[nodiscard]] std::string objectivesToString() const;
  [[nodiscard]] std::string resultToString() const;

  std::atomic<QVState> state{QVState::Modeling};
  std::atomic<bool> stopRequested{false};
  std::unique_ptr<QVModel> model;
  std::unique_ptr<QVParam> param;
  DisplayCallback displayCallback = &Quvex::displayProgress;
  void* displayContext = this;
  std::vector<std::unique_ptr<HeuristicPool>> heuristicPools;
  std::vector<std::unique_ptr<QVPhase>> phases;
  std::unique_ptr<Parallelizer> parallelizer;
  std::unique_ptr<QVSolution> solution;
  std::unique_ptr<QVStatistics> statistics;

  /// Every start, hold, release and end of the search threads is one step under this lock together with its change of
  /// `state`, so that a `stop` on another thread falls between two steps. It guards the life of `parallelizer` too.
  std::mutex searchMutex;
};

}  // namespace quvex
