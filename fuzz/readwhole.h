#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "api/qvexception.h"
#include "qvm/qvmreader.h"

/// Reading of arbitrary bytes as a saved environment, for the fuzz targets and for the test that replays their corpus.
namespace quvex::fuzz {

/// A file in memory that holds the given bytes, under a name that can be opened while the object lives.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor(memfd_create("environment", 0)) {
    if (descriptor < 0) std::abort();
    while (size > 0) {
      const ssize_t written = ::write(descriptor, data, size);
      if (written <= 0) std::abort();
      data += written;
      size -= static_cast<std::size_t>(written);
    }
  }
  ~MemoryFile() { ::close(descriptor); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  [[nodiscard]] std::string name() const { return "/proc/self/fd/" + std::to_string(descriptor); }

 private:
  int descriptor;
};

/// Consumes the next token by the operation of its own kind. A kind that no test admits to would fail in `nextNil`.
inline void readOneToken(QVMReader& reader) {
  if (reader.isOpenMap()) {
    reader.nextOpenMap();
  } else if (reader.isEndMap()) {
    reader.nextEndMap();
  } else if (reader.isProperty()) {
    reader.nextProperty();
  } else if (reader.isString()) {
    reader.nextString();
  } else if (reader.isDouble()) {
    reader.nextDouble();
  } else if (reader.isChar()) {
    reader.nextChar();
  } else if (reader.isInt()) {
    reader.nextInt();
  } else if (reader.isLongLong()) {
    reader.nextLongLong();
  } else if (reader.isBool()) {
    reader.nextBool();
  } else {
    reader.nextNil();
  }
}

/// The explanation of the failure that `read` ends in, or an empty text.
template <class Read>
[[nodiscard]] std::string failureOf(Read read) {
  try {
    read();
  } catch (const KernelException& failure) {
    return failure.getExplanation();
  }
  return {};
}

/// Reads all bytes, once token by token and once by skipping values. Returns the failure of the first reading, or an
/// empty text. Aborts when skipping passes over something that cannot be read.
template <class Reader>
std::string readWhole(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(data, size);
  std::string failure = failureOf([&] {
    Reader reader(file.name());
    while (reader.hasNext()) readOneToken(reader);
  });
  const std::string skipFailure = failureOf([&] {
    Reader reader(file.name());
    while (reader.hasNext()) {
      if (reader.isEndMap()) {
        reader.nextEndMap();
      } else if (reader.isProperty()) {
        reader.nextProperty();
      } else {
        reader.skipValue();
      }
    }
  });
  if (!failure.empty() && skipFailure.empty()) std::abort();
  return failure;
}

}  // namespace quvex::fuzz
