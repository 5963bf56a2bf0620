#pragma once

#include <cstdint>
#include <memory>

#include "solver/kernel/random.h"

namespace quvex {

class AutonomousStructure;
class Dag;
class Heuristic;
class MoveFilter;
class Quvex;

/// The search of one thread: its heuristic, filled with the moves that fit the model, the filter that adapts their
/// weights, and the thread's view of the model's structure.
/// Invariant: everything here works on one dag, and belongs to one thread once the search runs.
class HeuristicPool {
 public:
  /// Reads the parameters of `owningQuvex`; the dag must be initialised and must outlive the pool.
  HeuristicPool(Quvex* owningQuvex, Dag& threadDag, RandomState seed);
  ~HeuristicPool();
  HeuristicPool(const HeuristicPool&) = delete;
  HeuristicPool& operator=(const HeuristicPool&) = delete;

  [[nodiscard]] Heuristic* getHeuristic() const { return heuristic.get(); }
  [[nodiscard]] AutonomousStructure* getStructure() const { return structure.get(); }

 private:
  Quvex* quvex;
  Dag& dag;
  std::unique_ptr<AutonomousStructure> structure;  ///< outlives the moves that work on it
  std::unique_ptr<Heuristic> heuristic;
  std::unique_ptr<MoveFilter> filter;

  [[nodiscard]] int parameter(const char* key, int defaultValue) const;
  [[nodiscard]] bool isEnabled(const char* key) const { return parameter(key, 1) != 0; }

  void createHeuristic();
  void createFilter();
  void addMoves();
  void addMovesOfSize(std::uint32_t k, std::uint32_t rate);
  void addAdvancedMoves(std::uint32_t rate);
  void copyObjectiveBounds();
};

}  // namespace quvex
