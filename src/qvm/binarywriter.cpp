#include "qvm/binarywriter.h"

#include <array>
#include <bit>
#include <limits>
#include <string_view>

namespace quvex {

namespace {

// Longer strings are mostly unique names: they would fill the cache and gain nothing.
constexpr std::size_t kLongestCached = 25;
// Leaves room in the 16-bit index.
constexpr std::size_t kLargestCache = 65534;

template <class Narrow>
[[nodiscard]] bool fits(long long value) {
  return value >= std::numeric_limits<Narrow>::min() && value <= std::numeric_limits<Narrow>::max();
}

}  // namespace

BinaryWriter::BinaryWriter(const std::string& fileName, bool compressed) : StreamWriter(fileName, compressed) {
  stream.write(kBinaryMagic);
}

BinaryWriter::~BinaryWriter() noexcept(false) { checkStable(here<BinaryWriter>(), nbOpenMaps); }

void BinaryWriter::writeToken(Token token) { stream.put(static_cast<char>(token)); }

void BinaryWriter::writeFixed(std::uint64_t bits, int nbBytes) {
  std::array<char, sizeof bits> bytes{};
  for (char& byte : bytes) {
    byte = static_cast<char>(bits & 0xFFU);
    bits >>= 8U;
  }
  stream.write({bytes.data(), static_cast<std::size_t>(nbBytes)});
}

bool BinaryWriter::isCacheable(const std::string& text) const {
  return text.size() <= kLongestCached && (cache.size() < kLargestCache || cache.contains(text));
}

void BinaryWriter::writeString(const std::string& text, Token inFull, Token cached) {
  if (!isCacheable(text)) {
    writeToken(inFull);
    stream.write({text.c_str(), text.size() + 1});
    return;
  }
  const auto [entry, isNew] = cache.try_emplace(text, static_cast<std::uint16_t>(cache.size()));
  if (isNew) {
    stream.put(static_cast<char>(kStringDefinition));
    stream.write({text.c_str(), text.size() + 1});
  }
  writeToken(cached);
  writeFixed(entry->second, 2);
}

void BinaryWriter::pushMap() {
  writeToken(Token::OpenMap);
  ++nbOpenMaps;
}

void BinaryWriter::popMap() {
  checkMapToPop(here<BinaryWriter>(), nbOpenMaps);
  --nbOpenMaps;
  writeToken(Token::EndMap);
}

void BinaryWriter::pushProperty(const std::string& key) {
  checkPropertyInMap(here<BinaryWriter>(), nbOpenMaps);
  writeString(key, Token::Property, Token::CachedProperty);
}

void BinaryWriter::pushValue(bool value) { writeToken(value ? Token::True : Token::False); }

void BinaryWriter::pushValue(double value) {
  writeToken(Token::Double);
  writeFixed(std::bit_cast<std::uint64_t>(value), 8);
}

void BinaryWriter::pushValue(long long value) {
  const auto bits = static_cast<std::uint64_t>(value);
  if (fits<std::int8_t>(value)) {
    writeToken(Token::Integer8);
    return writeFixed(bits, 1);
  }
  if (fits<std::int16_t>(value)) {
    writeToken(Token::Integer16);
    return writeFixed(bits, 2);
  }
  if (fits<std::int32_t>(value)) {
    writeToken(Token::Integer32);
    return writeFixed(bits, 4);
  }
  if (!fits<std::int64_t>(value)) raise<KernelException>(here<BinaryWriter>(), "int out of bounds");
  writeToken(Token::Integer64);
  writeFixed(bits, 8);
}

void BinaryWriter::pushValue(char value) { pushValue(static_cast<long long>(static_cast<signed char>(value))); }

void BinaryWriter::pushValue(const std::string& value) { writeString(value, Token::String, Token::CachedString); }

void BinaryWriter::pushNil() { writeToken(Token::Nil); }

}  // namespace quvex
