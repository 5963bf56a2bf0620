#include "cli/outputfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cli/errors.h"

namespace quvex::cli {

namespace fs = std::filesystem;

OutputFile::OutputFile(const std::string& targetName) : target(targetName) {
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  if (fs::is_directory(status)) fail("this is a directory");
  if (fs::exists(status) && !fs::is_regular_file(status)) fail("this is no regular file");
  if (fs::exists(status) && access(target.c_str(), W_OK) != 0) fail(std::strerror(errno));

  // A link stays a link: the file behind it is what is replaced.
  const fs::path real = fs::is_regular_file(status) ? fs::canonical(target, ignored) : fs::path(target);
  target = real.string();
  temporary = (real.parent_path() / (".quvex-" + std::to_string(getpid()) + "-" + real.filename().string())).string();

  const int file = open(temporary.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) fail(std::strerror(errno));
  close(file);
  pending = true;
}

void OutputFile::writeAndCommit(const std::string& content) {
  std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
  stream << content;
  stream.close();
  if (!stream) fail("the content cannot be written; is the disk full?");
  commit();
}

void OutputFile::commit() {
  const std::lock_guard lock(mutex);
  if (std::rename(temporary.c_str(), target.c_str()) != 0) fail(std::strerror(errno));
  pending = false;
}

void OutputFile::discard() noexcept {
  const std::lock_guard lock(mutex);
  if (pending) unlink(temporary.c_str());
  pending = false;
}

void OutputFile::fail(const std::string& reason) const {
  throw CommandError(kExitOutput, target + ": cannot write this output: " + reason + "; give another file with -o");
}

}  // namespace quvex::cli
