#include "cli/phaseoption.h"

#include <array>
#include <charconv>
#include <sstream>
#include <vector>

#include "api/modelaccess.h"
#include "cli/errors.h"
#include "cli/nearest.h"

namespace quvex::cli {

namespace {

[[noreturn]] void refuse(const std::string& text, const std::string& reason) {
  throw CommandError(kExitUsage, "--phase \"" + text + "\": " + reason +
                                     "; write for instance --phase time=10,iterations=5000,objective=0");
}

template <class Number>
[[nodiscard]] Number parseNumber(const std::string& text, const std::string& digits, Number lowest) {
  Number number{};
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end) refuse(text, "\"" + digits + "\" is no whole number in range");
  if (number < lowest) refuse(text, digits + " is too small, the least is " + std::to_string(lowest));
  return number;
}

template <class Number>
void setOnce(std::optional<Number>& slot, Number value, const std::string& text) {
  if (slot.has_value()) refuse(text, "a part is given twice");
  slot = value;
}

}  // namespace

PhaseLimits parsePhase(const std::string& text) {
  static const std::array<std::string, 3> kParts = {"time", "iterations", "objective"};
  PhaseLimits limits;
  std::istringstream parts(text);
  std::string part;
  while (std::getline(parts, part, ',')) {
    const std::size_t equal = part.find('=');
    const std::string name = part.substr(0, equal);
    const std::string digits = equal == std::string::npos ? "" : part.substr(equal + 1);
    if (name == "time") {
      setOnce(limits.seconds, parseNumber<int>(text, digits, 1), text);
    } else if (name == "iterations") {
      setOnce(limits.iterations, parseNumber<std::int64_t>(text, digits, 1), text);
    } else if (name == "objective") {
      setOnce(limits.objective, parseNumber<int>(text, digits, 0), text);
    } else {
      refuse(text, "unknown part \"" + name + "\"" + didYouMean(name, kParts));
    }
  }
  if (!limits.seconds && !limits.iterations && !limits.objective) refuse(text, "nothing is given");
  return limits;
}

void replacePhases(Quvex& solver, std::span<const PhaseLimits> phases) {
  ModelAccess::dropPhases(solver);
  for (const PhaseLimits& limits : phases) {
    QVPhase* phase = solver.createPhase();
    if (limits.seconds) phase->setTimeLimit(*limits.seconds);
    if (limits.iterations) phase->setIterationLimit(*limits.iterations);
    if (!limits.objective) continue;
    try {
      phase->setOptimizedObjective(*limits.objective);
    } catch (const QVException& failure) {
      throw CommandError(kExitUsage, "--phase: " + failure.getExplanation());
    }
  }
}

}  // namespace quvex::cli
