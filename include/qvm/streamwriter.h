#pragma once

#include <cstddef>
#include <string>

#include "api/qvexception.h"
#include "qvm/gzipostream.h"
#include "qvm/qvmwriter.h"

namespace quvex {

/// What both encodings share on the writing side: the byte stream, the short forms of values, and the checks of open
/// maps. How many maps are open is known to the encoding, which passes it in.
class StreamWriter : public QVMWriter {
 public:
  using QVMWriter::pushValue;
  void pushValue(int value) final { pushValue(static_cast<long long>(value)); }
  void pushValue(long value) final { pushValue(static_cast<long long>(value)); }
  void pushTrue() final { pushValue(true); }
  void pushFalse() final { pushValue(false); }

 protected:
  StreamWriter(const std::string& fileName, bool compressed) : stream(fileName, compressed) {}

  static void checkMapToPop(const Place& place, std::size_t nbOpenMaps);
  static void checkPropertyInMap(const Place& place, std::size_t nbOpenMaps);
  /// For destructors: silent while another failure is in flight, which says more than this one would.
  static void checkStable(const Place& place, std::size_t nbOpenMaps);

  GzipOstream stream;
};

}  // namespace quvex
