#pragma once

#include <zlib.h>

#include <cstddef>
#include <optional>
#include <string>

#include "api/qvexception.h"

namespace quvex {

/// A byte source on a file, gzip-compressed or plain: zlib finds out which, so no reader has to know.
/// The handle is open from construction to destruction.
class GzipIstream {
 public:
  static constexpr const char* kName = "quvex::GzipIstream";
  const bool compressed = true;  ///< plain files go through zlib as well

  /// Opens the file. Raises KernelException "Cannot open file <fileName>".
  explicit GzipIstream(const std::string& path);
  ~GzipIstream();
  GzipIstream(const GzipIstream&) = delete;
  GzipIstream& operator=(const GzipIstream&) = delete;

  /// The next byte, 0 to 255. Raises KernelException at the end of the file and where the compressed data are broken.
  [[nodiscard]] int get() {
    const int byte = gzgetc(gzFile);
    if (byte < 0) raiseEndOfFile(here<GzipIstream>());
    return byte;
  }

  /// The next byte, or nothing at the end of the file. Raises KernelException where the compressed data are broken:
  /// such a file did not end here.
  [[nodiscard]] std::optional<int> tryGet() {
    const int byte = gzgetc(gzFile);
    if (byte >= 0) return byte;
    if (!isEof()) raiseEndOfFile(here<GzipIstream>());
    return std::nullopt;
  }

  /// Fills the buffer as far as the file goes; what is past the end stays as it was. Made for fields of a few bytes,
  /// for which the call of gzread costs more than the bytes: with it, reading a binary file takes 1.4 times as long.
  void read(void* buffer, std::size_t count) {
    auto* target = static_cast<unsigned char*>(buffer);
    for (int byte = 0; count > 0 && (byte = gzgetc(gzFile)) >= 0; --count) *target++ = static_cast<unsigned char>(byte);
  }

  /// Puts a byte back: it is the next one that is read.
  void unget(int byte) { gzungetc(byte, gzFile); }

  /// True once a read has gone past the last byte, and not before.
  [[nodiscard]] bool isEof() const { return gzeof(gzFile) != 0; }

 private:
  [[noreturn]] void raiseEndOfFile(const Place& place) const;

  ::gzFile gzFile;
  std::string fileName;
};

}  // namespace quvex
