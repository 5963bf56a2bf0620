#include "solver/kernel/largepages.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <cstdint>

namespace quvex {

#ifdef __linux__

namespace {
constexpr std::uintptr_t kPage = std::uintptr_t{1} << 21U;
constexpr int kCollapse = 25;  // MADV_COLLAPSE, which the headers of some systems lack although their kernels know it
}  // namespace

void holdInLargePages(const void* begin, std::size_t nbBytes) {
  if (nbBytes < kWorthLargePages) return;
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  const std::uintptr_t first = (address + kPage - 1) / kPage * kPage;
  const std::uintptr_t end = (address + nbBytes) / kPage * kPage;
  void* const pages = const_cast<std::byte*>(static_cast<const std::byte*>(begin) + (first - address));
  // It is a wish: where it fails, everything works as before.
  static_cast<void>(madvise(pages, end - first, MADV_HUGEPAGE));
  static_cast<void>(madvise(pages, end - first, kCollapse));
}

#else

void holdInLargePages(const void*, std::size_t) {}

#endif

}  // namespace quvex
