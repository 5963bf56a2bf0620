#include "qvm/qvmreader.h"

#include <cstdint>

namespace quvex {

void QVMReader::skipValue() {
  if (!isOpenMap()) return nextValue();
  std::uint64_t depth = 0;
  do {
    if (isOpenMap()) {
      ++depth;
      nextOpenMap();
    } else if (isEndMap() || !hasNext()) {  // a file that ends in here lacks its end of map: fails below
      --depth;
      nextEndMap();
    } else if (isProperty()) {
      nextProperty();
    } else {
      nextValue();
    }
  } while (depth != 0);
}

}  // namespace quvex
