#include "qvm/binarywriter.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "api/qvexception.h"
#include "qvm/binaryreader.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

using namespace std::string_literals;

/// What is written behind the magic.
std::string written(const std::function<void(QVMWriter&)>& write) {
  const TempFile file;
  {
    BinaryWriter writer(file.name(), false);
    write(writer);
  }
  EXPECT_EQ(file.content().substr(0, 7), "<QVB01>");
  return file.content().substr(7);
}

std::string writtenInteger(long long value) {
  return written([&](QVMWriter& writer) { writer.pushValue(value); });
}

TEST(BinaryWriter, WritesAnEmptyDocument) {
  EXPECT_EQ(written([](QVMWriter& writer) {
              writer.pushMap();
              writer.popMap();
            }),
            "\x10\x11");
}

TEST(BinaryWriter, DefinesAShortNameBeforeItsFirstUse) {
  EXPECT_EQ(written([](QVMWriter& writer) {
              writer.pushMap();
              writer.pushValue("a", 5);
              writer.popMap();
            }),
            "\x10\x01\x61\x00\x13\x00\x00\xA0\x05\x11"s);
}

TEST(BinaryWriter, SharesTheCacheBetweenNamesAndValues) {
  EXPECT_EQ(written([](QVMWriter& writer) {
              writer.pushMap();
              writer.pushValue("a", "b");
              writer.pushValue("b", std::string("a"));
              writer.popMap();
            }),
            "\x10\x01"
            "a\0\x13\0\0\x01"
            "b\0\xD1\x01\0\x13\x01\0\xD1\0\0\x11"s);
}

TEST(BinaryWriter, CachesStringsOfAtMost25Bytes) {
  const std::string longest(25, 'x');
  EXPECT_EQ(written([&](QVMWriter& writer) {
              writer.pushValue(longest);
              writer.pushValue(longest);
            }),
            "\x01" + longest + "\0\xD1\0\0\xD1\0\0"s);
  const std::string longer(26, 'x');
  EXPECT_EQ(written([&](QVMWriter& writer) {
              writer.pushMap();
              writer.pushValue(longer);
              writer.pushValue(longer, longer);
              writer.popMap();
            }),
            "\x10\xD0" + longer + "\0\x12"s + longer + "\0\xD0"s + longer + "\0\x11"s);
}

TEST(BinaryWriter, WritesNewStringsInFullOnceTheCacheIsFull) {
  const std::string tail = written([](QVMWriter& writer) {
    for (int i = 0; i < 65534; ++i) writer.pushValue(std::to_string(i));
    writer.pushValue("new");
    writer.pushValue("new");
    writer.pushValue("65533");
    writer.pushValue("0");
  });
  const std::string expected =
      "\x01"
      "65533\0\xD1\xFD\xFF\xD0new\0\xD0new\0\xD1\xFD\xFF\xD1\0\0"s;
  ASSERT_GT(tail.size(), expected.size());
  EXPECT_EQ(tail.substr(tail.size() - expected.size()), expected);
}

TEST(BinaryWriter, WritesNewNamesInFullOnceTheCacheIsFull) {
  const std::string tail = written([](QVMWriter& writer) {
    for (int i = 0; i < 65534; ++i) writer.pushValue(std::to_string(i));
    writer.pushMap();
    writer.pushValue("new", 1);
    writer.pushValue("65533", 2);
    writer.popMap();
  });
  const std::string expected = "\x10\x12new\0\xA0\x01\x13\xFD\xFF\xA0\x02\x11"s;
  ASSERT_GT(tail.size(), expected.size());
  EXPECT_EQ(tail.substr(tail.size() - expected.size()), expected);
}

