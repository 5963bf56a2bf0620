#pragma once

#include <string>

namespace quvex::cli {

/// Puts the decisions of a saved solution into a model, computes every value from them anew, and lists on standard
/// output the objectives and the constraints that do not hold. The solution is JSON as "solve" writes it, or a saved
/// environment. Returns whether everything holds, also that the file's objectives are those of its decisions.
[[nodiscard]] bool runCheck(const std::string& modelFile, const std::string& solutionFile);

}  // namespace quvex::cli
