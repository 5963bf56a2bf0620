#include "cli/paramscommand.h"

#include <iomanip>
#include <iostream>
#include <limits>

#include "cli/errors.h"
#include "cli/nearest.h"
#include "cli/parametertable.h"

namespace quvex::cli {

namespace {

[[nodiscard]] std::string rangeText(const ParameterInfo& info) {
  if (info.highest == std::numeric_limits<int>::max()) return std::to_string(info.lowest) + "..";
  return std::to_string(info.lowest) + ".." + std::to_string(info.highest);
}

void printRow(const ParameterInfo& info) {
  std::cout << std::left << std::setw(26) << info.key << std::setw(13) << (info.flag.empty() ? "-p" : info.flag)
            << std::setw(9) << info.defaultValue << std::setw(9) << rangeText(info) << info.sentence << '\n';
}

void printHeader() {
  std::cout << std::left << std::setw(26) << "name" << std::setw(13) << "set by" << std::setw(9) << "default"
            << std::setw(9) << "range"
            << "meaning\n";
}

[[nodiscard]] const ParameterInfo& requireParameter(const std::string& key) {
  const ParameterInfo* info = findParameter(key);
  if (info != nullptr) return *info;
  std::vector<std::string> keys;
  for (const ParameterInfo& row : parameterTable()) keys.emplace_back(row.key);
  throw CommandError(kExitUsage, "unknown parameter \"" + key + "\"" + didYouMean(key, keys));
}

}  // namespace

void runParams(const std::string& key) {
  if (!key.empty()) {
    const ParameterInfo& info = requireParameter(key);
    printHeader();
    printRow(info);
    return;
  }
  printHeader();
  for (const ParameterInfo& info : parameterTable()) printRow(info);
}

}  // namespace quvex::cli
