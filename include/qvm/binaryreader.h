#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qvm/tokenreader.h"

namespace quvex {

/// Reads what `BinaryWriter` writes. `cache` holds the strings defined so far, in the order of their records, so that
/// an index of the file is a position in it.
class BinaryReader final : public TokenReader {
 public:
  static constexpr const char* kName = "quvex::BinaryReader";

  /// Opens the file and reads its header.
  explicit BinaryReader(const std::string& fileName);

 private:
  void readHeader();
  void next() override;
  void checkType(bool isOfKind, const char* kind) const override;

  void readString(std::string& target);
  void readCachedString();
  template <class Field>
  [[nodiscard]] Field readFixed();

  std::vector<std::string> cache;
};

}  // namespace quvex
