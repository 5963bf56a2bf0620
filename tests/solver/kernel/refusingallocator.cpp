#include "refusingallocator.h"

#include <cstddef>
#include <new>

bool quvex::refusingMemory = false;

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return quvex::refusingMemory ? nullptr : operator new[](size);
}
