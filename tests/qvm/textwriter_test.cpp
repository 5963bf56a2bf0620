#include "qvm/textwriter.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "api/qvexception.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::string written(const std::function<void(QVMWriter&)>& write) {
  const TempFile file;
  {
    TextWriter writer(file.name(), false);
    write(writer);
  }
  return file.content();
}

/// What is written between the braces of the document.
std::string entries(const std::function<void(QVMWriter&)>& write) {
  const std::string document = written([&](QVMWriter& writer) {
    writer.pushMap();
    write(writer);
    writer.popMap();
  });
  const std::string head = "<QVM01>\r\n\n{";
  EXPECT_EQ(document.substr(0, head.size()), head);
  EXPECT_EQ(document.back(), '}');
  return document.substr(head.size(), document.size() - head.size() - 1);
}

TEST(TextWriter, StartsWithItsHeader) {
  EXPECT_EQ(written([](QVMWriter&) {}), "<QVM01>\r\n");
}

TEST(TextWriter, WritesAnEmptyMap) {
  EXPECT_EQ(entries([](QVMWriter&) {}), "");
}

TEST(TextWriter, StartsALineAtEveryMapAndSeparatesEntries) {
  const std::string document = written([](QVMWriter& writer) {
    writer.pushMap();
    writer.pushValue("a", 1);
    writer.pushProperty("b");
    writer.pushMap();
    writer.pushValue(2);
    writer.pushValue(3);
    writer.popMap();
    writer.popMap();
  });
  EXPECT_EQ(document, "<QVM01>\r\n\n{\"a\"=1,\"b\"=\n{2,3}}");
}

TEST(TextWriter, SeparatesMapsFromWhatFollows) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              for (int i = 0; i < 2; ++i) {
                writer.pushMap();
                writer.popMap();
              }
              writer.pushValue("a", true);
              writer.pushValue(4);
            }),
            "\n{},\n{},\"a\"=true,4");
}

TEST(TextWriter, WritesEveryKindOfValue) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              writer.pushValue(true);
              writer.pushValue(false);
              writer.pushTrue();
              writer.pushFalse();
              writer.pushNil();
              writer.pushValue(-7);
              writer.pushValue(8L);
              writer.pushValue(std::numeric_limits<long long>::min());
              writer.pushValue('c');
              writer.pushValue("literal");
              writer.pushValue(std::string("string"));
            }),
            "true,false,true,false,nil,-7,8,-9223372036854775808,c,\"literal\",\"string\"");
}

TEST(TextWriter, WritesEveryKindOfProperty) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              writer.pushValue("a", "literal");
              writer.pushValue("b", true);
              writer.pushValue("c", 0.5);
              writer.pushValue("d", 1LL);
              writer.pushValue("e", 2);
              writer.pushValue("f", 3L);
              writer.pushValue("g", 'x');
              writer.pushValue("h", std::string("string"));
            }),
            "\"a\"=\"literal\",\"b\"=true,\"c\"=0.5,\"d\"=1,\"e\"=2,\"f\"=3,\"g\"=x,\"h\"=\"string\"");
}

TEST(TextWriter, WritesDoublesWithSeventeenDigits) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              for (const double value : {0.1, 1.0, -2.5, 1e300, 1e-7, 123456789012345678.0, -0.0}) {
                writer.pushValue(value);
              }
            }),
            "0.10000000000000001,1,-2.5,1.0000000000000001e+300,9.9999999999999995e-08,1.2345678901234568e+17,-0");
}

TEST(TextWriter, WritesInfinitiesAndNanWithoutSeparators) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              writer.pushValue(1);
              writer.pushValue(kInf);
              writer.pushValue(2);
              writer.pushValue(-kInf);
              writer.pushValue(kNan);
            }),
            "1inf,2-infnan");
}

TEST(TextWriter, DoesNotCountAnInfiniteProperty) {
  EXPECT_EQ(entries([](QVMWriter& writer) {
              writer.pushValue("a", kInf);
              writer.pushValue("b", 1);
            }),
            "\"a\"=inf\"b\"=1");
}

TEST(TextWriter, WritesInfinitiesOutsideAMapToo) {
  EXPECT_EQ(written([](QVMWriter& writer) { writer.pushValue(kInf); }), "<QVM01>\r\ninf");
}

TEST(TextWriter, EscapesBackslashesAndQuotesOnly) {
  EXPECT_EQ(entries([](QVMWriter& writer) { writer.pushValue("\\\""); }), R"("\\\"")");
  EXPECT_EQ(entries([](QVMWriter& writer) { writer.pushValue(R"(a"b\c)"); }), R"("a\"b\\c")");
  EXPECT_EQ(entries([](QVMWriter& writer) { writer.pushValue("\n\t'"); }), "\"\n\t'\"");
  EXPECT_EQ(entries([](QVMWriter& writer) { writer.pushValue(""); }), "\"\"");
}

TEST(TextWriter, DoesNotEscapeKeys) {
  EXPECT_EQ(entries([](QVMWriter& writer) { writer.pushValue("a\\\"", 1); }), "\"a\\\"\"=1");
}

TEST(TextWriter, NeedsAnOpenMap) {
  const TempFile file;
  TextWriter writer(file.name(), false);
  EXPECT_EQ(explanationOf([&] { writer.popMap(); }), "There is no map to pop");
  EXPECT_EQ(explanationOf([&] { writer.pushProperty("a"); }), "Cannot push a property outside a map");
  EXPECT_EQ(explanationOf([&] { writer.pushValue(1); }), "Cannot push a value outside a map");
  EXPECT_EQ(explanationOf([&] { writer.pushNil(); }), "Cannot push a value outside a map");
  EXPECT_EQ(explanationOf([&] { writer.pushValue("x"); }), "Cannot push a value outside a map");
}

TEST(TextWriter, RefusesToEndWithAnOpenMap) {
  const TempFile file;
  EXPECT_EQ(explanationOf([&] {
              TextWriter writer(file.name(), false);
              writer.pushMap();
            }),
            "Writer is not in a stable state : open maps on the stack");
}

TEST(TextWriter, IsSilentWhenAnotherFailureEndsIt) {
  const TempFile file;
  EXPECT_EQ(explanationOf([&] {
              TextWriter writer(file.name(), false);
              writer.pushMap();
              raise<KernelException>(here<TextWriter>(), "the first failure");
            }),
            "the first failure");
}

TEST(TextWriter, RaisesKernelExceptionsInItsOwnName) {
  const TempFile file;
  const Failure failure = failureOf([&] { TextWriter(file.name(), false).popMap(); });
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("TextWriter::popMap", "There is no map to pop"));
}

}  // namespace
}  // namespace quvex
