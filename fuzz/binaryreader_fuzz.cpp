#include "qvm/binaryreader.h"
#include "readwhole.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quvex::fuzz::readWhole<quvex::BinaryReader>(data, size);
  return 0;
}
