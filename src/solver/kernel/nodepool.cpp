#include "solver/kernel/nodepool.h"

#include <algorithm>
#include <cassert>
#include <new>

namespace quvex {

namespace {
constexpr std::size_t kFirstCapacity = 128;
constexpr std::size_t kLastCapacity = 2048;

/// The standard error, with the same words on every platform.
struct BadAllocation final : std::bad_alloc {
  [[nodiscard]] const char* what() const noexcept override { return "bad allocation"; }
};

std::unique_ptr<std::byte[]> takeChunk(std::size_t nbBytes) {
  auto* const memory = new (std::nothrow) std::byte[nbBytes];
  if (memory == nullptr) throw BadAllocation();
  return std::unique_ptr<std::byte[]>(memory);
}
}  // namespace

void* NodePool::Allocator::take() {
  if (left == 0) {
    capacity = capacity == 0 ? kFirstCapacity : std::min(2 * capacity, kLastCapacity);
    chunks.push_back(takeChunk(capacity * objectSize));
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
