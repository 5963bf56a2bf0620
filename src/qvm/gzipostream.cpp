#include "qvm/gzipostream.h"

#include <algorithm>
#include <limits>

#include "api/qvexception.h"

namespace quvex {

GzipOstream::GzipOstream(const std::string& path, bool isCompressed) : compressed(isCompressed), fileName(path) {
  if (compressed) {
    gzFile = gzopen(fileName.c_str(), "wb8");
  } else {
    file = std::fopen(fileName.c_str(), "wb");
  }
  if (gzFile == nullptr && file == nullptr) raise<KernelException>(here<GzipOstream>(), "Cannot open file ", fileName);
}

GzipOstream::~GzipOstream() {
  if (compressed) {
    gzclose(gzFile);
  } else {
    std::fclose(file);
  }
}

void GzipOstream::put(char byte) {
  if (compressed) {
    gzputc(gzFile, byte);
  } else {
    std::fputc(byte, file);
  }
}

void GzipOstream::write(std::string_view block) {
  if (!compressed) {
    std::fwrite(block.data(), 1, block.size(), file);
    return;
  }
  // gzwrite counts its result in an int and refuses more than that holds.
  constexpr std::size_t kLargestWrite = std::numeric_limits<int>::max();
  while (!block.empty()) {
    const std::size_t count = std::min(block.size(), kLargestWrite);
    gzwrite(gzFile, block.data(), static_cast<unsigned>(count));
    block.remove_prefix(count);
  }
}

}  // namespace quvex
