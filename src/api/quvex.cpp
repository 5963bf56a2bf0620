#include "api/quvex.h"

#include <iostream>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include "api/heuristicpool.h"
#include "api/modelaccess.h"
#include "api/qvexception.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/qvstatistics.h"
#include "api/statecheck.h"
#include "builder/dagbuilder.h"
#include "builder/modelreader.h"
#include "builder/modelwriter.h"
#include "qvm/fileformat.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/greedysolution.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/parallelizer.h"
#include "solver/kernel/random.h"
#include "solver/kernel/solution.h"

namespace quvex {

namespace {

constexpr const char* kDumpFile = "dump.qvm.gz";

/// Whoever watches the output sees each item when it is complete.
void print(std::string_view text) { std::cout << text << std::flush; }

/// The sum of positive limits, or the highest number, which means no limit, as soon as the sum comes to that.
template <class Limit>
Limit addLimits(Limit sum, Limit limit) {
  constexpr Limit kUnlimited = std::numeric_limits<Limit>::max();
  return limit >= kUnlimited - sum ? kUnlimited : sum + limit;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------- lifecycle

Quvex::Quvex()
    : model(std::make_unique<QVModel>(this)),
      param(std::make_unique<QVParam>(this)),
      solution(std::make_unique<QVSolution>(this)),
      statistics(std::make_unique<QVStatistics>(this, nullptr)) {}

Quvex::~Quvex() {
  if (parallelizer != nullptr && state != QVState::Stopped) {
    stopRequested = true;
    try {
      parallelizer->stopAndJoin();
    } catch (const QVException&) {
      // A failure of a search that nobody waits for any more has no one left to be told.
    }
    parallelizer->clearFlags();
  }
  parallelizer.reset();
  solution.reset();
  statistics.reset();
  heuristicPools.clear();
  phases.clear();
  param.reset();
  model.reset();
}

QVModel* Quvex::getModel() {
  checkState(*this, StateRule::NotRunning, here<Quvex>());
  return model.get();
}

QVParam* Quvex::getParam() {
  checkState(*this, StateRule::NotRunning, here<Quvex>());
  return param.get();
}

int Quvex::getNbPhases() const {
  checkState(*this, StateRule::PausedOrStopped, here<Quvex>());
  return static_cast<int>(phases.size());
}

QVPhase* Quvex::getPhase(int index) {
  const Place place = here<Quvex>();
  checkState(*this, StateRule::PausedOrStopped, place);
  checkIndex("phase", index, phases.size(), place);
  return phases[static_cast<std::size_t>(index)].get();
}

QVPhase* Quvex::createPhase() {
  checkState(*this, StateRule::StoppedOnly, here<Quvex>());
  return phases.emplace_back(std::make_unique<QVPhase>(this)).get();
}

QVSolution* Quvex::getSolution() {
  checkState(*this, StateRule::PausedOrStopped, here<Quvex>());
  return solution.get();
}

QVStatistics* Quvex::getStatistics() {
  checkState(*this, StateRule::PausedOrStopped, here<Quvex>());
  return statistics.get();
}

void Quvex::setDisplayCallback(DisplayCallback callback, void* context) {
  checkState(*this, StateRule::StoppedOnly, here<Quvex>());
  displayCallback = callback;
  displayContext = context;
}

// -------------------------------------------------------------------------------------------------------- environments

void Quvex::saveEnvironment(const std::string& fileName) {
  const Place place = here<Quvex>();
  checkState(*this, StateRule::NotRunning, place);
  checkNotEmpty(fileName, "fileName", place);
  ModelWriter(*model, fileName).write();
}

void Quvex::loadEnvironment(const std::string& fileName) {
  const Place place = here<Quvex>();
  checkState(*this, StateRule::ModelingOnly, place);
  checkNotEmpty(fileName, "fileName", place);
  if (model->getNbExpressions() != 0) {
    raise<QVException>(place, "Cannot load the given environment. The current model must be empty.");
  }
  if (!isBinaryFile(fileName) && !isTextFile(fileName)) {
    raise<KernelException>(place, "The given file format is not recognized.");
  }
  ModelReader(*model, fileName).read();
  if (!model->isClosed()) model->close();
}

// --------------------------------------------------------------------------------------------------------------- solve

void Quvex::solve() {
  checkState(*this, StateRule::StoppedOnly, here<Quvex>());
  dumpIfAsked();
  resetStatistics();
  if (solution->getStatus() == QVSolutionStatus::Inconsistent) {
    reportInconsistent();
    return;
  }

  clearSearch();
  createSearch();
  if (phases.empty()) createDefaultPhase();
  describeSearch();

  state = QVState::Paused;
  for (std::size_t i = 0; i < phases.size(); ++i) {
    runPhase(i);
    if (stopRequested) break;
  }
  state = QVState::Stopped;
  if (param->getVerbosity() >= 1) print(resultToString() + "\n\n");
}

void Quvex::stop() {
  const std::lock_guard lock(searchMutex);
  if (state == QVState::Stopped || parallelizer == nullptr) return;
  stopRequested = true;
  // Held threads are released only by `solve`, which reads the request first.
  if (state != QVState::Running) return;
  parallelizer->stopAndJoin();
  parallelizer->clearFlags();
}

DagBuilder& Quvex::dagBuilder() const { return *ModelAccess::dagBuilder(*model); }

bool Quvex::isTraced() const { return param->getAdvancedParam("traceEnabled", 0) != 0; }

void Quvex::dumpIfAsked() {
  if (param->getAdvancedParam("dumpEnabled", 0) == 0) return;
  // Reset first: whoever loads the dump and solves it wants no dump of the dump.
  param->setAdvancedParam("dumpEnabled", 0);
  saveEnvironment(kDumpFile);
}

void Quvex::resetStatistics() {
  statistics->reset();
  for (const auto& phase : phases) phase->statistics->reset();
}

void Quvex::reportInconsistent() const {
  if (param->getVerbosity() >= 1) print('\n' + toString() + "Inconsistent model.\n\n");
}

void Quvex::describeSearch() const {
  if (param->getVerbosity() < 1) return;
  print('\n' + toString());
  if (!isTraced()) return;
  dagBuilder().getDag().printStats();
  std::cout << std::flush;
}

void Quvex::clearSearch() {
  const std::lock_guard lock(searchMutex);
  parallelizer.reset();
  heuristicPools.clear();
}

void Quvex::createSearch() {
  {
    const std::lock_guard lock(searchMutex);
    parallelizer = std::make_unique<Parallelizer>();
  }
  try {
    // One stream for the greedy permutations and the seeds of all threads, in thread order.
    auto seedState = static_cast<RandomState>(param->getSeed());
    GreedySolution greedy(seedState);
    Solution start(dagBuilder().getDag());
    dagBuilder().loadSolution(*solution, start);
    const auto nbThreads = static_cast<std::size_t>(param->getNbThreads());
    for (std::size_t t = 0; t < nbThreads; ++t) createThreadSearch(t, start, greedy, seedState);
  } catch (...) {
    clearSearch();
    throw;
  }
}

void Quvex::startFrom(const Solution& start, GreedySolution& greedy, Dag& dag) const {
  try {
    start.restore(dag);
    const bool greedyEnabled = param->getAdvancedParam("greedyEnabled", 1) != 0;
    if (greedyEnabled && !dag.propagation.allConstraintsActive() && !greedy.computeSolution(dag)) {
      dag.propagation.deactivateAllConstraints();
    }
  } catch (...) {
    // The next solve begins on this dag again, and must not find it in the middle of a move.
    dag.propagation.rollbackAll(dag);
    throw;
  }
}

void Quvex::createThreadSearch(std::size_t thread, const Solution& start, GreedySolution& greedy,
                               RandomState& seedState) {
  Dag& dag = thread == 0 ? dagBuilder().getDag() : dagBuilder().getExtraDag(thread - 1);
  startFrom(start, greedy, dag);
  const std::uint32_t seed = scaleTo(randomStep(seedState), std::numeric_limits<std::int32_t>::max());
  heuristicPools.push_back(std::make_unique<HeuristicPool>(this, dag, seed));
  parallelizer->addHeuristic(heuristicPools.back()->getHeuristic());
}

void Quvex::createDefaultPhase() {
  QVPhase* phase = createPhase();
  phase->setTimeLimit(kNoTimeLimit);
  phase->setIterationLimit(kNoIterationLimit);
  phase->setOptimizedObjective(model->getNbObjectives() - 1);
}

// -------------------------------------------------------------------------------------------------------------- phases

int Quvex::timeLimitUpTo(std::size_t nbPhases) const {
  int sum = 0;
  for (std::size_t i = 0; i < nbPhases; ++i) sum = addLimits(sum, phases[i]->timeLimit);
  return sum;
}

std::int64_t Quvex::iterationLimitUpTo(std::size_t nbPhases) const {
  std::int64_t sum = 0;
  for (std::size_t i = 0; i < nbPhases; ++i) sum = addLimits(sum, phases[i]->iterationLimit);
  return sum;
}

void Quvex::runPhase(std::size_t index) {
  const auto timeLeft = static_cast<int>(std::int64_t{timeLimitUpTo(index + 1)} - statistics->runningTime);
  const std::int64_t iterationsLeft = iterationLimitUpTo(index + 1) - statistics->nbIterations;
  if (timeLeft < 1 || iterationsLeft < 1) return;

  if (param->getVerbosity() >= 1) print("Phase " + std::to_string(index) + ":\n\n");
  prepareHeuristics(*phases[index], timeLeft, iterationsLeft);
  display();
  const int period = param->getTimeBetweenDisplays();
  startSearch();
  searchUntilEnd(index, period);
  finishPhase(index);
}

void Quvex::prepareHeuristics(const QVPhase& phase, int timeLimit, std::int64_t iterationLimit) {
  for (const auto& pool : heuristicPools) {
    Heuristic& heuristic = *pool->getHeuristic();
    heuristic.resetPhase();
    heuristic.setOptimizedObjective(static_cast<std::uint32_t>(phase.optimizedObjective));
    heuristic.setTimeLimit(static_cast<std::uint32_t>(timeLimit));
    heuristic.setIterationLimit(static_cast<std::uint64_t>(iterationLimit));
  }
}

void Quvex::startSearch() {
  const std::lock_guard lock(searchMutex);
  state = QVState::Running;
  parallelizer->start();
}

void Quvex::searchUntilEnd(std::size_t index, int period) {
  while (parallelizer->status() == Parallelizer::Status::Running) {
    if (parallelizer->waitFor(period)) return;
    if (displayCallback != nullptr && !displayHeld(index)) return;
  }
}

bool Quvex::displayHeld(std::size_t index) {
  {
    const std::lock_guard lock(searchMutex);
    parallelizer->pause();
    state = QVState::Paused;
  }
  updateResults(index);
  display();

  const std::lock_guard lock(searchMutex);
  if (stopRequested) return false;
  state = QVState::Running;
  parallelizer->resume();
  return true;
}

void Quvex::finishPhase(std::size_t index) {
  {
    const std::lock_guard lock(searchMutex);
    parallelizer->stopAndJoin();
    state = QVState::Paused;
  }
  updateResults(index);
  display();
}

void Quvex::updateResults(std::size_t index) {
  phases[index]->statistics->refresh();
  statistics->refresh();
  dagBuilder().storeSolution(parallelizer->getBestHeuristic()->bestSolution, *solution);
}

// --------------------------------------------------------------------------------------------------------------- texts

void Quvex::display() {
  if (displayCallback != nullptr) displayCallback(displayContext);
}

void Quvex::displayProgress(void* quvex) {
  auto& self = *static_cast<Quvex*>(quvex);
  if (self.param->getVerbosity() == 0) return;
  print(self.getInfo());
  if (self.isTraced()) {
    for (const auto& pool : self.heuristicPools) {
      pool->getHeuristic()->printMoveTable(std::cout);
      print("\n");
    }
  }
  print("\n");
}

std::string Quvex::toString() const {
  checkState(*this, StateRule::NotRunning, here<Quvex>());
  std::ostringstream text;
  text << model->toString() << "\n" << param->toString() << "\nPhases:\n";
  if (phases.empty()) text << "  (no phases)\n";
  for (std::size_t i = 0; i < phases.size(); ++i) text << "  Phase " << i << ": " << phases[i]->toString() << "\n";
  text << "\n";
  return text.str();
}

std::string Quvex::getInfo() const {
  const Place place = here<Quvex>();
  if (!wasStarted()) {
    raise<QVException>(place, "This method cannot be called if the solver has not been started at least once.");
  }
  checkState(*this, StateRule::PausedOrStopped, place);
  std::ostringstream text;
  text << "[" << statistics->runningTime << " sec, " << statistics->nbIterations << " itr]: " << objectivesToString()
       << ", " << statistics->getInfo() << "\n";
  return text.str();
}

std::string Quvex::objectivesToString() const {
  const Solution& best = parallelizer->getBestHeuristic()->bestSolution;
  std::ostringstream text;
  if (best.nbViolated != 0) {
    text << "infeas = (" << best.nbViolated << ")";
    return text.str();
  }
  text << "obj = (";
  const auto& objectives = ModelAccess::objectives(*model);
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    if (i != 0) text << ", ";
    if (ModelAccess::valueType(*objectives[i]) == kDouble) {
      text << wordToDouble(best.objectives[i]);
    } else {
      text << best.objectives[i];
    }
  }
  text << ")";
  return text.str();
}

std::string Quvex::resultToString() const {
  std::ostringstream text;
  text << statistics->nbIterations << " iterations, " << statistics->nbMoves << " moves performed in "
       << statistics->runningTime << " seconds\n";
  switch (solution->getStatus()) {
    case QVSolutionStatus::Optimal:
      text << "Optimal solution: " << objectivesToString();
      break;
    case QVSolutionStatus::Feasible:
      text << "Feasible solution: " << objectivesToString();
      break;
    case QVSolutionStatus::Infeasible:
      text << "Infeasible solution: " << objectivesToString();
      break;
    case QVSolutionStatus::Inconsistent:
      text << "Inconsistent model.";
      break;
  }
  return text.str();
}

}  // namespace quvex
