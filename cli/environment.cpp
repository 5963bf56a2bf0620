#include "cli/environment.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "builder/operatortools.h"
#include "cli/errors.h"
#include "cli/nearest.h"

namespace quvex::cli {

namespace {

void requireReadable(const std::string& fileName) {
  if (std::filesystem::is_directory(fileName)) {
    throw CommandError(kExitInput, fileName + ": this is a directory; give the file of a model");
  }
  errno = 0;
  if (std::ifstream(fileName)) return;
  throw CommandError(kExitInput, fileName + ": " + std::strerror(errno) + "; check the path");
}

[[nodiscard]] std::string remedyFor(const std::string& explanation) {
  constexpr std::string_view kUnknownOperator = "Unknown operator : ";
  if (explanation.starts_with(kUnknownOperator)) {
    std::vector<std::string> names;
    names.reserve(OperatorTools::kNbOperators);
    for (int op = 0; op < OperatorTools::kNbOperators; ++op) {
      names.emplace_back(OperatorTools::getName(static_cast<QVOperator>(op)));
    }
    return didYouMean(explanation.substr(kUnknownOperator.size()), names);
  }
  if (explanation == "The given file format is not recognized.") {
    return " A model file begins with <QVM01> or <QVB01>.";
  }
  return "";
}

}  // namespace

void loadEnvironment(Quvex& solver, const std::string& fileName, std::span<const AdvancedSetting> settings) {
  requireReadable(fileName);
  const auto applySettings = [&] {
    for (const AdvancedSetting& setting : settings) solver.getParam()->setAdvancedParam(setting.key, setting.value);
  };
  applySettings();
  try {
    solver.loadEnvironment(fileName);
  } catch (const QVException& failure) {
    const std::string& explanation = failure.getExplanation();
    throw CommandError(kExitInput, fileName + ": " + explanation + remedyFor(explanation));
  }
  applySettings();
}

bool isEnvironmentName(const std::string& fileName) {
  constexpr std::array<std::string_view, 4> kEndings = {".qvm", ".qvb", ".qvm.gz", ".qvb.gz"};
  for (const std::string_view ending : kEndings) {
    if (fileName.ends_with(ending)) return true;
  }
  return false;
}

std::string displayName(const QVExpression& expression) {
  return expression.isNamed() ? expression.getName() : "#" + std::to_string(expression.getIndex());
}

std::string displayValue(const QVExpression& expression) {
  return expression.isDouble() ? displayDouble(expression.getDoubleValue()) : std::to_string(expression.getIntValue());
}

std::string displayDouble(double value) {
  std::array<char, 32> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return {digits.data(), written.ptr};
}

}  // namespace quvex::cli
