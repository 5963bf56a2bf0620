#pragma once

namespace quvex {

/// While it is true, allocations that may not raise find no memory. For this test program alone.
extern bool refusingMemory;

}  // namespace quvex
