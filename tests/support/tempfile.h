#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace quvex {

/// A file name that no other test uses; the file behind it, if any, goes with the object.
class TempFile {
 public:
  explicit TempFile(const std::string& suffix = "")
      : path(testing::TempDir() + "quvex_" + std::to_string(getpid()) + "_" + std::to_string(++nbMade) + suffix) {}
  TempFile(std::string_view content, const std::string& suffix) : TempFile(suffix) {
    std::ofstream(path, std::ios::binary) << content;
  }
  ~TempFile() { std::remove(path.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  [[nodiscard]] const std::string& name() const { return path; }

  /// The bytes of the file as they stand on disk.
  [[nodiscard]] std::string content() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  static inline int nbMade = 0;
  std::string path;
};

}  // namespace quvex
