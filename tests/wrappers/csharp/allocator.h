#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

/// The memory of this test program and of the library in it: it counts what is alive, and fails on demand.
/// Failures are planned for the calling thread only, so that search threads never meet one.
namespace allocator {

/// Blocks that are allocated and not freed, of all threads.
[[nodiscard]] std::int64_t nbLiveBlocks();

/// Threads that have allocated anything and have ended.
[[nodiscard]] std::uint64_t nbEndedThreads();
/// Returns when there are more than `nbEnded` of them.
void waitForEndOfThread(std::uint64_t nbEnded);

/// What a failing allocation throws.
enum class Fault {
  OutOfMemory,  ///< std::bad_alloc
  Other,        ///< an int
};

/// The allocation after the next `nbSuccesses` ones fails, and the ones behind it succeed again.
void failOnce(std::uint64_t nbSuccesses, Fault fault);
/// The next allocation of a size that `isChosen` chooses fails. It is asked at every allocation until then, and must
/// not allocate itself.
void failWhere(bool (*isChosen)(std::size_t size), Fault fault);
/// All allocations fail, until `succeed`.
void failAlways();
/// Ends every plan. True when an allocation has failed since the plan was made.
bool succeed();

}  // namespace allocator
