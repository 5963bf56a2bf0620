#include "solver/kernel/nodepool.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

#include "refusingallocator.h"

namespace quvex {
namespace {

TEST(NodePool, SaysInItsOwnWordsThatThereIsNoMemory) {
  NodePool pool;
  refusingMemory = true;
  std::string words;
  try {
    (void)pool.allocate(8);
  } catch (const std::bad_alloc& failure) {
    words = failure.what();
  }
  refusingMemory = false;
  EXPECT_EQ(words, "bad allocation");
}

TEST(NodePool, PacksObjectsFromTheEndOfEachChunk) {
  NodePool pool;
  auto* const first = static_cast<std::byte*>(pool.allocate(24));
  auto* const second = static_cast<std::byte*>(pool.allocate(24));
  EXPECT_EQ(first - second, 24);
}

}  // namespace
}  // namespace quvex
