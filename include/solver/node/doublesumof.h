#pragma once

#include <cmath>

#include "solver/node/cancellation.h"
#include "solver/node/sumof.h"

namespace quvex {

/// Base of the double sums: a running sum that is recomputed from scratch when it cancels.
template <class Set, class Weight>
class DoubleSumOf : public SumOf<Set, Weight> {
 public:
  using SumOf<Set, Weight>::SumOf;

 protected:
  static constexpr const char* kOppositeInfinities = "Cannot compute the sum of two opposite infinite numbers";

  /// False if the tentative value is not a number; nothing is stored then.
  [[nodiscard]] bool evalSum(Dag& dag, NodeId id) const {
    const double before = wordToDouble(dag.nodeValue[id]);
    double after = before + this->change(dag, id);
    if (std::isnan(after)) return false;
    if (isCancellation(before, after)) after = this->total(dag.fixed, dag.tentativeValue, id);
    dag.tentativeValue[id] = doubleToWord(after);
    return true;
  }
};

}  // namespace quvex
