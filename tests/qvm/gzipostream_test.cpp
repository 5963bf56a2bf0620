#include "qvm/gzipostream.h"

#include <gtest/gtest.h>

#include <string>

#include "api/qvexception.h"
#include "qvm/gzipistream.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

std::string readAll(const std::string& fileName) {
  GzipIstream stream(fileName);
  std::string content;
  for (auto byte = stream.tryGet(); byte; byte = stream.tryGet()) content += static_cast<char>(*byte);
  return content;
}

TEST(GzipOstream, WritesBytesAndBlocksPlain) {
  const TempFile file;
  {
    GzipOstream stream(file.name(), false);
    stream.put('a');
    stream.write(std::string_view("b\0c", 3));
    stream.put('\xff');
  }
  EXPECT_EQ(file.content(), std::string("ab\0c\xff", 5));
}

TEST(GzipOstream, WritesAStandardGzipStream) {
  const TempFile file;
  {
    GzipOstream stream(file.name(), true);
    stream.put('a');
    stream.write(std::string(100000, 'b'));
  }
  const std::string bytes = file.content();
  EXPECT_EQ(bytes.substr(0, 3), "\x1f\x8b\x08");
  EXPECT_LT(bytes.size(), 1000U);
  EXPECT_EQ(readAll(file.name()), "a" + std::string(100000, 'b'));
}

TEST(GzipOstream, IsReadAlikeInBothForms) {
  const TempFile plain;
  const TempFile compressed;
  for (const bool isCompressed : {false, true}) {
    GzipOstream stream((isCompressed ? compressed : plain).name(), isCompressed);
    for (int byte = 0; byte < 256; ++byte) stream.put(static_cast<char>(byte));
  }
  EXPECT_NE(plain.content(), compressed.content());
  EXPECT_EQ(readAll(plain.name()), readAll(compressed.name()));
  EXPECT_EQ(readAll(plain.name()).size(), 256U);
}

TEST(GzipOstream, RefusesAFileThatCannotBeCreated) {
  for (const bool isCompressed : {false, true}) {
    EXPECT_EQ(explanationOf([&] { GzipOstream("/no/such/folder/x", isCompressed); }),
              "Cannot open file /no/such/folder/x");
  }
}

}  // namespace
}  // namespace quvex
