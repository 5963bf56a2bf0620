#pragma once

namespace quvex {

/// Told at each commit of a `Dag`, before any value is committed: it reads `touchedDecisions` and the tentative values
/// from its own reference to the `Dag`.
class DagListener {
 public:
  virtual ~DagListener() = default;
  virtual void onCommit() = 0;
};

}  // namespace quvex