TEST(BinaryWriter, TakesTheNarrowestInteger) {
  EXPECT_EQ(writtenInteger(0), "\xA0\0"s);
  EXPECT_EQ(writtenInteger(127), "\xA0\x7F");
  EXPECT_EQ(writtenInteger(128), "\xA1\x80\0"s);
  EXPECT_EQ(writtenInteger(-128), "\xA0\x80");
  EXPECT_EQ(writtenInteger(-129), "\xA1\x7F\xFF");
  EXPECT_EQ(writtenInteger(32767), "\xA1\xFF\x7F");
  EXPECT_EQ(writtenInteger(32768), "\xA2\0\x80\0\0"s);
  EXPECT_EQ(writtenInteger(-32768), "\xA1\0\x80"s);
  EXPECT_EQ(writtenInteger(-32769), "\xA2\xFF\x7F\xFF\xFF");
  EXPECT_EQ(writtenInteger(2147483647), "\xA2\xFF\xFF\xFF\x7F");
  EXPECT_EQ(writtenInteger(2147483648LL), "\xA3\0\0\0\x80\0\0\0\0"s);
  EXPECT_EQ(writtenInteger(-2147483648LL), "\xA2\0\0\0\x80"s);
  EXPECT_EQ(writtenInteger(-2147483649LL), "\xA3\xFF\xFF\xFF\x7F\xFF\xFF\xFF\xFF");
  EXPECT_EQ(writtenInteger(std::numeric_limits<long long>::max()), "\xA3\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F");
  EXPECT_EQ(writtenInteger(std::numeric_limits<long long>::min()), "\xA3\0\0\0\0\0\0\0\x80"s);
}

TEST(BinaryWriter, WritesEveryKindOfValue) {
  EXPECT_EQ(
      written([](QVMWriter& writer) {
        writer.pushValue(true);
        writer.pushValue(false);
        writer.pushTrue();
        writer.pushFalse();
        writer.pushNil();
        writer.pushValue(1.0);
        writer.pushValue(-std::numeric_limits<double>::infinity());
        writer.pushValue(-1);
        writer.pushValue(300L);
        writer.pushValue('\xff');
        writer.pushValue("");
      }),
      "\xC2\xC1\xC2\xC1\xC0\xB0\0\0\0\0\0\0\xF0\x3F\xB0\0\0\0\0\0\0\xF0\xFF\xA0\xFF\xA1\x2C\x01\xA0\xFF\x01\0\xD1\0\0"s);
}

TEST(BinaryWriter, WritesAValueOutsideAMapWithoutComplaint) { EXPECT_EQ(writtenInteger(5), "\xA0\x05"); }

TEST(BinaryWriter, WritesTheBytesBehindANulAsWell) {
  const std::string text = "a\0b"s;
  EXPECT_EQ(written([&](QVMWriter& writer) { writer.pushValue(text); }),
            "\x01"
            "a\0b\0\xD1\0\0"s);
}

TEST(BinaryWriter, NeedsAnOpenMapForPropertiesAndPops) {
  const TempFile file;
  BinaryWriter writer(file.name(), false);
  EXPECT_EQ(explanationOf([&] { writer.popMap(); }), "There is no map to pop");
  EXPECT_EQ(explanationOf([&] { writer.pushProperty("a"); }), "Cannot push a property outside a map");
}

TEST(BinaryWriter, RefusesToEndWithAnOpenMap) {
  const TempFile file;
  EXPECT_EQ(explanationOf([&] {
              BinaryWriter writer(file.name(), false);
              writer.pushMap();
            }),
            "Writer is not in a stable state : open maps on the stack");
}

TEST(BinaryWriter, IsSilentWhenAnotherFailureEndsIt) {
  const TempFile file;
  EXPECT_EQ(explanationOf([&] {
              BinaryWriter writer(file.name(), false);
              writer.pushMap();
              raise<KernelException>(here<BinaryWriter>(), "the first failure");
            }),
            "the first failure");
}

TEST(BinaryWriter, RaisesKernelExceptionsInItsOwnName) {
  const TempFile file;
  const Failure failure = failureOf([&] { BinaryWriter(file.name(), false).popMap(); });
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("BinaryWriter::popMap", "There is no map to pop"));
}

}  // namespace
}  // namespace quvex
