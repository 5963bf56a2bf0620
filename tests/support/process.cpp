#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace quvex::test {

namespace {

[[noreturn]] void becomeProgram(const std::vector<char*>& arguments, const char* directory, int out, int err) {
  if (dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0) _exit(127);
  if (*directory != '\0' && chdir(directory) != 0) _exit(127);
  execv(arguments[0], arguments.data());
  _exit(127);
}

/// Appends what is there to read; false at the end of the pipe.
[[nodiscard]] bool readSome(int pipe, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t count = read(pipe, buffer.data(), buffer.size());
  if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
  return count > 0;
}

[[nodiscard]] bool hasLineWithPrefix(const std::string& text, const std::string& prefix) {
  return text.starts_with(prefix) || text.find("\n" + prefix) != std::string::npos;
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::string& directory) {
  std::array<int, 2> out{};
  std::array<int, 2> err{};
  if (pipe2(out.data(), O_CLOEXEC) != 0 || pipe2(err.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  pid = fork();
  if (pid < 0) throw std::runtime_error("no process");
  if (pid == 0) becomeProgram(arguments, directory.c_str(), out[1], err[1]);
  close(out[1]);
  close(err[1]);
  outPipe = out[0];
  errPipe = err[0];
}

Process::~Process() {
  if (pid > 0) static_cast<void>(finish());
}

bool Process::waitForErrorLine(const std::string& prefix) {
  while (!hasLineWithPrefix(result.err, prefix)) {
    if (!readSome(errPipe, result.err)) return false;
  }
  return true;
}

void Process::sendSignal(int signal) const { kill(pid, signal); }

ProcessResult Process::finish() {
  std::array<pollfd, 2> pipes = {{{outPipe, POLLIN, 0}, {errPipe, POLLIN, 0}}};
  std::array<std::string*, 2> texts = {&result.out, &result.err};
  int open = 2;
  while (open > 0) {
    poll(pipes.data(), pipes.size(), -1);
    for (std::size_t i = 0; i < pipes.size(); ++i) {
      if (pipes[i].revents == 0 || readSome(pipes[i].fd, *texts[i])) continue;
      close(pipes[i].fd);
      pipes[i].fd = -1;  // poll passes over negative descriptors
      --open;
    }
  }
  int status = 0;
  waitpid(pid, &status, 0);
  pid = -1;
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

ProcessResult runProcess(const std::vector<std::string>& command, const std::string& directory) {
  return Process(command, directory).finish();
}

}  // namespace quvex::test
