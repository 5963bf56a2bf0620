#include "solver/kernel/nodepool.h"

#include <algorithm>
#include <cassert>

namespace quvex {

namespace {
constexpr std::size_t kFirstCapacity = 128;
constexpr std::size_t kLastCapacity = 2048;
}  // namespace

void* NodePool::Allocator::take() {
  if (left == 0) {
    capacity = capacity == 0 ? kFirstCapacity : std::min(2 * capacity, kLastCapacity);
    chunks.push_back(std::make_unique<std::byte[]>(capacity * objectSize));
    left = capacity;
  }
  --left;
  return chunks.back().get() + left * objectSize;
}

void* NodePool::allocate(std::size_t size) {
  assert(size >= 1 && size <= kMaxObjectSize);
  auto& allocator = allocators[size];
  if (!allocator) {
    allocator = std::make_unique<Allocator>();
    allocator->objectSize = size;
  }
  return allocator->take();
}

}  // namespace quvex
