#pragma once

#include <string>
#include <vector>

#include "quvex.h"

namespace quvex::cli {

/// How much of a solution a text shows.
enum class ShownValues { All, Nonzero, Named, None };

/// What to tell about the run, beside what the solver knows.
struct RunRecord {
  std::string modelFile;
  std::string stopReason;
};

/// "inconsistent", "infeasible", "feasible" or "optimal".
[[nodiscard]] std::string statusWord(QVSolutionStatus status);

/// Why the search ended: "interrupted", "inconsistent" (it never began), "iterationLimit", "timeLimit" or "bound".
[[nodiscard]] std::string findStopReason(Quvex& solver, bool interrupted);

/// The model's constraints that do not hold in the current solution.
[[nodiscard]] std::vector<const QVExpression*> violatedConstraints(Quvex& solver);

/// The result as JSON, with a final line feed: stable, versioned, new members may come.
[[nodiscard]] std::string resultAsJson(Quvex& solver, const RunRecord& record);

/// The result as lines for people and for simple scripts: what it is first, then one line "name = value" per decision.
[[nodiscard]] std::string resultAsText(Quvex& solver, const RunRecord& record, ShownValues shown);

}  // namespace quvex::cli
