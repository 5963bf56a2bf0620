#include "qvm/textreader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "../../fuzz/readwhole.h"
#include "api/qvexception.h"
#include "qvm/textwriter.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

/// A reader of a document given without its header.
class TextDocument {
 public:
  explicit TextDocument(const std::string& body) : file("<QVM01>\r\n" + body, ""), reader(file.name()) {}
  TextReader* operator->() { return &reader; }

 private:
  TempFile file;
  TextReader reader;
};

/// The failure that reading the first token of `body` ends in.
std::string firstFailure(const std::string& body) {
  return explanationOf([&] { static_cast<void>(TextDocument(body)->hasNext()); });
}

std::string endOfFileFailure(const std::string& body) {
  const TempFile file("<QVM01>\r\n" + body, "");
  const std::string failure = explanationOf([&] { static_cast<void>(TextReader(file.name()).hasNext()); });
  return failure == "End-of-file of " + file.name() + " reached" ? "end of file" : failure;
}

TEST(TextReader, RefusesAWrongMagic) {
  for (const char* content : {"", "<QVM0", "<QVB01>\r\n{}", "QVM01>{}"}) {
    const TempFile file(content, "");
    EXPECT_EQ(explanationOf([&] { TextReader(file.name()); }),
              "The provided file is not recognized (wrong magic number)");
  }
}

TEST(TextReader, DoesNotCheckTheLineBreakOfTheHeader) {
  const TempFile file("<QVM01>{}", "");
  TextReader reader(file.name());
  reader.nextOpenMap();
  reader.nextEndMap();
  EXPECT_FALSE(reader.hasNext());
}

TEST(TextReader, ReadsGzipAndPlainFilesAlike) {
  for (const bool compressed : {false, true}) {
    const TempFile file;
    {
      TextWriter writer(file.name(), compressed);
      writer.pushMap();
      writer.pushValue("a", 5);
      writer.popMap();
    }
    TextReader reader(file.name());
    reader.nextOpenMap();
    reader.nextProperty("a");
    EXPECT_EQ(reader.nextInt(), 5);
    reader.nextEndMap();
  }
}

TEST(TextReader, LooksOneTokenAhead) {
  TextDocument reader("{7}");
  EXPECT_TRUE(reader->isOpenMap());
  EXPECT_TRUE(reader->isOpenMap());
  reader->nextOpenMap();
  EXPECT_FALSE(reader->isOpenMap());
  EXPECT_TRUE(reader->isValue());
  EXPECT_TRUE(reader->isInt());
  EXPECT_EQ(reader->nextInt(), 7);
  EXPECT_TRUE(reader->isEndMap());
  reader->nextEndMap();
  EXPECT_FALSE(reader->hasNext());
  EXPECT_FALSE(reader->hasNext());
}

TEST(TextReader, TellsPropertiesFromStrings) {
  TextDocument reader("\"a\" \n = 1,\"b\",\"c\"");
  EXPECT_TRUE(reader->isProperty());
  EXPECT_TRUE(reader->isProperty("a"));
  EXPECT_FALSE(reader->isProperty("b"));
  EXPECT_FALSE(reader->isString());
  EXPECT_FALSE(reader->isValue());
  EXPECT_EQ(reader->nextProperty(), "a");
  EXPECT_EQ(reader->nextLongLong(), 1);
  EXPECT_TRUE(reader->isString());
  EXPECT_FALSE(reader->isProperty("b"));
  EXPECT_EQ(reader->nextString(), "b");
  EXPECT_EQ(reader->nextString(), "c");
}

TEST(TextReader, DropsSeparatorsWhereverTheyStand) {
  TextDocument reader(",,=1=,=2,");
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(reader->nextInt(), 2);
  EXPECT_FALSE(reader->hasNext());
}

TEST(TextReader, ReadsBooleans) {
  TextDocument reader("true,false true,false");
  EXPECT_TRUE(reader->isBool());
  EXPECT_TRUE(reader->isTrue());
  EXPECT_FALSE(reader->isFalse());
  EXPECT_TRUE(reader->nextBool());
  EXPECT_TRUE(reader->isFalse());
  EXPECT_FALSE(reader->nextBool());
  reader->nextTrue();
  reader->nextFalse();
}

