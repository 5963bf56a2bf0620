#include "qvm/textreader.h"
#include "readwhole.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quvex::fuzz::readWhole<quvex::TextReader>(data, size);
  return 0;
}
