#pragma once

namespace quvex {

/// What acts on a heuristic from outside, on its own thread and only at iteration boundaries.
/// Nobody owns a callback through this interface.
class HeuristicCallback {
 public:
  virtual void onStart() = 0;
  virtual void onEnd() = 0;
  virtual void onIteration() = 0;

 protected:
  ~HeuristicCallback() = default;
};

}  // namespace quvex
