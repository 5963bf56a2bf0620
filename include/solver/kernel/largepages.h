#pragma once

#include <cstddef>
#include <vector>

namespace quvex {

/// Asks the system to hold a range of memory in large pages, as far as it covers whole ones. Does nothing for a range
/// of less than `kWorthLargePages` bytes, or where the system can't.
///
/// A move reads a few words here and there in each of a dozen arrays. In a model of a million nodes nearly every word
/// lies in a page of its own, and looking up so many pages costs more than reading the words.
void holdInLargePages(const void* begin, std::size_t nbBytes);

inline constexpr std::size_t kWorthLargePages = std::size_t{1} << 23U;

/// The same for the entries of an array that has its final size.
template <class T>
void holdInLargePages(const std::vector<T>& array) {
  holdInLargePages(array.data(), array.size() * sizeof(T));
}

}  // namespace quvex
