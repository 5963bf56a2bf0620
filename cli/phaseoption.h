#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "quvex.h"

namespace quvex::cli {

/// The limits of one phase; what is absent keeps the phase's default.
struct PhaseLimits {
  std::optional<int> seconds;
  std::optional<std::int64_t> iterations;
  std::optional<int> objective;
};

/// Reads "time=10,iterations=5000,objective=0", each part at most once and at least one of them.
/// Raises CommandError for anything else.
[[nodiscard]] PhaseLimits parsePhase(const std::string& text);

/// Makes these the phases of a solver that may have others already.
void replacePhases(Quvex& solver, std::span<const PhaseLimits> phases);

}  // namespace quvex::cli
