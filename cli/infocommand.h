#pragma once

#include <string>

namespace quvex::cli {

/// Describes a model on standard output; `kernel` adds the figures of its compiled form.
void runInfo(const std::string& modelFile, bool kernel);

}  // namespace quvex::cli
