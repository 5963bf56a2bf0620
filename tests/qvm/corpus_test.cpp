#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "../../fuzz/readwhole.h"
#include "qvm/binaryreader.h"
#include "qvm/textreader.h"

#ifndef QUVEX_FUZZ_CORPUS
#define QUVEX_FUZZ_CORPUS QUVEX_SOURCE_DIR "/fuzz/corpus"
#endif

namespace quvex {
namespace {

std::vector<std::filesystem::path> filesOf(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(QUVEX_FUZZ_CORPUS "/") + folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <class Reader>
std::string replay(const std::string& bytes) {
  return fuzz::readWhole<Reader>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

/// Files named "valid..." must be read to their end and files named "broken..." must be refused; all others, which a
/// fuzzer may have left, must only be survived.
template <class Reader>
void replayCorpus(const std::string& folder) {
  std::size_t nbValid = 0;
  std::size_t nbBroken = 0;
  for (const auto& path : filesOf(folder)) {
    const std::string failure = replay<Reader>(bytesOf(path));
    const std::string name = path.filename().string();
    if (name.starts_with("valid")) {
      ++nbValid;
      EXPECT_EQ(failure, "") << path;
    }
    if (name.starts_with("broken")) {
      ++nbBroken;
      EXPECT_NE(failure, "") << path;
    }
  }
  EXPECT_GE(nbValid, 5U);
  EXPECT_GE(nbBroken, 5U);
}

TEST(Corpus, OfTextIsReadOrRefused) { replayCorpus<TextReader>("text"); }

TEST(Corpus, OfBinaryIsReadOrRefused) { replayCorpus<BinaryReader>("binary"); }

TEST(Corpus, CutAnywhereNeitherCrashesNorHangs) {
  std::size_t nbCuts = 0;
  for (const char* folder : {"text", "binary"}) {
    for (const auto& path : filesOf(folder)) {
      const std::string bytes = bytesOf(path);
      if (bytes.size() > 1000) continue;
      for (std::size_t size = 0; size < bytes.size(); ++size, ++nbCuts) {
        const std::string cut = bytes.substr(0, size);
        const bool isText = folder[0] == 't';
        const std::string failure = isText ? replay<TextReader>(cut) : replay<BinaryReader>(cut);
        if (size >= 7) continue;
        EXPECT_EQ(failure, "The provided file is not recognized (wrong magic number)");
      }
    }
  }
  EXPECT_GT(nbCuts, 500U);
}

}  // namespace
}  // namespace quvex
