#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "support/capturedoutput.h"
#include "support/graphbuilder.h"
#include "support/nodestage.h"

namespace quvex {

/// A stage for an operator with incremental state: `move` changes operands as the evaluation driver would tell it,
/// `evalInteger` or `evalReal` evaluates, then `commit` or `rollback` ends the move.
class AggregateStage : public NodeStage {
 public:
  using NodeStage::NodeStage;

  /// Gives an operand a tentative value and tells the operator, if that is a change.
  AggregateStage& move(OperandPos p, double value) {
    setTentative(p, value);
    if (dag->nodeValue[p] != dag->tentativeValue[p]) notifyOnly(p);
    return *this;
  }
  /// Tells the operator of a change that is none: what it then reads shows whether it walks.
  AggregateStage& notifyOnly(OperandPos p) {
    dag->records[id].queuedIn = dag->propagation.moveNumber;
    node().notifyChildChanged(*dag, p, id);
    return *this;
  }
  /// Parents commit before their operands.
  void commit() {
    node().commit(*dag, id);
    dag->records[id].queuedIn = kNoMove;
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) dag->nodeValue[p] = dag->tentativeValue[p];
  }
  void rollback() {
    node().rollback(*dag, id);
    dag->records[id].queuedIn = kNoMove;
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) dag->tentativeValue[p] = dag->nodeValue[p];
  }
  /// A whole move of one operand.
  std::int64_t commitInteger(OperandPos p, double value) {
    const std::int64_t result = move(p, value).evalInteger();
    commit();
    return result;
  }
  double commitReal(OperandPos p, double value) {
    const double result = move(p, value).evalReal();
    commit();
    return result;
  }

  bool isInit() { return node().isInit(*dag, id); }
  bool hasChanged() { return node().hasChanged(*dag, id); }

  /// What the dump prints behind the common part.
  std::string dump() {
    const CapturedOutput output;
    node().print(*dag, id);
    const std::string text = output.text();
    return text.substr(text.find('\n', text.rfind("childNode[")) + 1);
  }

  /// The increase or decrease candidates, in the order of `...CandidateAt`.
  std::vector<OperandPos> increaseCandidates() {
    std::vector<OperandPos> candidates;
    const std::uint32_t count = node().nbIncreaseCandidates(*dag, id);
    for (std::uint32_t k = 0; k < count; ++k) candidates.push_back(node().increaseCandidateAt(*dag, id, k));
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) {
      EXPECT_EQ(node().isIncreaseCandidate(*dag, id, p), std::ranges::count(candidates, p) == 1);
    }
    return candidates;
  }
  std::vector<OperandPos> decreaseCandidates() {
    std::vector<OperandPos> candidates;
    const std::uint32_t count = node().nbDecreaseCandidates(*dag, id);
    for (std::uint32_t k = 0; k < count; ++k) candidates.push_back(node().decreaseCandidateAt(*dag, id, k));
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) {
      EXPECT_EQ(node().isDecreaseCandidate(*dag, id, p), std::ranges::count(candidates, p) == 1);
    }
    return candidates;
  }
};

/// Coefficients of a double operator, as the node carries them.
inline std::vector<t_value> doubleWords(std::initializer_list<double> values) {
  std::vector<t_value> words;
  for (const double value : values) words.push_back(doubleToWord(value));
  return words;
}

/// A state from which `rand(state, n)` gives `choice` and a coin right behind it falls as wanted.
inline RandomState stateForChoiceAndCoin(std::uint32_t n, std::uint32_t choice, bool set) {
  for (RandomState state = 0;; ++state) {
    RandomState probe = state;
    if (rand(probe, n) == choice && coin(probe) == set) return state;
  }
}

/// A state from which a coin falls as wanted and `rand(state, n)` right behind it gives `choice`.
inline RandomState stateForCoinAndChoice(bool set, std::uint32_t n, std::uint32_t choice) {
  for (RandomState state = 0;; ++state) {
    RandomState probe = state;
    if (coin(probe) == set && rand(probe, n) == choice) return state;
  }
}

/// A state from which `rand(state, n)` gives `choice`.
inline RandomState stateForChoice(std::uint32_t n, std::uint32_t choice) {
  for (RandomState state = 0;; ++state) {
    RandomState probe = state;
    if (rand(probe, n) == choice) return state;
  }
}

}  // namespace quvex
