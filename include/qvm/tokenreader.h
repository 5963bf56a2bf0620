#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "api/qvexception.h"
#include "qvm/fileformat.h"
#include "qvm/gzipistream.h"
#include "qvm/qvmreader.h"

namespace quvex {

/// What both encodings share on the reading side: the one-token look-ahead and all of its tests.
/// While `pending` is set, `token` is the next one and `text`, `integer` or `real` holds what it carries; `text` stays
/// valid until the next token is read.
///
/// An encoding provides `next`, which reads one token, and `checkType`, which knows how to tell where the file stands.
class TokenReader : public QVMReader {
 public:
  static constexpr const char* kName = "quvex::TokenReader";

  void skipValue() final;

  [[nodiscard]] bool isOpenMap() final { return peek() == Token::OpenMap; }
  [[nodiscard]] bool isEndMap() final { return peek() == Token::EndMap; }
  [[nodiscard]] bool isValue() final { return !isOpenMap() && !isEndMap() && !isProperty(); }
  [[nodiscard]] bool isProperty(const std::string& name) final { return isProperty() && text == name; }
  [[nodiscard]] bool isProperty() final { return peek() == Token::Property || token == Token::CachedProperty; }
  [[nodiscard]] bool isDouble() final { return peek() == Token::Double; }
  [[nodiscard]] bool isChar() final { return isIntegerOf<std::int8_t>(); }
  [[nodiscard]] bool isInt() final { return isIntegerOf<std::int32_t>(); }
  [[nodiscard]] bool isLong() final { return isInt(); }
  [[nodiscard]] bool isLongLong() final { return isIntegerOf<std::int64_t>(); }
  [[nodiscard]] bool isString() final { return peek() == Token::String || token == Token::CachedString; }
  [[nodiscard]] bool isBool() final { return isTrue() || isFalse(); }
  [[nodiscard]] bool isTrue() final { return peek() == Token::True; }
  [[nodiscard]] bool isFalse() final { return peek() == Token::False; }
  [[nodiscard]] bool isNil() final { return peek() == Token::Nil; }
  [[nodiscard]] bool hasNext() final { return peek() != Token::EndOfFile; }

  void nextValue() final { consume(isValue(), "value"); }
  void nextOpenMap() final { consume(isOpenMap(), "open-map"); }
  void nextEndMap() final { consume(isEndMap(), "end-map"); }
  std::string nextProperty() final;
  void nextProperty(const std::string& expected) final;
  std::string nextString() final;
  double nextDouble() final;
  char nextChar() final;
  std::int32_t nextInt() final;
  std::int32_t nextLong() final;
  std::int64_t nextLongLong() final;
  bool nextBool() final;
  void nextFalse() final { consume(isFalse(), "false"); }
  void nextTrue() final { consume(isTrue(), "true"); }
  void nextNil() final { consume(isNil(), "nil"); }

 protected:
  /// `encodingName` is the qualified name of the encoding's class: failures are raised under it.
  TokenReader(const std::string& fileName, std::string_view encodingName)
      : stream(fileName), encodingName(encodingName) {}

  /// Reads one token into the fields below, `Token::EndOfFile` when there is none.
  virtual void next() = 0;
  /// Raises unless the pending token is of the wanted kind.
  virtual void checkType(bool isOfKind, const char* kind) const = 0;
  /// For an encoding's `readHeader`.
  void checkMagic(const Place& place, std::string_view magic);

  GzipIstream stream;
  Token token = Token::EndOfFile;
  std::int64_t integer = 0;
  double real = 0.0;
  std::string_view text;
  std::string spelled;  ///< where a text lies that the file spells out

 private:
  Token peek() {
    if (!pending) {
      next();
      pending = true;
    }
    return token;
  }

  void consume(bool isOfKind, const char* kind) {
    checkType(isOfKind, kind);
    pending = false;
  }

  template <class Width>
  [[nodiscard]] bool isIntegerOf();

  std::string_view encodingName;
  bool pending = false;
};

}  // namespace quvex
