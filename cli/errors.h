#pragma once

#include <stdexcept>
#include <string>

namespace quvex::cli {

/// What the shell sees. Part of the interface.
enum ExitCode : int {
  kExitDone = 0,           ///< the run ended as asked, whatever the status of the solution
  kExitInternal = 1,       ///< a fault of the program
  kExitUsage = 2,          ///< unknown flag, key or value
  kExitInput = 3,          ///< a file cannot be read, or the model in it is refused
  kExitOutput = 4,         ///< an output cannot be written
  kExitViolated = 10,      ///< "check" found violations
  kExitInterrupted = 130,  ///< ended at once by the second Ctrl-C
};

/// A command that cannot go on: a sentence with a remedy, and the exit code.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode exitCode, const std::string& sentence) : std::runtime_error(sentence), code(exitCode) {}
  [[nodiscard]] ExitCode exitCode() const { return code; }

 private:
  ExitCode code;
};

}  // namespace quvex::cli
