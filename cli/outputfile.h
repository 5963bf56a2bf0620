#pragma once

#include <mutex>
#include <string>

namespace quvex::cli {

/// A result file that appears whole or not at all: the content goes to a temporary file in the same folder, which takes
/// the target's name at the commit. The temporary file exists from construction on, so that an output that cannot be
/// written is found before the work, and it is gone when the object is.
class OutputFile {
 public:
  /// Raises CommandError when the target cannot be written.
  explicit OutputFile(const std::string& target);
  ~OutputFile() { discard(); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Where the content goes. It ends as the target does, since endings choose formats.
  [[nodiscard]] const std::string& temporaryName() const { return temporary; }

  /// Writes a text as the whole content and commits.
  void writeAndCommit(const std::string& content);
  /// Gives the temporary file the target's name.
  void commit();
  /// Removes the temporary file, unless it was committed. Any thread may call it.
  void discard() noexcept;

 private:
  [[noreturn]] void fail(const std::string& reason) const;

  std::string target;
  std::string temporary;
  std::mutex mutex;
  bool pending = false;
};

}  // namespace quvex::cli
