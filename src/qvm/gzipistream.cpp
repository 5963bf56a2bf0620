#include "qvm/gzipistream.h"

namespace quvex {

namespace {
// Bytes per read of the file. zlib's own 8 KB are a system call for every few hundred expressions.
constexpr unsigned kBufferSize = 1U << 17U;
}  // namespace

GzipIstream::GzipIstream(const std::string& path) : gzFile(gzopen(path.c_str(), "rb")), fileName(path) {
  if (gzFile == nullptr) raise<KernelException>(here<GzipIstream>(), "Cannot open file ", fileName);
  gzbuffer(gzFile, kBufferSize);
}

GzipIstream::~GzipIstream() { gzclose(gzFile); }

void GzipIstream::raiseEndOfFile(const Place& place) const {
  raise<KernelException>(place, "End-of-file of ", fileName, " reached");
}

}  // namespace quvex
