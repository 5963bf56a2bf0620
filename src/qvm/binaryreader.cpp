#include "qvm/binaryreader.h"

#include <array>
#include <bit>
#include <optional>

namespace quvex {

BinaryReader::BinaryReader(const std::string& fileName) : TokenReader(fileName, kName) { readHeader(); }

void BinaryReader::readHeader() { checkMagic(here<BinaryReader>(), kBinaryMagic); }

void BinaryReader::checkType(bool isOfKind, const char* kind) const {
  if (isOfKind) return;
  raise<KernelException>(here<BinaryReader>(), "Unexpected token. Token expected : '", kind,
                         "', token id in cache : ", static_cast<int>(token));
}

void BinaryReader::next() {
  token = Token::EndOfFile;
  std::optional<int> tag = stream.tryGet();
  while (tag == kStringDefinition) {
    readString(cache.emplace_back());
    tag = stream.tryGet();
  }
  if (!tag) return;
  token = static_cast<Token>(*tag);
  switch (token) {
    case Token::OpenMap:
    case Token::EndMap:
    case Token::Nil:
    case Token::False:
    case Token::True:
      return;
    case Token::Property:
    case Token::String:
      readString(spelled);
      text = spelled;
      return;
    case Token::CachedProperty:
    case Token::CachedString:
      return readCachedString();
    case Token::Integer8:
      integer = readFixed<std::int8_t>();  // NOLINT(bugprone-signed-char-misuse): a number, no character
      return;
    case Token::Integer16:
      integer = readFixed<std::int16_t>();
      return;
    case Token::Integer32:
      integer = readFixed<std::int32_t>();
      return;
    case Token::Integer64:
      integer = readFixed<std::int64_t>();
      return;
    case Token::Double:
      real = std::bit_cast<double>(readFixed<std::int64_t>());
      return;
    case Token::EndOfFile:
      break;
  }
  raise<KernelException>(here<BinaryReader>(), "File is corrupted : wrong value type");
}

void BinaryReader::readString(std::string& target) {
  target.clear();
  for (int byte = stream.get(); byte != 0; byte = stream.get()) target += static_cast<char>(byte);
}

void BinaryReader::readCachedString() {
  const auto index = readFixed<std::uint16_t>();
  if (index < cache.size()) {
    text = cache[index];
    return;
  }
  Place place = here<BinaryReader>();
  place.functionName = "next";
  raise<KernelException>(place, "File is corrupted : wrong string cache index");
}

// A field that the end of the file cuts off reads as zeros from there on.
template <class Field>
Field BinaryReader::readFixed() {
  std::array<unsigned char, sizeof(Field)> bytes{};
  stream.read(bytes.data(), bytes.size());
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) bits |= static_cast<std::uint64_t>(bytes[i]) << (8U * i);
  return static_cast<Field>(bits);
}

}  // namespace quvex
