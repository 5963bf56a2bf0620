#include "qvm/streamwriter.h"

#include <exception>

namespace quvex {

void StreamWriter::checkMapToPop(const Place& place, std::size_t nbOpenMaps) {
  if (nbOpenMaps == 0) raise<KernelException>(place, "There is no map to pop");
}

void StreamWriter::checkPropertyInMap(const Place& place, std::size_t nbOpenMaps) {
  if (nbOpenMaps == 0) raise<KernelException>(place, "Cannot push a property outside a map");
}

void StreamWriter::checkStable(const Place& place, std::size_t nbOpenMaps) {
  if (nbOpenMaps == 0 || std::uncaught_exceptions() > 0) return;
  raise<KernelException>(place, "Writer is not in a stable state : open maps on the stack");
}

}  // namespace quvex
