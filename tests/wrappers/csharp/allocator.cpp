#include "allocator.h"

#include <atomic>
#include <cstdlib>

namespace {

enum class Plan { Succeed, FailOnce, FailWhere, FailAlways };

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<std::uint64_t> endedThreads{0};
thread_local Plan plan = Plan::Succeed;
thread_local std::uint64_t successesLeft = 0;
thread_local allocator::Fault plannedFault = allocator::Fault::OutOfMemory;
thread_local bool (*chooses)(std::size_t size) = nullptr;
thread_local bool failed = false;

/// Lives from the first allocation of a thread to its end.
struct ThreadWatch {
  ~ThreadWatch() {
    ++endedThreads;
    endedThreads.notify_all();
  }
};

[[nodiscard]] bool failsNow(std::size_t size) {
  if (plan == Plan::Succeed) return false;
  if (plan == Plan::FailOnce && successesLeft > 0) {
    --successesLeft;
    return false;
  }
  if (plan == Plan::FailWhere && !chooses(size)) return false;
  if (plan != Plan::FailAlways) plan = Plan::Succeed;
  failed = true;
  return true;
}

[[nodiscard]] void* countedBlock(std::size_t size) {
  [[maybe_unused]] static thread_local const ThreadWatch watch;
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++liveBlocks;
  return block;
}

[[nodiscard]] void* allocate(std::size_t size) {
  if (failsNow(size)) {
    if (plannedFault == allocator::Fault::Other) throw 42;
    throw std::bad_alloc();
  }
  void* block = countedBlock(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

/// What cannot throw can only lack memory.
[[nodiscard]] void* allocateOrNull(std::size_t size) noexcept {
  const bool fails = plannedFault == allocator::Fault::OutOfMemory && failsNow(size);
  return fails ? nullptr : countedBlock(size);
}

void release(void* block) noexcept {
  if (block == nullptr) return;
  --liveBlocks;
  std::free(block);
}

}  // namespace

namespace allocator {

std::int64_t nbLiveBlocks() { return liveBlocks; }

std::uint64_t nbEndedThreads() { return endedThreads; }

void waitForEndOfThread(std::uint64_t nbEnded) { endedThreads.wait(nbEnded); }

void failOnce(std::uint64_t nbSuccesses, Fault fault) {
  plan = Plan::FailOnce;
  successesLeft = nbSuccesses;
  plannedFault = fault;
  failed = false;
}

void failWhere(bool (*isChosen)(std::size_t size), Fault fault) {
  plan = Plan::FailWhere;
  chooses = isChosen;
  plannedFault = fault;
  failed = false;
}

void failAlways() {
  plan = Plan::FailAlways;
  plannedFault = Fault::OutOfMemory;
  failed = false;
}

bool succeed() {
  plan = Plan::Succeed;
  return failed;
}

}  // namespace allocator

// Every form without an alignment, so that no block comes from one allocator and goes to another.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocateOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocateOrNull(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
