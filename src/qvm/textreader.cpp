#include "qvm/textreader.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

#include "solver/kernel/types.h"

namespace quvex {

namespace {

// As isspace has it in the default locale.
[[nodiscard]] constexpr bool isSpace(int byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

[[nodiscard]] constexpr bool isDigit(int byte) { return byte >= '0' && byte <= '9'; }

[[nodiscard]] constexpr bool isNumberByte(int byte) {
  return isDigit(byte) || byte == '.' || byte == 'e' || byte == '+' || byte == '-';
}

/// A stream's formatted read: takes the longest start that can be a number and fails when that start is none, or one
/// that the type cannot hold.
template <class Number>
[[nodiscard]] bool convertAsStream(const std::string& text, Number& value) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  return static_cast<bool>(stream >> value);
}

/// The same result as `convertAsStream`, without a stream for texts that are one finite number from end to end.
template <class Number>
[[nodiscard]] bool convert(const std::string& text, Number& value) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && stop == end && std::isfinite(static_cast<double>(value))) return true;
  return convertAsStream(text, value);
}

}  // namespace

TextReader::TextReader(const std::string& fileName) : TokenReader(fileName, kName) { readHeader(); }

void TextReader::readHeader() { checkMagic(here<TextReader>(), kTextMagic); }

void TextReader::checkType(bool isOfKind, const char* kind) const {
  if (isOfKind) return;
  raise<KernelException>(here<TextReader>(), "Unexpected token. Token expected : '", kind, "', line ", line + 1);
}

void TextReader::next() {
  token = Token::EndOfFile;
  constexpr std::string_view kSeparators = ",=";
  std::optional<int> byte;
  do {
    skipSpace();
    byte = stream.tryGet();
  } while (byte && kSeparators.find(static_cast<char>(*byte)) != std::string_view::npos);
  if (byte) readTokenFrom(*byte);
}

void TextReader::skipSpace() {
  std::optional<int> byte = stream.tryGet();
  while (byte && isSpace(*byte)) {
    if (*byte == '\n') ++line;
    byte = stream.tryGet();
  }
  if (byte) stream.unget(*byte);
}

void TextReader::readTokenFrom(int byte) {
  switch (byte) {
    case '"':
      return readStringOrProperty();
    case '+':
      skipSpace();
      return readDigits(false);
    case '-':
      skipSpace();
      return readDigits(true);
    case 'f':
      stream.unget(byte);
      readToken("false");
      token = Token::False;
      return;
    case 't':
      stream.unget(byte);
      readToken("true");
      token = Token::True;
      return;
    case 'i':
      stream.unget(byte);
      return readReal("inf", kInfinity);
    case 'n':
      stream.unget(byte);
      return readNanOrNil();
    case '{':
      token = Token::OpenMap;
      return;
    case '}':
      token = Token::EndMap;
      return;
    default:
      break;
  }
  if (isDigit(byte) || byte == '.') {
    stream.unget(byte);
    return readDigits(false);
  }
  Place place = here<TextReader>();
  place.functionName = "next";
  raise<KernelException>(place, "Unexpected character '", static_cast<char>(byte), "', line ", line + 1);
}

void TextReader::readToken(std::string_view expected) {
  std::string found;
  while (found.size() < expected.size()) found += static_cast<char>(stream.get());
  if (found == expected) return;
  // The line counter as it stands, one less than in every other message.
  raise<KernelException>(here<TextReader>(), "Unexpected characters '", found, "'. Expected '", expected, "', line ",
                         line);
}

void TextReader::readReal(std::string_view expected, double value) {
  readToken(expected);
  token = Token::Double;
  real = value;
}

// The "n" is gone when `readToken` looks for the whole word, so this always ends in a failure. Files with a bare nil or
// nan have always been refused like that.
void TextReader::readNanOrNil() {
  static_cast<void>(stream.get());
  const int byte = stream.get();
  stream.unget(byte);
  if (byte == 'i') {
    readToken("nil");
    token = Token::Nil;
    return;
  }
  if (byte == 'a') return readReal("nan", std::numeric_limits<double>::quiet_NaN());
  raise<KernelException>(here<TextReader>(), "Unexpected characters 'n", static_cast<char>(byte),
                         "'. Expected 'nil' or 'nan', line ", line + 1);
}

void TextReader::readStringOrProperty() {
  spelled.clear();
  for (int byte = stream.get(); byte != '"'; byte = stream.get()) {
    spelled += byte == '\\' ? extractEscapedChar() : static_cast<char>(byte);
  }
  text = spelled;
  skipSpace();
  const std::optional<int> byte = stream.tryGet();
  if (byte) stream.unget(*byte);
  token = byte == '=' ? Token::Property : Token::String;
}

char TextReader::extractEscapedChar() {
  const std::optional<int> byte = stream.tryGet();
  if (!byte) raise<KernelException>(here<TextReader>(), "Illegal escape character : End-of-file reached");
  switch (*byte) {
    case '"':
    case '\'':
    case '\\':
      return static_cast<char>(*byte);
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      raise<KernelException>(here<TextReader>(), "'\\", static_cast<char>(*byte),
                             "' is not a valid escape sequence, line ", line + 1);
  }
}

void TextReader::readDigits(bool isNegative) {
  const int first = stream.get();
  if (first == 'n') {
    stream.unget(first);
    return readReal("nan", std::numeric_limits<double>::quiet_NaN());
  }
  if (first == 'i') {
    stream.unget(first);
    return readReal("inf", isNegative ? -kInfinity : kInfinity);
  }
  spelled.clear();
  if (isNegative) spelled += '-';
  spelled += static_cast<char>(first);
  std::optional<int> byte = stream.tryGet();
  while (byte && isNumberByte(*byte)) {
    spelled += static_cast<char>(*byte);
    byte = stream.tryGet();
  }
  if (byte) stream.unget(*byte);
  if (convertDigits()) return;
  raise<KernelException>(here<TextReader>(), "Cannot convert '", spelled, "' to a number, line ", line + 1);
}

bool TextReader::convertDigits() {
  const bool isReal = spelled.find_first_of(".e") != std::string::npos;
  token = isReal ? Token::Double : Token::Integer64;
  return isReal ? convert(spelled, real) : convert(spelled, integer);
}

}  // namespace quvex