TEST(TextReader, KnowsTheWidthsOfIntegers) {
  TextDocument reader("-128 127 -129 128 -2147483648 2147483647 -2147483649 2147483648");
  for (const int value : {-128, 127}) {
    EXPECT_TRUE(reader->isChar());
    EXPECT_TRUE(reader->isInt());
    EXPECT_EQ(reader->nextChar(), static_cast<char>(value));
  }
  for (const int value : {-129, 128}) {
    EXPECT_FALSE(reader->isChar());
    EXPECT_TRUE(reader->isLong());
    EXPECT_EQ(reader->nextLong(), value);
  }
  EXPECT_EQ(reader->nextInt(), std::numeric_limits<int>::min());
  EXPECT_EQ(reader->nextInt(), std::numeric_limits<int>::max());
  for (const long long value : {-2147483649LL, 2147483648LL}) {
    EXPECT_FALSE(reader->isInt());
    EXPECT_FALSE(reader->isLong());
    EXPECT_TRUE(reader->isLongLong());
    EXPECT_FALSE(reader->isDouble());
    EXPECT_EQ(explanationOf([&] { reader->nextInt(); }), "Unexpected token. Token expected : 'int', line 2");
    EXPECT_EQ(reader->nextLongLong(), value);
  }
}

TEST(TextReader, ReadsSignsWithSpaceBehindThem) {
  TextDocument reader("+5 + 6 - \n 7 ++8 +-9 -.5 +1.5");
  EXPECT_EQ(reader->nextInt(), 5);
  EXPECT_EQ(reader->nextInt(), 6);
  EXPECT_EQ(reader->nextInt(), -7);
  EXPECT_EQ(reader->nextInt(), 8);
  EXPECT_EQ(reader->nextInt(), -9);
  EXPECT_EQ(reader->nextDouble(), -0.5);
  EXPECT_EQ(reader->nextDouble(), 1.5);
}

TEST(TextReader, ConvertsTheStartThatIsANumber) {
  TextDocument reader("1- 007 1-5 1.5.3 1-2.5 5. 1e5e7 1e-400 9223372036854775807");
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(reader->nextInt(), 7);
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(reader->nextDouble(), 1.5);
  EXPECT_EQ(reader->nextDouble(), 1.0);
  EXPECT_EQ(reader->nextDouble(), 5.0);
  EXPECT_EQ(reader->nextDouble(), 1e5);
  EXPECT_EQ(reader->nextDouble(), 0.0);
  EXPECT_EQ(reader->nextLongLong(), std::numeric_limits<long long>::max());
}

TEST(TextReader, RefusesTextsThatAreNoNumber) {
  EXPECT_EQ(firstFailure("."), "Cannot convert '.' to a number, line 2");
  EXPECT_EQ(firstFailure("--5"), "Cannot convert '--5' to a number, line 2");
  EXPECT_EQ(firstFailure("1e"), "Cannot convert '1e' to a number, line 2");
  EXPECT_EQ(firstFailure("1e+-5"), "Cannot convert '1e+-5' to a number, line 2");
  EXPECT_EQ(firstFailure("\n\n-{1"), "Cannot convert '-{1' to a number, line 4");
  EXPECT_EQ(firstFailure("1e999"), "Cannot convert '1e999' to a number, line 2");
  EXPECT_EQ(firstFailure("9223372036854775808"), "Cannot convert '9223372036854775808' to a number, line 2");
  EXPECT_EQ(firstFailure("-9223372036854775809"), "Cannot convert '-9223372036854775809' to a number, line 2");
}

TEST(TextReader, EndsANumberAtCapitalE) {
  TextDocument reader("1E5");
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(explanationOf([&] { static_cast<void>(reader->hasNext()); }), "Unexpected character 'E', line 2");
}

TEST(TextReader, ReadsInfinitiesBetweenValues) {
  TextDocument reader("{1inf,2}");
  reader->nextOpenMap();
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(reader->nextDouble(), kInf);
  EXPECT_EQ(reader->nextInt(), 2);
  reader->nextEndMap();
}

TEST(TextReader, LosesTheSignOfAnInfinityBehindANumber) {
  TextDocument reader("1-inf");
  EXPECT_EQ(reader->nextInt(), 1);
  EXPECT_EQ(reader->nextDouble(), kInf);
}

TEST(TextReader, ReadsAnInfinitePropertyWithoutSeparator) {
  TextDocument reader("\"a\"=inf\"b\"=-inf\"c\"=+inf");
  reader->nextProperty("a");
  EXPECT_EQ(reader->nextDouble(), kInf);
  reader->nextProperty("b");
  EXPECT_EQ(reader->nextDouble(), -kInf);
  reader->nextProperty("c");
  EXPECT_EQ(reader->nextDouble(), kInf);
}

