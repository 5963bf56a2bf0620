#include "cli/nearest.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace quvex::cli {

std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above + 1, row[j - 1] + 1, replaced});
      diagonal = above;
    }
  }
  return row[b.size()];
}

std::string nearestName(std::string_view typed, std::span<const std::string> names) {
  std::string nearest;
  // Two slips in a short word, a third of the letters in a long one.
  std::size_t bestDistance = std::max<std::size_t>(2, typed.size() / 3) + 1;
  for (const std::string& name : names) {
    const std::size_t distance = editDistance(typed, name);
    if (distance < bestDistance && distance < name.size()) {
      bestDistance = distance;
      nearest = name;
    }
  }
  return nearest;
}

std::string didYouMean(std::string_view typed, std::span<const std::string> names) {
  const std::string nearest = nearestName(typed, names);
  return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

}  // namespace quvex::cli
