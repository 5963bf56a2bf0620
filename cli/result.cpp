#include "cli/result.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/environment.h"
#include "cli/parametertable.h"
#include "solver/kernel/types.h"

namespace quvex::cli {

using Json = nlohmann::ordered_json;

namespace {

constexpr int kSchemaVersion = 1;

/// Whole numbers that every JSON reader keeps exactly stand as numbers, all others as strings.
[[nodiscard]] Json jsonInteger(std::int64_t value) {
  constexpr std::int64_t kExact = std::int64_t{1} << 53;
  if (value >= -kExact && value <= kExact) return value;
  return std::to_string(value);
}

[[nodiscard]] Json jsonDouble(double value) {
  if (std::isfinite(value)) return value;
  return displayDouble(value);
}

[[nodiscard]] Json jsonValue(const QVExpression& expression) {
  return expression.isDouble() ? jsonDouble(expression.getDoubleValue()) : jsonInteger(expression.getIntValue());
}

[[nodiscard]] std::string directionWord(QVObjectiveDirection direction) {
  return direction == QVObjectiveDirection::Maximize ? "maximize" : "minimize";
}

[[nodiscard]] Json objectivesAsJson(QVModel& model) {
  Json objectives = Json::array();
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    objectives.push_back({{"index", i},
                          {"direction", directionWord(model.getObjectiveDirection(i))},
                          {"value", jsonValue(*model.getObjective(i))}});
  }
  return objectives;
}

[[nodiscard]] Json decisionsAsJson(QVModel& model) {
  Json decisions = Json::object();
  // Appended to the list of members itself: names are unique, and looking each one up would be quadratic.
  auto& members = decisions.get_ref<Json::object_t&>();
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    const QVExpression& decision = *model.getDecision(i);
    members.emplace_back(displayName(decision), jsonValue(decision));
  }
  return decisions;
}

[[nodiscard]] Json statisticsAsJson(const QVStatistics& statistics) {
  return {{"seconds", statistics.getRunningTime()},
          {"iterations", jsonInteger(statistics.getNbIterations())},
          {"moves", jsonInteger(statistics.getNbMoves())},
          {"accepted", jsonInteger(statistics.getNbAcceptedMoves())},
          {"improving", jsonInteger(statistics.getNbImprovingMoves())},
          {"infeasible", jsonInteger(statistics.getNbInfeasibleMoves())}};
}

/// Parameters of the search that are not at their defaults.
[[nodiscard]] Json changedParameters(const QVParam& param) {
  Json changed = Json::object();
  const auto note = [&changed](std::string_view key, int value) {
    const ParameterInfo* info = findParameter(key);
    if (info == nullptr || info->defaultValue != value) changed[std::string(key)] = value;
  };
  note("seed", param.getSeed());
  note("nbThreads", param.getNbThreads());
  note("annealingLevel", param.getAnnealingLevel());
  for (const ParameterInfo& info : parameterTable()) {
    if (!info.flag.empty()) continue;
    note(info.key, param.getAdvancedParam(std::string(info.key), info.defaultValue));
  }
  return changed;
}

[[nodiscard]] bool isShown(const QVExpression& decision, ShownValues shown) {
  switch (shown) {
    case ShownValues::All:
      return true;
    case ShownValues::Nonzero:
      return decision.getIntValue() != 0;
    case ShownValues::Named:
      return decision.isNamed();
    case ShownValues::None:
      return false;
  }
  return false;
}

}  // namespace

std::string statusWord(QVSolutionStatus status) {
  switch (status) {
    case QVSolutionStatus::Inconsistent:
      return "inconsistent";
    case QVSolutionStatus::Infeasible:
      return "infeasible";
    case QVSolutionStatus::Feasible:
      return "feasible";
    case QVSolutionStatus::Optimal:
      return "optimal";
  }
  return "";
}

std::string findStopReason(Quvex& solver, bool interrupted) {
  if (solver.getSolution()->getStatus() == QVSolutionStatus::Inconsistent) return "inconsistent";
  if (interrupted) return "interrupted";

  // The limits of all phases add up; one phase without a limit leaves the whole run without.
  std::int64_t seconds = 0;
  std::int64_t iterations = 0;
  for (int i = 0; i < solver.getNbPhases(); ++i) {
    const QVPhase& phase = *solver.getPhase(i);
    if (phase.getTimeLimit() == kNoTimeLimit) seconds = kNoIterationLimit;
    if (seconds != kNoIterationLimit) seconds += phase.getTimeLimit();
    const std::int64_t room = kNoIterationLimit - iterations;
    iterations = phase.getIterationLimit() >= room ? kNoIterationLimit : iterations + phase.getIterationLimit();
  }
  const QVStatistics& statistics = *solver.getStatistics();
  if (statistics.getNbIterations() >= iterations) return "iterationLimit";
  if (statistics.getRunningTime() >= seconds) return "timeLimit";
  return "bound";
}

std::vector<const QVExpression*> violatedConstraints(Quvex& solver) {
  std::vector<const QVExpression*> violated;
  const QVModel& model = *solver.getModel();
  for (int i = 0; i < model.getNbConstraints(); ++i) {
    const QVExpression* constraint = model.getConstraint(i);
    if (constraint->getIntValue() == 0) violated.push_back(constraint);
  }
  return violated;
}

std::string resultAsJson(Quvex& solver, const RunRecord& record) {
  QVModel& model = *solver.getModel();
  const QVParam& param = *solver.getParam();
  Json violated = Json::array();
  for (const QVExpression* constraint : violatedConstraints(solver)) violated.push_back(displayName(*constraint));

  const Json result = {{"schema", kSchemaVersion},
                       {"status", statusWord(solver.getSolution()->getStatus())},
                       {"stopReason", record.stopReason},
                       {"objectives", objectivesAsJson(model)},
                       {"decisions", decisionsAsJson(model)},
                       {"violated", violated},
                       {"statistics", statisticsAsJson(*solver.getStatistics())},
                       {"run",
                        {{"version", QVVersion::getVersion()},
                         {"model", record.modelFile},
                         {"seed", param.getSeed()},
                         {"threads", param.getNbThreads()},
                         {"changed", changedParameters(param)}}}};
  // A name may hold any bytes; those that are no UTF-8 are replaced.
  return result.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string resultAsText(Quvex& solver, const RunRecord& record, ShownValues shown) {
  const QVModel& model = *solver.getModel();
  const QVStatistics& statistics = *solver.getStatistics();
  std::ostringstream text;
  text << "status: " << statusWord(solver.getSolution()->getStatus()) << '\n';
  text << "stopReason: " << record.stopReason << '\n';
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    text << "objective " << i << ": " << displayValue(*model.getObjective(i)) << " ("
         << directionWord(model.getObjectiveDirection(i)) << ")\n";
  }
  text << "statistics: " << statistics.getRunningTime() << " seconds, " << statistics.getNbIterations()
       << " iterations, " << statistics.getNbMoves() << " moves, " << statistics.getNbAcceptedMoves() << " accepted, "
       << statistics.getNbImprovingMoves() << " improving, " << statistics.getNbInfeasibleMoves() << " infeasible\n";
  for (const QVExpression* constraint : violatedConstraints(solver)) {
    text << "violated: " << displayName(*constraint) << '\n';
  }
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    const QVExpression& decision = *model.getDecision(i);
    if (isShown(decision, shown)) text << displayName(decision) << " = " << displayValue(decision) << '\n';
  }
  return text.str();
}

}  // namespace quvex::cli
