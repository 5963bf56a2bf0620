#pragma once

#include <cstddef>

namespace quvex {

/// How often this test program has asked for memory so far.
std::size_t allocationCount();

}  // namespace quvex
