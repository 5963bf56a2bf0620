#include "solver/kernel/largepages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace quvex {
namespace {

TEST(LargePages, KeepWhatTheyHold) {
  for (const std::size_t nbBytes :
       {std::size_t{0}, std::size_t{100}, kWorthLargePages - 8, kWorthLargePages, 3 * kWorthLargePages + 8}) {
    std::vector<std::uint64_t> cells(nbBytes / sizeof(std::uint64_t));
    std::iota(cells.begin(), cells.end(), 7U);
    const std::uint64_t* const place = cells.data();
    holdInLargePages(cells);
    EXPECT_EQ(cells.data(), place);
    for (std::size_t i = 0; i < cells.size(); ++i) ASSERT_EQ(cells[i], 7 + i);
    std::fill(cells.begin(), cells.end(), 1U);
    EXPECT_EQ(std::accumulate(cells.begin(), cells.end(), std::uint64_t{0}), cells.size());
  }
}

}  // namespace
}  // namespace quvex
