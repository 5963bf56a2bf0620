#pragma once

#include <string>

namespace quvex::cli {

/// Writes a saved environment anew, in the format that the ending of the second name tells.
void runConvert(const std::string& inputFile, const std::string& outputFile);

}  // namespace quvex::cli
