#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qvm/tokenreader.h"

namespace quvex {

/// Reads what `TextWriter` writes. Commas and equal signs are separators that may stand anywhere or nowhere, which is
/// what takes "1inf2" apart into three values.
/// `line` counts, from 0, the line feeds met between tokens; those inside strings are not counted.
///
/// What cannot be read back: nil, not-a-number without a sign, and the sign of an infinity right behind a number
/// (the number takes it).
class TextReader final : public TokenReader {
 public:
  static constexpr const char* kName = "quvex::TextReader";

  /// Opens the file and reads its header.
  explicit TextReader(const std::string& fileName);

 private:
  void readHeader();
  void next() override;
  void checkType(bool isOfKind, const char* kind) const override;

  void skipSpace();
  void readTokenFrom(int byte);
  void readToken(std::string_view expected);
  void readReal(std::string_view expected, double value);
  void readNanOrNil();
  void readStringOrProperty();
  [[nodiscard]] char extractEscapedChar();
  void readDigits(bool isNegative);
  [[nodiscard]] bool convertDigits();

  std::int64_t line = 0;
};

}  // namespace quvex
