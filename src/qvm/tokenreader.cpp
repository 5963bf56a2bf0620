#include "qvm/tokenreader.h"

#include <limits>

namespace quvex {

template <class Width>
bool TokenReader::isIntegerOf() {
  const Token kind = peek();
  const bool isInteger = kind >= Token::Integer8 && kind <= Token::Integer64;
  return isInteger && integer >= std::numeric_limits<Width>::min() && integer <= std::numeric_limits<Width>::max();
}

template bool TokenReader::isIntegerOf<std::int8_t>();
template bool TokenReader::isIntegerOf<std::int32_t>();
template bool TokenReader::isIntegerOf<std::int64_t>();

void TokenReader::checkMagic(const Place& place, std::string_view magic) {
  if (readMagic(stream, magic)) return;
  raise<KernelException>(place, "The provided file is not recognized (wrong magic number)");
}

/// What the general way does in several questions per token: properties and values within a map are passed over alike.
void TokenReader::skipValue() {
  if (!isOpenMap()) return nextValue();
  std::uint64_t depth = 0;
  do {
    switch (peek()) {
      case Token::OpenMap:
        ++depth;
        pending = false;
        break;
      case Token::EndMap:
      case Token::EndOfFile:  // which fails: the end of a map is missing
        --depth;
        nextEndMap();
        break;
      default:
        pending = false;
    }
  } while (depth != 0);
}

std::string TokenReader::nextProperty() {
  consume(isProperty(), "property");
  return std::string(text);
}

void TokenReader::nextProperty(const std::string& expected) {
  consume(isProperty(), "property");
  if (text == expected) return;
  Place place = here<TokenReader>();
  place.className = encodingName;
  raise<KernelException>(place, "Unexpected property. Expected property '", expected, "'. Property found '", text, "'");
}

std::string TokenReader::nextString() {
  consume(isString(), "string");
  return std::string(text);
}

double TokenReader::nextDouble() {
  consume(isDouble(), "double");
  return real;
}

char TokenReader::nextChar() {
  consume(isChar(), "char");
  return static_cast<char>(integer);
}

std::int32_t TokenReader::nextInt() {
  consume(isInt(), "int");
  return static_cast<std::int32_t>(integer);
}

std::int32_t TokenReader::nextLong() {
  consume(isLong(), "long");
  return static_cast<std::int32_t>(integer);
}

std::int64_t TokenReader::nextLongLong() {
  consume(isLongLong(), "long long");
  return integer;
}

bool TokenReader::nextBool() {
  consume(isBool(), "bool");
  return token == Token::True;
}

}  // namespace quvex
