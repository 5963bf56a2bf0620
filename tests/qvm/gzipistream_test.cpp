#include "qvm/gzipistream.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "api/qvexception.h"
#include "qvm/gzipostream.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

TEST(GzipIstream, GivesBytesFromZeroTo255) {
  const TempFile file(std::string_view("\0\x7f\xff", 3), "");
  GzipIstream stream(file.name());
  EXPECT_EQ(stream.get(), 0);
  EXPECT_EQ(stream.get(), 127);
  EXPECT_EQ(stream.get(), 255);
}

TEST(GzipIstream, FailsPastTheEndWithTheFileName) {
  const TempFile file("x", "");
  GzipIstream stream(file.name());
  EXPECT_EQ(stream.get(), 'x');
  EXPECT_EQ(explanationOf([&] { static_cast<void>(stream.get()); }), "End-of-file of " + file.name() + " reached");
}

TEST(GzipIstream, IsAtTheEndOnlyAfterAReadPastIt) {
  const TempFile file("x", "");
  GzipIstream stream(file.name());
  EXPECT_EQ(stream.tryGet(), 'x');
  EXPECT_FALSE(stream.isEof());
  EXPECT_FALSE(stream.tryGet().has_value());
  EXPECT_TRUE(stream.isEof());
}

TEST(GzipIstream, GivesAByteAgainThatWasPutBack) {
  const TempFile file("ab", "");
  GzipIstream stream(file.name());
  stream.unget(stream.get());
  EXPECT_EQ(stream.get(), 'a');
  EXPECT_EQ(stream.get(), 'b');
}

TEST(GzipIstream, FillsABufferAsFarAsTheFileGoes) {
  const TempFile file("ab", "");
  GzipIstream stream(file.name());
  std::array<char, 4> buffer{'?', '?', '?', '?'};
  stream.read(buffer.data(), buffer.size());
  EXPECT_EQ(std::string(buffer.data(), buffer.size()), "ab??");
}

TEST(GzipIstream, ReadsAcrossItsBlocksAlikeFromPlainAndCompressedFiles) {
  std::string content;
  for (std::uint32_t i = 0; i < 400000; ++i) content += static_cast<char>(i * i % 251);
  for (const bool isCompressed : {false, true}) {
    const TempFile file;
    {
      GzipOstream stream(file.name(), isCompressed);
      stream.write(content);
    }
    GzipIstream stream(file.name());
    std::string found;
    std::array<char, 7> field{};
    while (found.size() + field.size() <= content.size()) {
      stream.unget(stream.get());
      stream.read(field.data(), field.size());
      found.append(field.data(), field.size());
    }
    while (const std::optional<int> byte = stream.tryGet()) found += static_cast<char>(*byte);
    EXPECT_TRUE(found == content);
    EXPECT_TRUE(stream.isEof());
  }
}

TEST(GzipIstream, GivesTheLastByteAgainBehindTheEnd) {
  const TempFile file("ab", "");
  GzipIstream stream(file.name());
  while (stream.tryGet()) continue;
  stream.unget('b');
  EXPECT_FALSE(stream.isEof());
  EXPECT_EQ(stream.tryGet(), 'b');
  EXPECT_FALSE(stream.tryGet().has_value());
  EXPECT_TRUE(stream.isEof());
}

TEST(GzipIstream, RefusesAFileThatDoesNotExist) {
  EXPECT_EQ(explanationOf([] { GzipIstream("/no/such/file"); }), "Cannot open file /no/such/file");
}

TEST(GzipIstream, FailsOnBrokenCompressedData) {
  const TempFile whole;
  {
    GzipOstream stream(whole.name(), true);
    stream.write("some text that is long enough to be compressed, compressed, compressed");
  }
  std::string bytes = whole.content();
  for (std::size_t i = 12; i < 20; ++i) bytes[i] = '\xff';
  const TempFile broken(bytes, "");
  GzipIstream stream(broken.name());
  EXPECT_EQ(explanationOf([&] {
              while (stream.tryGet()) continue;
            }),
            "End-of-file of " + broken.name() + " reached");
  EXPECT_FALSE(stream.isEof());
}

TEST(GzipIstream, RaisesKernelExceptions) {
  const TempFile file("", "");
  GzipIstream stream(file.name());
  EXPECT_TRUE(failureOf([&] { static_cast<void>(stream.get()); }).isKernel);
  EXPECT_TRUE(failureOf([] { GzipIstream("/no/such/file"); }).isKernel);
}

}  // namespace
}  // namespace quvex
