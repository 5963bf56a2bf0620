#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quvex::cli {

/// One row of the table of parameters: all that the help, the checks and the texts say of it.
struct ParameterInfo {
  std::string_view key;
  std::string_view flag;  ///< the flag of "solve" that sets it; empty for an advanced key, which "-p" sets
  int defaultValue;
  int lowest;
  int highest;
  std::string_view sentence;
};

/// Every parameter that the solver reads, the named ones first.
[[nodiscard]] std::span<const ParameterInfo> parameterTable();

/// The row of a key, or null.
[[nodiscard]] const ParameterInfo* findParameter(std::string_view key);

/// One advanced setting of the command line.
struct AdvancedSetting {
  std::string key;
  int value;
};

/// Reads "KEY=VALUE". Raises CommandError for another form, for a key that the solver does not read (with the nearest
/// one) and for a value out of its range; `allowUnknown` lets every key and 32-bit value pass.
[[nodiscard]] AdvancedSetting parseSetting(const std::string& text, bool allowUnknown);

}  // namespace quvex::cli
