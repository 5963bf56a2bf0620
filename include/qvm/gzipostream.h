#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace quvex {

/// A byte sink on a new file, gzip-compressed or plain.
/// Exactly one of the two handles is open from construction to destruction, the one that `compressed` names.
class GzipOstream {
 public:
  static constexpr const char* kName = "quvex::GzipOstream";

  /// Creates or empties the file. Raises KernelException "Cannot open file <fileName>".
  GzipOstream(const std::string& path, bool isCompressed);
  ~GzipOstream();
  GzipOstream(const GzipOstream&) = delete;
  GzipOstream& operator=(const GzipOstream&) = delete;

  /// Appends one byte. A full disk goes unnoticed, here and in `write`.
  void put(char byte);
  /// Appends a block of any length.
  void write(std::string_view block);

 private:
  bool compressed;
  ::gzFile gzFile = nullptr;
  std::FILE* file = nullptr;
  std::string fileName;
};

}  // namespace quvex
