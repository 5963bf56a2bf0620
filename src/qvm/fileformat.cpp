#include "qvm/fileformat.h"

namespace quvex {

bool readMagic(GzipIstream& stream, std::string_view magic) {
  std::string found(magic.size(), '\0');
  stream.read(found.data(), found.size());
  return found == magic;
}

bool isTextFile(const std::string& fileName) {
  GzipIstream stream(fileName);
  return readMagic(stream, kTextMagic);
}

bool isBinaryFile(const std::string& fileName) {
  GzipIstream stream(fileName);
  return readMagic(stream, kBinaryMagic);
}

}  // namespace quvex
