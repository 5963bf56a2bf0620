#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "qvm/binaryreader.h"
#include "qvm/binarywriter.h"
#include "qvm/textreader.h"
#include "qvm/textwriter.h"
#include "solver/kernel/random.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

/// A random text of any bytes but NUL, which the binary encoding cannot hold.
std::string randomText(std::uint32_t& state) {
  std::string text;
  for (std::uint32_t length = rand(state, 40); length > 0; --length) text += static_cast<char>(1 + rand(state, 255));
  return text;
}

std::int64_t randomInteger(std::uint32_t& state) {
  const std::uint64_t high = rand(state, 0xFFFFFFFFU);
  const std::uint64_t bits = (high << 32U) | rand(state, 0xFFFFFFFFU);
  return static_cast<std::int64_t>(bits) >> rand(state, 64);
}

/// Writes one random entry, with its contents if it is a map, and notes in `script` what reading has to give.
/// Doubles have fractions, since the text encoding keeps no others.
void pushRandomEntry(QVMWriter& writer, std::uint32_t& state, std::uint32_t depth, std::ostream& script) {
  if (coin(state)) {
    const std::string name = "key" + std::to_string(rand(state, 50));
    script << "property " << name << '\n';
    writer.pushProperty(name);
  }
  switch (rand(state, depth > 4 ? 4 : 5)) {
    case 0: {
      const std::string text = randomText(state);
      script << "string " << text << '\n';
      return writer.pushValue(text);
    }
    case 1: {
      const std::int64_t value = randomInteger(state);
      script << "integer " << value << '\n';
      return writer.pushValue(static_cast<long long>(value));
    }
    case 2: {
      const double value = static_cast<double>(rand(state, 1000000)) + 1.0 / (3.0 + rand(state, 100));
      script << "double " << std::hexfloat << value << '\n';
      return writer.pushValue(value);
    }
    case 3: {
      const bool value = coin(state);
      script << (value ? "true\n" : "false\n");
      return writer.pushValue(value);
    }
    default:
      break;
  }
  writer.pushMap();
  script << "map\n";
  for (std::uint32_t nbEntries = rand(state, 8); nbEntries > 0; --nbEntries) {
    pushRandomEntry(writer, state, depth + 1, script);
  }
  writer.popMap();
  script << "end\n";
}

std::string readScript(QVMReader& reader) {
  std::ostringstream script;
  while (reader.hasNext()) {
    if (reader.isOpenMap()) {
      reader.nextOpenMap();
      script << "map\n";
    } else if (reader.isEndMap()) {
      reader.nextEndMap();
      script << "end\n";
    } else if (reader.isProperty()) {
      script << "property " << reader.nextProperty() << '\n';
    } else if (reader.isString()) {
      script << "string " << reader.nextString() << '\n';
    } else if (reader.isDouble()) {
      script << "double " << std::hexfloat << reader.nextDouble() << '\n';
    } else if (reader.isBool()) {
      script << (reader.nextBool() ? "true\n" : "false\n");
    } else {
      script << "integer " << reader.nextLongLong() << '\n';
    }
  }
  return script.str();
}

template <class Writer, class Reader>
void checkRandomDocuments() {
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    const TempFile file;
    std::ostringstream script;
    {
      Writer writer(file.name(), seed % 2 == 1);
      std::uint32_t state = seed;
      writer.pushMap();
      script << "map\n";
      for (int i = 0; i < 20; ++i) pushRandomEntry(writer, state, 0, script);
      writer.popMap();
      script << "end\n";
    }
    Reader reader(file.name());
    EXPECT_EQ(readScript(reader), script.str()) << "seed " << seed;
  }
}

TEST(RoundTrip, KeepsRandomDocumentsInText) { checkRandomDocuments<TextWriter, TextReader>(); }

TEST(RoundTrip, KeepsRandomDocumentsInBinary) { checkRandomDocuments<BinaryWriter, BinaryReader>(); }

}  // namespace
}  // namespace quvex
