#pragma once

#include <atomic>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <boost/thread/thread.hpp>
#include <boost/thread/tss.hpp>
#include <cstdint>
#include <memory>
#include <vector>

#include "api/qvexception.h"
#include "solver/kernel/heuristiccallback.h"

namespace quvex {

class Heuristic;

/// Runs one heuristic per thread and controls them at iteration boundaries: start, pause, resume, end, and the way of
/// an exception from a search thread to the caller. No solution passes between threads.
///
/// The first heuristic to end fixes an iteration count, and the others stop at that count: under an iteration limit the
/// result does not depend on the scheduler.
///
/// Invariant: `attention` is true whenever `stopRequested` or `pauseRequested` is. Every transition happens under the
/// exclusive lock; a search thread takes the shared lock only once `attention` calls it.
///
///   idle --start--> running --pause--> paused --resume--> running --last onEnd--> idle
class Parallelizer : public HeuristicCallback {
 public:
  static constexpr const char* kName = "quvex::Parallelizer";

  /// What the caller's thread may find.
  enum class Status : int { Running = 0, Ended = 1, Paused = 2 };

  Parallelizer() = default;
  /// Ends the search as `stopAndJoin` does, and raises what it raises, unless another failure is on its way.
  virtual ~Parallelizer() noexcept(false);
  Parallelizer(const Parallelizer&) = delete;
  Parallelizer& operator=(const Parallelizer&) = delete;

  // On the caller's thread.
  void addHeuristic(Heuristic* heuristic);
  void clearHeuristics();
  [[nodiscard]] Heuristic* getHeuristic(std::uint32_t i);
  /// One new thread per heuristic.
  void start();
  /// Returns when every running heuristic waits at an iteration boundary.
  void pause();
  void resume();
  /// True when a heuristic has ended: the others are then waited for. False when the time is over.
  [[nodiscard]] bool waitFor(int seconds);
  [[nodiscard]] Status status();
  /// Ends all heuristics at their next iteration boundary, and raises what a search thread has stored. May also be
  /// called from another thread than the one that waits, but not while that one pauses, resumes or starts.
  void stopAndJoin();
  /// Drops every pending request and failure.
  void clearFlags();
  /// The holder of the best solution; thread 0 is never displaced in a tie, and of the others the one that found it
  /// first wins. Only while paused or ended.
  [[nodiscard]] Heuristic* getBestHeuristic();

  // On the search threads.
  void onStart() override {}
  void onEnd() override;
  void onIteration() override;

 private:
  using ExclusiveLock = boost::unique_lock<boost::shared_mutex>;

  std::vector<Heuristic*> heuristics;  ///< by thread index, not owned
  std::unique_ptr<boost::thread_group> threads;
  boost::shared_mutex mutex;  ///< guards everything below
  boost::condition_variable_any pausedCondition;
  boost::condition_variable_any doneCondition;
  boost::thread_specific_ptr<std::uint32_t> threadIndex;
  KernelException storedException;
  bool exceptionPending = false;
  bool stopRequested = false;
  bool pauseRequested = false;
  std::uint32_t nbRunning = 0;      ///< heuristics that have not ended
  std::uint32_t nbPaused = 0;       ///< heuristics that wait in `onIteration`
  std::uint32_t stopIteration = 0;  ///< where the others stop, 0 while none has ended
  std::uint64_t nbReleases = 0;     ///< how often paused threads were let go, so that a spurious wake-up is no release
  std::uint64_t nbEnds = 0;         ///< how many heuristics have ended since construction, for the same reason
  std::atomic<bool> attention{false};
  boost::mutex joinMutex;  ///< `stop` may join from another thread than `solve`

  void threadEntry(std::uint32_t i);
  void waitPaused();
  void createThread(std::uint32_t i);
  void joinThreads();
  void join();
  void request(bool& flag);
  void clearFlagsLocked();
};

}  // namespace quvex
