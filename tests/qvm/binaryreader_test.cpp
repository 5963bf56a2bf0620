#include "qvm/binaryreader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "../../fuzz/readwhole.h"
#include "api/qvexception.h"
#include "qvm/binarywriter.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

using namespace std::string_literals;

/// A reader of a document given without its magic.
class BinaryDocument {
 public:
  explicit BinaryDocument(const std::string& body) : file("<QVB01>" + body, ""), reader(file.name()) {}
  BinaryReader* operator->() { return &reader; }
  [[nodiscard]] const std::string& name() const { return file.name(); }

 private:
  TempFile file;
  BinaryReader reader;
};

std::string firstFailure(const std::string& body) {
  return explanationOf([&] { static_cast<void>(BinaryDocument(body)->hasNext()); });
}

TEST(BinaryReader, RefusesAWrongMagic) {
  for (const char* content : {"", "<QVB0", "<QVM01>\x10\x11"}) {
    const TempFile file(content, "");
    EXPECT_EQ(explanationOf([&] { BinaryReader(file.name()); }),
              "The provided file is not recognized (wrong magic number)");
  }
}

TEST(BinaryReader, ReadsAnEmptyDocument) {
  BinaryDocument reader("\x10\x11");
  reader->nextOpenMap();
  EXPECT_TRUE(reader->isEndMap());
  reader->nextEndMap();
  EXPECT_FALSE(reader->hasNext());
}

TEST(BinaryReader, ReadsAPropertyFromTheCache) {
  BinaryDocument reader("\x10\x01\x61\x00\x13\x00\x00\xA0\x05\x11"s);
  reader->nextOpenMap();
  EXPECT_TRUE(reader->isProperty("a"));
  EXPECT_FALSE(reader->isString());
  reader->nextProperty("a");
  EXPECT_EQ(reader->nextInt(), 5);
  reader->nextEndMap();
}

TEST(BinaryReader, ReadsStringsInFullAndFromTheCache) {
  BinaryDocument reader("\x12name\0\xD0value\0\x01one\0\x01two\0\xD1\x01\0\xD1\0\0"s);
  EXPECT_EQ(reader->nextProperty(), "name");
  EXPECT_EQ(reader->nextString(), "value");
  EXPECT_TRUE(reader->isString());
  EXPECT_EQ(reader->nextString(), "two");
  EXPECT_EQ(reader->nextString(), "one");
}

TEST(BinaryReader, ReadsEveryWidthOfIntegers) {
  BinaryDocument reader("\xA0\x80\xA1\xFF\x7F\xA2\0\0\0\x80\xA3\0\0\0\0\0\0\0\x80"s);
  EXPECT_EQ(reader->nextInt(), -128);
  EXPECT_EQ(reader->nextInt(), 32767);
  EXPECT_EQ(reader->nextInt(), std::numeric_limits<int>::min());
  EXPECT_FALSE(reader->isInt());
  EXPECT_EQ(reader->nextLongLong(), std::numeric_limits<long long>::min());
}

TEST(BinaryReader, DoesNotCareWhichWidthAnIntegerHas) {
  BinaryDocument reader("\xA3\x05\0\0\0\0\0\0\0\xA2\x80\0\0\0"s);
  EXPECT_TRUE(reader->isChar());
  EXPECT_EQ(reader->nextInt(), 5);
  EXPECT_FALSE(reader->isChar());
  EXPECT_EQ(reader->nextLong(), 128);
}

TEST(BinaryReader, ReadsDoublesByTheirBits) {
  const TempFile file;
  {
    BinaryWriter writer(file.name(), true);
    writer.pushValue(1.0);
    writer.pushValue(-0.1);
    writer.pushValue(std::numeric_limits<double>::infinity());
    writer.pushValue(std::numeric_limits<double>::quiet_NaN());
  }
  BinaryReader reader(file.name());
  EXPECT_TRUE(reader.isDouble());
  EXPECT_EQ(reader.nextDouble(), 1.0);
  EXPECT_EQ(reader.nextDouble(), -0.1);
  EXPECT_EQ(reader.nextDouble(), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(reader.nextDouble()));
}

TEST(BinaryReader, ReadsNilAndBooleans) {
  BinaryDocument reader("\xC0\xC2\xC1\xC2\xC1");
  EXPECT_TRUE(reader->isNil());
  EXPECT_TRUE(reader->isValue());
  reader->nextNil();
  EXPECT_TRUE(reader->nextBool());
  EXPECT_FALSE(reader->nextBool());
  reader->nextTrue();
  reader->nextFalse();
}

TEST(BinaryReader, ReadsCharsAsIntegers) {
  const TempFile file;
  {
    BinaryWriter writer(file.name(), false);
    writer.pushValue('A');
  }
  BinaryReader reader(file.name());
  EXPECT_TRUE(reader.isInt());
  EXPECT_EQ(reader.nextChar(), 'A');
}

TEST(BinaryReader, TakesADefinitionAtTheEndForTheEnd) { EXPECT_FALSE(BinaryDocument("\x01x\0"s)->hasNext()); }

