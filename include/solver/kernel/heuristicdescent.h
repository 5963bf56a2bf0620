#pragma once

#include "solver/kernel/heuristic.h"

namespace quvex {

/// Accepts what is not worse than the committed state, objectives compared lexicographically. Plateaus are walked.
class HeuristicDescent final : public Heuristic {
 public:
  static constexpr const char* kName = "quvex::HeuristicDescent";
  using Heuristic::Heuristic;

 private:
  void iterate() override;
  [[nodiscard]] Outcome verdict(bool evaluated) const;
};

}  // namespace quvex
