#pragma once

#include <string>

namespace quvex::cli {

/// Prints the table of parameters, or the row of one key.
void runParams(const std::string& key);

}  // namespace quvex::cli
