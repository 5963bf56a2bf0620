#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/result.h"

namespace quvex::cli {

/// What the command line says; what is absent stays as the file has it.
struct SolveOptions {
  std::string modelFile;
  std::optional<int> seconds;
  std::optional<std::int64_t> iterations;
  std::optional<int> threads;
  std::optional<int> seed;
  std::optional<int> annealing;
  std::optional<int> every;
  std::vector<std::string> settings;  ///< "KEY=VALUE"
  bool allowUnknown = false;
  std::vector<std::string> phases;  ///< "time=..,iterations=..,objective=.."
  std::string outputFile;           ///< empty: standard output
  ShownValues shown = ShownValues::All;
  bool json = false;
  bool quiet = false;
  bool verbose = false;
};

/// Loads, solves, reports. Raises CommandError or QVException.
void runSolve(const SolveOptions& options);

}  // namespace quvex::cli
