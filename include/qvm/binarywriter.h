#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "qvm/fileformat.h"
#include "qvm/streamwriter.h"

namespace quvex {

/// The compact encoding: a tag byte per record, little-endian fields, integers in the narrowest of four widths, and a
/// cache that writes each short string once, property names and values alike.
/// `cache` maps each string to the order of its definition record in the file, which is how the reader numbers them.
///
/// A string ends at its first NUL for the reader. Values outside a map are written without complaint.
class BinaryWriter final : public StreamWriter {
 public:
  static constexpr const char* kName = "quvex::BinaryWriter";

  BinaryWriter(const std::string& fileName, bool compressed);
  ~BinaryWriter() noexcept(false) override;

  using StreamWriter::pushValue;
  void pushMap() override;
  void popMap() override;
  void pushProperty(const std::string& key) override;
  void pushValue(bool value) override;
  void pushValue(double value) override;
  void pushValue(long long value) override;
  /// An integer: the reader can't tell that it was a character.
  void pushValue(char value) override;
  void pushValue(const std::string& value) override;
  void pushNil() override;

 private:
  void writeToken(Token token);
  void writeFixed(std::uint64_t bits, int nbBytes);
  void writeString(const std::string& text, Token inFull, Token cached);
  [[nodiscard]] bool isCacheable(const std::string& text) const;

  std::map<std::string, std::uint16_t> cache;
  std::uint32_t nbOpenMaps = 0;
};

}  // namespace quvex
