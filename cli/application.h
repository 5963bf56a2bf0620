#pragma once

namespace quvex::cli {

/// The whole program: reads the command line, runs the command, and returns the exit code. Never raises.
[[nodiscard]] int runProgram(int argc, const char* const* argv);

}  // namespace quvex::cli