TEST(BinaryReader, RefusesUnknownTags) {
  for (const int tag : {0, 2, 15, 20, 159, 164, 175, 177, 191, 195, 207, 210, 255}) {
    EXPECT_EQ(firstFailure(std::string(1, static_cast<char>(tag))), "File is corrupted : wrong value type") << tag;
  }
}

TEST(BinaryReader, RefusesAnIndexThatIsNotDefined) {
  EXPECT_EQ(firstFailure("\x13\0\0"s), "File is corrupted : wrong string cache index");
  EXPECT_EQ(firstFailure("\x01x\0\xD1\x01\0"s), "File is corrupted : wrong string cache index");
}

TEST(BinaryReader, FailsWhenTheFileEndsInsideAString) {
  for (const char* body : {"\x01x", "\x12x", "\xD0x"}) {
    BinaryDocument reader(body);
    EXPECT_EQ(explanationOf([&] { static_cast<void>(reader->hasNext()); }),
              "End-of-file of " + reader.name() + " reached");
  }
}

TEST(BinaryReader, FillsACutFieldWithZeros) {
  BinaryDocument reader("\xA3\x05\x01");
  EXPECT_EQ(reader->nextLongLong(), 0x105);
  EXPECT_FALSE(reader->hasNext());
}

TEST(BinaryReader, TellsWhichKindWasExpectedAndWhatIsThere) {
  EXPECT_EQ(explanationOf([] { BinaryDocument("\xA0\x05")->nextDouble(); }),
            "Unexpected token. Token expected : 'double', token id in cache : 160");
  EXPECT_EQ(explanationOf([] { BinaryDocument("\xC0")->nextEndMap(); }),
            "Unexpected token. Token expected : 'end-map', token id in cache : 192");
  EXPECT_EQ(explanationOf([] { BinaryDocument("")->nextOpenMap(); }),
            "Unexpected token. Token expected : 'open-map', token id in cache : 0");
}

TEST(BinaryReader, WantsThePropertyOfTheGivenName) {
  BinaryDocument reader(
      "\x12"
      "found\0"s);
  EXPECT_EQ(
      failureOf([&] { reader->nextProperty("wanted"); }),
      refusal("BinaryReader::nextProperty", "Unexpected property. Expected property 'wanted'. Property found 'found'"));
}

TEST(BinaryReader, SkipsValuesWithAllTheirContents) {
  BinaryDocument reader("\x10\xA0\x01\x12p\0\x10\xC0\x11\x11\xA0\x07"s);
  reader->skipValue();
  EXPECT_EQ(reader->nextInt(), 7);
  EXPECT_EQ(explanationOf([] { BinaryDocument("\x10\x10\x11")->skipValue(); }),
            "Unexpected token. Token expected : 'end-map', token id in cache : 0");
}

TEST(BinaryReader, LosesWhatFollowsANul) {
  const TempFile file;
  {
    BinaryWriter writer(file.name(), false);
    writer.pushValue("a\0\x02"s);
  }
  BinaryReader reader(file.name());
  EXPECT_EQ(explanationOf([&] { static_cast<void>(reader.hasNext()); }), "File is corrupted : wrong value type");
}

TEST(BinaryReader, FindsEveryStringOfAFullCache) {
  constexpr int kNbStrings = 65600;
  const TempFile file;
  {
    BinaryWriter writer(file.name(), true);
    for (int round = 0; round < 2; ++round) {
      for (int i = 0; i < kNbStrings; ++i) writer.pushValue("s" + std::to_string(i));
    }
  }
  BinaryReader reader(file.name());
  int nbWrong = 0;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < kNbStrings; ++i) nbWrong += reader.nextString() != "s" + std::to_string(i) ? 1 : 0;
  }
  EXPECT_EQ(nbWrong, 0);
  EXPECT_FALSE(reader.hasNext());
}

TEST(BinaryReader, ReportsACutFileOrReadsAShorterDocument) {
  const std::string whole =
      "<QVB01>\x10\x01name\0\x13\0\0\xA2\x01\x02\x03\x04\x12long\0\xB0\0\0\0\0\0\0\xF0\x3F\xC0\xC1\xC2\xD1\0\0\x11"s;
  const auto read = [](const std::string& bytes) {
    return fuzz::readWhole<BinaryReader>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  };
  EXPECT_EQ(read(whole), "");
  std::size_t nbFailures = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    if (!read(whole.substr(0, size)).empty()) ++nbFailures;
  }
  // Cut inside the magic (7) and inside the two strings; cut indices read as 0, cut numbers get zeros.
  EXPECT_EQ(nbFailures, 7U + 5U + 5U);
}

TEST(BinaryReader, RaisesKernelExceptionsInItsOwnName) {
  const TempFile file("neither magic", "");
  const Failure failure = failureOf([&] { BinaryReader(file.name()); });
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("BinaryReader::readHeader", "The provided file is not recognized (wrong magic number)"));
}

}  // namespace
}  // namespace quvex
