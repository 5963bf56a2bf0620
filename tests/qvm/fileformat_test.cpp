#include "qvm/fileformat.h"

#include <gtest/gtest.h>

#include <string>

#include "api/qvexception.h"
#include "qvm/binarywriter.h"
#include "qvm/textwriter.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

TEST(FileFormat, IsToldByContentAndNotByName) {
  for (const bool compressed : {false, true}) {
    const TempFile text(".qvb.gz");
    const TempFile binary(".qvm");
    { TextWriter writer(text.name(), compressed); }
    { BinaryWriter writer(binary.name(), compressed); }
    EXPECT_TRUE(isTextFile(text.name()));
    EXPECT_FALSE(isBinaryFile(text.name()));
    EXPECT_FALSE(isTextFile(binary.name()));
    EXPECT_TRUE(isBinaryFile(binary.name()));
  }
}

TEST(FileFormat, IsUnknownForShortFilesAndOtherContent) {
  for (const char* content : {"", "<QVM01", "<QVM02>{}", "something else"}) {
    const TempFile file(content, "");
    EXPECT_FALSE(isTextFile(file.name())) << content;
    EXPECT_FALSE(isBinaryFile(file.name())) << content;
  }
  EXPECT_FALSE(isTextFile(testing::TempDir())) << "a folder";
}

TEST(FileFormat, CannotBeToldOfAMissingFile) {
  EXPECT_EQ(explanationOf([] { static_cast<void>(isTextFile("/no/such/file")); }), "Cannot open file /no/such/file");
  EXPECT_EQ(explanationOf([] { static_cast<void>(isBinaryFile("/no/such/file")); }), "Cannot open file /no/such/file");
}

}  // namespace
}  // namespace quvex