TEST(TextReader, ReadsNanOnlyBehindASign) {
  TextDocument reader("-nan +nan");
  EXPECT_TRUE(std::isnan(reader->nextDouble()));
  EXPECT_TRUE(std::isnan(reader->nextDouble()));
}

TEST(TextReader, CannotReadBareNilAndNan) {
  EXPECT_EQ(firstFailure("nil,1"), "Unexpected characters 'il,'. Expected 'nil', line 1");
  EXPECT_EQ(firstFailure("nan,1"), "Unexpected characters 'an,'. Expected 'nan', line 1");
  EXPECT_EQ(endOfFileFailure("nil"), "end of file");
  EXPECT_EQ(firstFailure("null"), "Unexpected characters 'nu'. Expected 'nil' or 'nan', line 2");
}

TEST(TextReader, RefusesWordsThatItDoesNotKnow) {
  EXPECT_EQ(firstFailure("truth"), "Unexpected characters 'trut'. Expected 'true', line 1");
  EXPECT_EQ(firstFailure("falsy"), "Unexpected characters 'falsy'. Expected 'false', line 1");
  EXPECT_EQ(firstFailure("\nint"), "Unexpected characters 'int'. Expected 'inf', line 2");
  EXPECT_EQ(firstFailure("-nil"), "Unexpected characters 'nil'. Expected 'nan', line 1");
}

TEST(TextReader, RefusesOtherCharacters) {
  EXPECT_EQ(firstFailure("[1]"), "Unexpected character '[', line 2");
  EXPECT_EQ(firstFailure("\n\n x"), "Unexpected character 'x', line 4");
}

TEST(TextReader, ResolvesEscapes) {
  TextDocument reader(R"("\"\'\\\b\f\n\r\t")");
  EXPECT_EQ(reader->nextString(), "\"'\\\b\f\n\r\t");
}

TEST(TextReader, RefusesOtherEscapes) {
  EXPECT_EQ(firstFailure("\"\\x\""), "'\\x' is not a valid escape sequence, line 2");
  EXPECT_EQ(firstFailure("\"\\"), "Illegal escape character : End-of-file reached");
}

TEST(TextReader, DoesNotCountLinesInsideStrings) {
  TextDocument reader("\"\n\n\n\"]");
  EXPECT_EQ(explanationOf([&] {
              reader->nextString();
              static_cast<void>(reader->hasNext());
            }),
            "Unexpected character ']', line 2");
}

TEST(TextReader, FailsWhenTheFileEndsInsideAToken) {
  for (const char* body : {"\"abc", "tru", "-", "+ ", "i", "n", "-in"}) {
    EXPECT_EQ(endOfFileFailure(body), "end of file") << body;
  }
}

TEST(TextReader, ReadsStringsAndNumbersUpToTheEndOfTheFile) {
  EXPECT_EQ(TextDocument("\"abc\"")->nextString(), "abc");
  EXPECT_EQ(TextDocument("\"abc\"  ")->nextString(), "abc");
  EXPECT_EQ(TextDocument("12")->nextInt(), 12);
}

TEST(TextReader, CannotReadAWholeDoubleAsADouble) {
  const TempFile file;
  {
    TextWriter writer(file.name(), false);
    writer.pushMap();
    writer.pushValue(1.0);
    writer.popMap();
  }
  TextReader reader(file.name());
  reader.nextOpenMap();
  EXPECT_FALSE(reader.isDouble());
  EXPECT_EQ(explanationOf([&] { reader.nextDouble(); }), "Unexpected token. Token expected : 'double', line 3");
  EXPECT_EQ(reader.nextInt(), 1);
}

