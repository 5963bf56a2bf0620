#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace quvex {

/// Memory of one `Dag`'s nodes: one free-running allocator per object size from 1 to 128 bytes, set up when first
/// asked. Objects are packed in few chunks and never returned one by one; the chunks go with the pool.
class NodePool {
 public:
  static constexpr std::size_t kMaxObjectSize = 128;

  /// Raw memory for one object of `size` bytes, aligned for any type of that size.
  void* allocate(std::size_t size);

 private:
  struct Allocator {
    std::vector<std::unique_ptr<std::byte[]>> chunks;
    std::size_t objectSize = 0;
    std::size_t left = 0;      ///< objects not yet taken from the last chunk; they are taken from its end
    std::size_t capacity = 0;  ///< objects in the last chunk: doubles from 128 to at most 2048

    void* take();
  };
  std::array<std::unique_ptr<Allocator>, kMaxObjectSize + 1> allocators;
};

}  // namespace quvex
