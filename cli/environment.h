#pragma once

#include <span>
#include <string>

#include "cli/parametertable.h"
#include "quvex.h"

namespace quvex::cli {

/// Loads a saved environment. The settings hold while the model is compiled, and replace those of the file.
/// Raises CommandError with the file's name when it cannot be read or its model is refused.
void loadEnvironment(Quvex& solver, const std::string& fileName, std::span<const AdvancedSetting> settings = {});

/// Whether a file name ends as those of saved environments do: .qvm, .qvb, .qvm.gz or .qvb.gz.
[[nodiscard]] bool isEnvironmentName(const std::string& fileName);

/// How texts call an expression: by its name, or "#" and its index.
[[nodiscard]] std::string displayName(const QVExpression& expression);

/// The value of an expression that has one, in decimal digits.
[[nodiscard]] std::string displayValue(const QVExpression& expression);

/// A number with as many digits as tell it from every other.
[[nodiscard]] std::string displayDouble(double value);

}  // namespace quvex::cli
