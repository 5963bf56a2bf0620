#include "solver/kernel/parallelizer.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <exception>

#include "solver/kernel/heuristic.h"

namespace quvex {

Parallelizer::~Parallelizer() noexcept(false) {
  try {
    stopAndJoin();
  } catch (const KernelException&) {
    clearFlags();
    clearHeuristics();
    if (std::uncaught_exceptions() == 0) throw;
    return;
  }
  clearFlags();
  clearHeuristics();
}

void Parallelizer::addHeuristic(Heuristic* heuristic) {
  const ExclusiveLock lock(mutex);
  if (nbRunning != 0) raise<KernelException>(here<Parallelizer>(), "You cannot add an heuristic during resolution");
  heuristics.push_back(heuristic);
  heuristic->addCallback(this);
}

void Parallelizer::clearHeuristics() {
  if (status() != Status::Ended) {
    raise<KernelException>(here<Parallelizer>(), "You cannot clear heuristics during resolution");
  }
  // Joined without the lock, which a thread that has failed still takes once to leave its exception.
  joinThreads();
  const ExclusiveLock lock(mutex);
  for (Heuristic* heuristic : heuristics) heuristic->removeCallback(this);
  threads.reset();
  heuristics.clear();
}

Heuristic* Parallelizer::getHeuristic(std::uint32_t i) {
  const boost::shared_lock<boost::shared_mutex> lock(mutex);
  if (i >= heuristics.size()) raise<KernelException>(here<Parallelizer>(), "Wrong heuristic number.");
  return heuristics[i];
}

void Parallelizer::start() {
  const ExclusiveLock lock(mutex);
  if (nbRunning != 0) raise<KernelException>(here<Parallelizer>(), "Heuristics already started");
  if (heuristics.empty()) raise<KernelException>(here<Parallelizer>(), "No heuristic to start");
  clearFlagsLocked();
  threads = std::make_unique<boost::thread_group>();
  nbRunning = static_cast<std::uint32_t>(heuristics.size());
  nbPaused = 0;
  for (std::uint32_t i = 0; i < heuristics.size(); ++i) createThread(i);
}

/// A thread that can't be created ends the run for those that were.
void Parallelizer::createThread(std::uint32_t i) {
  try {
    threads->create_thread([this, i] { threadEntry(i); });
  } catch (...) {
    nbRunning -= static_cast<std::uint32_t>(heuristics.size()) - i;
    request(stopRequested);
    throw;
  }
}

void Parallelizer::threadEntry(std::uint32_t i) {
  threadIndex.reset(new std::uint32_t(i));
  try {
    heuristics[i]->run();
  } catch (const KernelException& failure) {
    onEnd();
    const ExclusiveLock lock(mutex);
    exceptionPending = true;
    storedException = failure;
  }
}

void Parallelizer::onEnd() {
  const ExclusiveLock lock(mutex);
  request(stopRequested);
  if (stopIteration == 0) stopIteration = static_cast<std::uint32_t>(heuristics[*threadIndex]->iterations);
  --nbRunning;
  ++nbEnds;
  threadIndex.reset();
  doneCondition.notify_all();
}

void Parallelizer::onIteration() {
  if (!attention.load(std::memory_order_acquire)) return;
  {
    const boost::shared_lock<boost::shared_mutex> lock(mutex);
    Heuristic& heuristic = *heuristics[*threadIndex];
    if (stopRequested && heuristic.iterations >= stopIteration) {
      heuristic.stopRequested = true;
      return;
    }
    if (!pauseRequested) return;
  }
  waitPaused();
}

void Parallelizer::waitPaused() {
  ExclusiveLock lock(mutex);
  const std::uint64_t releases = nbReleases;
  ++nbPaused;
  doneCondition.notify_all();
  while (nbReleases == releases) pausedCondition.wait(lock);
}

void Parallelizer::pause() {
  ExclusiveLock lock(mutex);
  if (nbPaused != 0 || nbRunning == 0) return;
  request(pauseRequested);
  while (nbPaused < nbRunning) doneCondition.wait(lock);
  // What was pending is dropped: after a pause the threads go on to their own limits.
  clearFlagsLocked();
}

void Parallelizer::resume() {
  const ExclusiveLock lock(mutex);
  if (nbPaused == 0 || nbRunning == 0) return;
  nbPaused = 0;
  ++nbReleases;
  pausedCondition.notify_all();
}

bool Parallelizer::waitFor(int seconds) {
  {
    ExclusiveLock lock(mutex);
    if (nbRunning == 0) return true;
    const std::uint64_t ends = nbEnds;
    const boost::system_time deadline = boost::get_system_time() + boost::posix_time::seconds(seconds);
    while (nbEnds == ends) {
      if (!doneCondition.timed_wait(lock, deadline)) break;
    }
    if (nbEnds == ends) return false;
  }
  join();
  return true;
}

Parallelizer::Status Parallelizer::status() {
  const boost::shared_lock<boost::shared_mutex> lock(mutex);
  if (nbRunning == 0) return Status::Ended;
  return nbPaused != 0 ? Status::Paused : Status::Running;
}

void Parallelizer::stopAndJoin() {
  {
    ExclusiveLock lock(mutex);
    if (nbRunning != 0) {
      if (nbPaused != 0) {
        ++nbReleases;
        pausedCondition.notify_all();
      }
      request(stopRequested);
      while (nbRunning != 0) doneCondition.wait(lock);
      nbPaused = 0;
      clearFlagsLocked();
    }
  }
  join();
}

void Parallelizer::joinThreads() {
  const boost::unique_lock<boost::mutex> joining(joinMutex);
  if (threads) threads->join_all();
}

void Parallelizer::join() {
  joinThreads();
  const ExclusiveLock lock(mutex);
  const bool failed = exceptionPending;
  clearFlagsLocked();
  if (failed) throw KernelException(storedException);
}

void Parallelizer::clearFlags() {
  const ExclusiveLock lock(mutex);
  clearFlagsLocked();
}

void Parallelizer::clearFlagsLocked() {
  stopRequested = false;
  pauseRequested = false;
  exceptionPending = false;
  stopIteration = 0;
  attention.store(false, std::memory_order_release);
}

void Parallelizer::request(bool& flag) {
  flag = true;
  attention.store(true, std::memory_order_release);
}

Heuristic* Parallelizer::getBestHeuristic() {
  const ExclusiveLock lock(mutex);
  if (nbRunning > 0 && nbPaused == 0) {
    raise<KernelException>(here<Parallelizer>(), "Solver must be paused or stopped to do this action");
  }
  // The start value 0 keeps thread 0 in every tie.
  Heuristic* best = heuristics[0];
  std::uint64_t bestIteration = 0;
  for (std::uint32_t i = 1; i < heuristics.size(); ++i) {
    const int comparison = heuristics[i]->bestSolution.compare(best->bestSolution);
    const bool earlier = comparison == 0 && heuristics[i]->bestIteration < bestIteration;
    if (comparison < 1 && !earlier) continue;
    best = heuristics[i];
    bestIteration = best->bestIteration;
  }
  return best;
}

}  // namespace quvex
