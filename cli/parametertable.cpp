#include "cli/parametertable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "cli/errors.h"
#include "cli/nearest.h"

namespace quvex::cli {

namespace {

constexpr int kNoMaximum = std::numeric_limits<int>::max();

constexpr std::array kParameters = {
    ParameterInfo{"seed", "--seed", 0, 0, kNoMaximum, "Start of all random draws."},
    ParameterInfo{"nbThreads", "--threads", 2, 1, 1024, "Number of search threads; each runs a search of its own."},
    ParameterInfo{"annealingLevel", "--annealing", 1, 0, 9, "0 is a pure descent; higher levels accept more."},
    ParameterInfo{"timeBetweenDisplays", "--every", 1, 1, 65535, "Seconds between two progress lines."},
    ParameterInfo{"verbosity", "--quiet", 1, 0, kNoMaximum, "0 is silent; otherwise the search reports on itself."},
    ParameterInfo{"advancedMovesEnabled", "", 1, 0, 1, "Master switch of sequences, bin packing and ejection chains."},
    ParameterInfo{"dumpEnabled", "", 0, 0, 1, "Writes the whole environment to dump.qvm.gz before the search."},
    ParameterInfo{"greedyEnabled", "", 1, 0, 1, "Looks for a feasible start greedily."},
    ParameterInfo{"moveBalanceEnabled", "", 1, 0, 1, "Moves that flip decisions against each other in one expression."},
    ParameterInfo{"moveBinPackingEnabled", "", 1, 0, 1, "Moves that shift items between loaded constraints."},
    ParameterInfo{"moveCycleEnabled", "", 1, 0, 1, "Moves along cycles of sums."},
    ParameterInfo{"moveEjectionChainEnabled", "", 1, 0, 1, "Moves that repair what they break by a chain of flips."},
    ParameterInfo{"moveExplorationEnabled", "", 1, 0, 1, "Tries moves that have not paid again from time to time."},
    ParameterInfo{"moveFlipEnabled", "", 1, 0, 1, "Moves that flip several decisions."},
    ParameterInfo{"moveForkCycleEnabled", "", 1, 0, 1, "Moves along several cycles that share their ends."},
    ParameterInfo{"moveForkPathEnabled", "", 1, 0, 1, "Moves along several paths that share their ends."},
    ParameterInfo{"moveMirrorEnabled", "", 1, 0, 1, "Moves that exchange the decisions of two equality sums."},
    ParameterInfo{"movePathEnabled", "", 1, 0, 1, "Moves along paths between sums with slack."},
    ParameterInfo{"moveRollEnabled", "", 1, 0, 1, "Moves that rotate the decisions of equality sums."},
    ParameterInfo{"moveSequenceEnabled", "", 1, 0, 1, "Sequences of moves that may cross infeasible states."},
    ParameterInfo{"moveSwapEnabled", "", 1, 0, 1, "Moves that swap a set decision for an unset one."},
    ParameterInfo{"neighborhoodSize", "", 8, 1, kNoMaximum,
                  "Largest number of decisions of a sized move; 11 is the "
                  "last one with an effect."},
    ParameterInfo{"preprocessEnabled", "", 1, 0, 1, "Simplifies the model while compiling it."},
    ParameterInfo{"targetingLevel", "", 5, 0, 10, "How often moves aim at violated constraints, in tenths."},
    ParameterInfo{"traceEnabled", "", 0, 0, 1, "Adds figures of the compiled graph and a table of moves (with -v)."},
};

[[nodiscard]] std::vector<std::string> advancedKeys() {
  std::vector<std::string> keys;
  for (const ParameterInfo& info : kParameters) {
    if (info.flag.empty()) keys.emplace_back(info.key);
  }
  return keys;
}

[[nodiscard]] int parseValue(const std::string& text, const std::string& value) {
  int result = 0;
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, result);
  if (error == std::errc() && stop == end) return result;
  throw CommandError(kExitUsage, "\"" + text + "\" needs a whole number behind the equal sign");
}

}  // namespace

std::span<const ParameterInfo> parameterTable() { return kParameters; }

const ParameterInfo* findParameter(std::string_view key) {
  const auto found = std::find_if(kParameters.begin(), kParameters.end(),
                                  [key](const ParameterInfo& info) { return info.key == key; });
  return found == kParameters.end() ? nullptr : &*found;
}

AdvancedSetting parseSetting(const std::string& text, bool allowUnknown) {
  const std::size_t equal = text.find('=');
  if (equal == std::string::npos || equal == 0) {
    throw CommandError(kExitUsage, "\"" + text + "\" is no setting; write -p KEY=VALUE, such as -p neighborhoodSize=4");
  }
  const std::string key = text.substr(0, equal);
  const int value = parseValue(text, text.substr(equal + 1));
  if (allowUnknown) return {key, value};

  const ParameterInfo* info = findParameter(key);
  if (info == nullptr) {
    throw CommandError(kExitUsage, "unknown parameter \"" + key + "\"" + didYouMean(key, advancedKeys()) +
                                       " \"quvex params\" lists all; --allow-unknown passes any");
  }
  if (!info->flag.empty()) {
    throw CommandError(kExitUsage, "\"" + key + "\" has a flag of its own: " + std::string(info->flag));
  }
  if (value < info->lowest || value > info->highest) {
    throw CommandError(kExitUsage, key + " must be " + std::to_string(info->lowest) + " to " +
                                       std::to_string(info->highest) + ", not " + std::to_string(value));
  }
  return {key, value};
}

}  // namespace quvex::cli
