#pragma once

namespace quvex {

/// Lifecycle of a solver. `QVModel::close` leads from Modeling to Stopped and `QVModel::open` back; a call of
/// `Quvex::solve` alternates between Paused and Running, and ends in Stopped. The numbers are part of the interface.
enum class QVState : int {
  Modeling = 0,  ///< the model is open and may be changed
  Running = 1,   ///< search threads are working
  Paused = 2,    ///< inside a solve with all threads held: results are readable
  Stopped = 3,   ///< the model is closed and no search is in progress
};

/// What is known of the current solution. The numbers are part of the interface.
enum class QVSolutionStatus : int {
  Inconsistent = 0,  ///< some constraint can never hold
  Infeasible = 1,    ///< some constraint does not hold
  Feasible = 2,      ///< every constraint holds
  Optimal = 3,       ///< feasible, and every objective has reached its bound
};

/// Sense of an objective. The numbers are part of the interface.
enum class QVObjectiveDirection : int {
  Minimize = 0,
  Maximize = 1,
};

}  // namespace quvex
