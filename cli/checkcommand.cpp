#include "cli/checkcommand.h"

#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <unordered_map>

#include "builder/operatortools.h"
#include "cli/environment.h"
#include "cli/errors.h"
#include "cli/result.h"
#include "solver/kernel/mathdouble.h"

namespace quvex::cli {

using Json = nlohmann::json;

namespace {

/// A decimal number, as a JSON number or, where that would lose digits, as a string.
[[nodiscard]] std::int64_t readInteger(const Json& value) {
  return value.is_string() ? std::stoll(value.get<std::string>()) : value.get<std::int64_t>();
}

[[nodiscard]] double readDouble(const Json& value) {
  return value.is_string() ? std::stod(value.get<std::string>()) : value.get<double>();
}

[[nodiscard]] Json readJson(const std::string& fileName) {
  std::ifstream stream(fileName, std::ios::binary);
  if (!stream) throw CommandError(kExitInput, fileName + ": cannot be read; check the path");
  try {
    return Json::parse(stream);
  } catch (const Json::exception& failure) {
    throw CommandError(kExitInput, fileName + ": this is no JSON: " + failure.what());
  }
}

[[nodiscard]] std::unordered_map<std::string, QVExpression*> decisionsByName(const QVModel& model) {
  std::unordered_map<std::string, QVExpression*> byName;
  for (int i = 0; i < model.getNbDecisions(); ++i) {
    QVExpression* decision = model.getDecision(i);
    // A name may look like another decision's index; the name has precedence.
    if (decision->isNamed())
      byName[decision->getName()] = decision;
    else
      byName.emplace(displayName(*decision), decision);
  }
  return byName;
}

[[noreturn]] void refuseOtherModel(const std::string& fileName, const std::string& difference) {
  throw CommandError(kExitInput, fileName + ": " + difference + "; is it another model's?");
}

void requireAllDecisions(const std::string& fileName, std::size_t given, const QVModel& model) {
  const auto wanted = static_cast<std::size_t>(model.getNbDecisions());
  if (given == wanted) return;
  refuseOtherModel(fileName, std::to_string(given) + " decisions, but the model has " + std::to_string(wanted));
}

void setDecisions(Quvex& solver, const Json& decisions, const std::string& fileName) {
  const auto byName = decisionsByName(*solver.getModel());
  for (const auto& [name, value] : decisions.items()) {
    const auto found = byName.find(name);
    if (found == byName.end()) refuseOtherModel(fileName, "the model has no decision \"" + name + "\"");
    found->second->setIntValue(readInteger(value));
  }
  requireAllDecisions(fileName, decisions.size(), *solver.getModel());
}

void copyDecisions(Quvex& source, Quvex& target, const std::string& fileName) {
  const QVModel& from = *source.getModel();
  const QVModel& to = *target.getModel();
  requireAllDecisions(fileName, static_cast<std::size_t>(from.getNbDecisions()), to);
  for (int i = 0; i < to.getNbDecisions(); ++i) to.getDecision(i)->setIntValue(from.getDecision(i)->getIntValue());
}

[[nodiscard]] bool isComparison(QVOperator op) { return op >= QVOperator::Eq && op <= QVOperator::Lt; }

[[nodiscard]] double asDouble(const QVExpression& expression) {
  return expression.isDouble() ? expression.getDoubleValue() : static_cast<double>(expression.getIntValue());
}

/// How far the two operands of a comparison are apart.
[[nodiscard]] std::string gapOf(const QVExpression& left, const QVExpression& right) {
  if (left.isDouble() || right.isDouble()) return displayDouble(std::abs(asDouble(left) - asDouble(right)));
  const std::int64_t a = left.getIntValue();
  const std::int64_t b = right.getIntValue();
  // The difference of two 64-bit integers fits an unsigned one.
  const auto larger = static_cast<std::uint64_t>(a > b ? a : b);
  const auto smaller = static_cast<std::uint64_t>(a > b ? b : a);
  return std::to_string(larger - smaller);
}

[[nodiscard]] std::string describeViolation(const QVExpression& constraint) {
  const QVOperator op = constraint.getOperator();
  const std::string name = displayName(constraint) + ": " + std::string(OperatorTools::getName(op));
  if (!isComparison(op)) return name + " does not hold";
  const QVExpression& left = *constraint.getOperand(0);
  const QVExpression& right = *constraint.getOperand(1);
  return name + " of " + displayValue(left) + " and " + displayValue(right) + " does not hold, gap " +
         gapOf(left, right);
}

/// Compares the objectives that a solution file claims with the computed ones, and tells the differences.
[[nodiscard]] bool claimsHold(const Json& solution, const QVModel& model) {
  bool hold = true;
  for (const Json& claim : solution.value("objectives", Json::array())) {
    const int index = claim.at("index").get<int>();
    const QVExpression& objective = *model.getObjective(index);
    const Json& value = claim.at("value");
    const bool equal = objective.isDouble() ? MathDouble::isEqual(readDouble(value), objective.getDoubleValue())
                                            : readInteger(value) == objective.getIntValue();
    if (equal) continue;
    hold = false;
    std::cout << "objective " << index << ": the file says "
              << (value.is_string() ? value.get<std::string>() : value.dump()) << ", its decisions give "
              << displayValue(objective) << '\n';
  }
  return hold;
}

void printObjectives(const QVModel& model) {
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    std::cout << "objective " << i << ": " << displayValue(*model.getObjective(i)) << '\n';
  }
}

[[nodiscard]] bool checkCurrentSolution(Quvex& solver) {
  printObjectives(*solver.getModel());
  const auto violated = violatedConstraints(solver);
  for (const QVExpression* constraint : violated) std::cout << describeViolation(*constraint) << '\n';
  std::cout << violated.size() << " of " << solver.getModel()->getNbConstraints() << " constraints violated\n";
  return violated.empty();
}

[[nodiscard]] bool checkJson(Quvex& solver, const std::string& solutionFile) {
  const Json solution = readJson(solutionFile);
  try {
    setDecisions(solver, solution.at("decisions"), solutionFile);
    const bool constraintsHold = checkCurrentSolution(solver);
    return claimsHold(solution, *solver.getModel()) && constraintsHold;
  } catch (const Json::exception& failure) {
    throw CommandError(kExitInput,
                       solutionFile + ": this is no solution as \"quvex solve\" writes it: " + failure.what());
  } catch (const std::logic_error&) {
    throw CommandError(kExitInput, solutionFile + ": a value is no number");
  }
}

[[nodiscard]] bool check(Quvex& solver, const std::string& solutionFile) {
  if (!isEnvironmentName(solutionFile)) return checkJson(solver, solutionFile);
  Quvex solution;
  loadEnvironment(solution, solutionFile);
  copyDecisions(solution, solver, solutionFile);
  return checkCurrentSolution(solver);
}

}  // namespace

bool runCheck(const std::string& modelFile, const std::string& solutionFile) {
  Quvex solver;
  loadEnvironment(solver, modelFile);
  try {
    return check(solver, solutionFile);
  } catch (const QVException& failure) {
    throw CommandError(kExitInput, solutionFile + ": " + failure.getExplanation());
  }
}

}  // namespace quvex::cli