TEST(TextReader, TellsWhichKindWasExpected) {
  const std::pair<const char*, std::function<void(TextReader&)>> kinds[] = {
      {"value", [](TextReader& reader) { reader.nextValue(); }},
      {"open-map", [](TextReader& reader) { reader.nextOpenMap(); }},
      {"property", [](TextReader& reader) { reader.nextProperty(); }},
      {"property", [](TextReader& reader) { reader.nextProperty("a"); }},
      {"string", [](TextReader& reader) { reader.nextString(); }},
      {"double", [](TextReader& reader) { reader.nextDouble(); }},
      {"char", [](TextReader& reader) { reader.nextChar(); }},
      {"int", [](TextReader& reader) { reader.nextInt(); }},
      {"long", [](TextReader& reader) { reader.nextLong(); }},
      {"long long", [](TextReader& reader) { reader.nextLongLong(); }},
      {"bool", [](TextReader& reader) { reader.nextBool(); }},
      {"false", [](TextReader& reader) { reader.nextFalse(); }},
      {"true", [](TextReader& reader) { reader.nextTrue(); }},
      {"nil", [](TextReader& reader) { reader.nextNil(); }},
  };
  for (const auto& [kind, take] : kinds) {
    const TempFile file("<QVM01>\r\n\n}", "");
    TextReader reader(file.name());
    EXPECT_EQ(explanationOf([&reader, &next = take] { next(reader); }),
              std::string("Unexpected token. Token expected : '") + kind + "', line 3");
    reader.nextEndMap();
  }
  TextDocument reader("{");
  EXPECT_EQ(explanationOf([&] { reader->nextEndMap(); }), "Unexpected token. Token expected : 'end-map', line 2");
}

TEST(TextReader, WantsThePropertyOfTheGivenName) {
  TextDocument reader("\"found\"=1");
  EXPECT_EQ(
      failureOf([&] { reader->nextProperty("wanted"); }),
      refusal("TextReader::nextProperty", "Unexpected property. Expected property 'wanted'. Property found 'found'"));
}

TEST(TextReader, SkipsValuesWithAllTheirContents) {
  TextDocument reader("1 {2 \"a\"={3 {} \"b\"=\"c\"}} \"d\" 4");
  reader->skipValue();
  EXPECT_TRUE(reader->isOpenMap());
  reader->skipValue();
  reader->skipValue();
  EXPECT_EQ(reader->nextInt(), 4);
}

TEST(TextReader, SkipsByTokensWhatTheGeneralWaySkipsByQuestions) {
  for (const char* body : {"7 8", "{} 8", "{1 2.5 \"a\" true \"p\"={-inf \"q\"={false}} 3} 8", "\"s\" 8",
                           "{1 {2} \"p\"", "} 8", "{1 2", "{nil} 8", "", "\"p\"=1 8"}) {
    TextDocument byTokens(body);
    TextDocument byQuestions(body);
    EXPECT_EQ(explanationOf([&] { byTokens->skipValue(); }),
              explanationOf([&] { byQuestions->QVMReader::skipValue(); }))
        << body;
    const auto rest = [](TextDocument& reader) { return explanationOf([&] { EXPECT_EQ(reader->nextInt(), 8); }); };
    EXPECT_EQ(rest(byTokens), rest(byQuestions)) << body;
  }
}

TEST(TextReader, CannotSkipAnEndOfMapOrAMapWithoutEnd) {
  EXPECT_EQ(explanationOf([] { TextDocument("}")->skipValue(); }),
            "Unexpected token. Token expected : 'value', line 2");
  EXPECT_EQ(explanationOf([] { TextDocument("{1 {2}")->skipValue(); }),
            "Unexpected token. Token expected : 'end-map', line 2");
}

TEST(TextReader, SkipsAMillionNestedMaps) {
  constexpr std::size_t kDepth = 1000000;
  TextDocument reader(std::string(kDepth, '{') + std::string(kDepth, '}') + "5");
  reader->skipValue();
  EXPECT_EQ(reader->nextInt(), 5);
}

TEST(TextReader, ReportsACutFileOrReadsAShorterDocument) {
  const std::string whole = "<QVM01>\r\n\n{\"a\"=1.5,\"b\"=\n{true,false,-inf,\"c\\\"\"},-12345}";
  const auto read = [](const std::string& bytes) {
    return fuzz::readWhole<TextReader>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  };
  EXPECT_EQ(read(whole), "");
  std::size_t nbFailures = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    if (!read(whole.substr(0, size)).empty()) ++nbFailures;
  }
  // Cut inside the magic (7), the keys "a" and "b" (2 each), the two words, the infinity, the string and its escape,
  // and behind the sign of the last number. A cut key whose "=" is missing reads as a string.
  EXPECT_EQ(nbFailures, 7U + 2U + 2U + 3U + 4U + 3U + 4U + 1U);
}

TEST(TextReader, RaisesKernelExceptionsInItsOwnName) {
  const TempFile file("neither magic", "");
  const Failure failure = failureOf([&] { TextReader(file.name()); });
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("TextReader::readHeader", "The provided file is not recognized (wrong magic number)"));
}

}  // namespace
}  // namespace quvex
