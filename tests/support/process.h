#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quvex::test {

/// What a finished program left behind.
struct ProcessResult {
  int exitCode = -1;  ///< 128 plus the number of a signal that ended it
  std::string out;
  std::string err;
};

/// A running program whose two outputs are read through pipes. The destructor waits for its end.
class Process {
 public:
  /// Starts `command[0]`, a path, with the rest as arguments, in the folder `directory` (empty: the current one).
  explicit Process(const std::vector<std::string>& command, const std::string& directory = "");
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// Reads standard error until a line begins with `prefix`, and returns whether one did before the end.
  bool waitForErrorLine(const std::string& prefix);
  void sendSignal(int signal) const;
  /// Reads both outputs to their ends and waits.
  [[nodiscard]] ProcessResult finish();

 private:
  pid_t pid = -1;
  int outPipe = -1;
  int errPipe = -1;
  ProcessResult result;
};

[[nodiscard]] ProcessResult runProcess(const std::vector<std::string>& command, const std::string& directory = "");

}  // namespace quvex::test
