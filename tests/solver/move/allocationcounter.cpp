#include "allocationcounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> nbAllocations{0};
}

// Malloc and free keep the sanitizers content. In a source of its own, so that no caller inlines one half of the pair.
void* operator new(std::size_t size) {
  ++nbAllocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++nbAllocations;
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

std::size_t quvex::allocationCount() { return nbAllocations; }
