#pragma once

#include <span>
#include <string>
#include <string_view>

namespace quvex::cli {

/// Number of single-character insertions, deletions and replacements that make one text the other.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

/// The name that a mistyped one most likely means, or an empty text when none is near.
[[nodiscard]] std::string nearestName(std::string_view typed, std::span<const std::string> names);

/// The name in the form of a question behind a semicolon, or an empty text when no name is near.
[[nodiscard]] std::string didYouMean(std::string_view typed, std::span<const std::string> names);

}  // namespace quvex::cli
