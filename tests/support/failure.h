#pragma once

#include <ostream>
#include <string>

#include "api/qvexception.h"

namespace quvex {

/// The refusals of the state rules.
inline constexpr const char* kNotRunningText =
    "This method cannot be called in state Running (the model must not be closed or the solver must be paused or "
    "stopped).";
inline constexpr const char* kStoppedOnlyText =
    "This method is only allowed in state Stopped (the model must be closed and the solver must be stopped).";
inline constexpr const char* kPausedOrStoppedText =
    "This method is only allowed in states Paused or Stopped (the model must be closed and the solver must be paused "
    "or stopped).";
inline constexpr const char* kModelingOnlyText =
    "This method is only allowed in state Modeling (the model must not be closed).";

/// What a call raised, as values that a test can compare. A call that raises nothing gives `kNothing` as explanation.
struct Failure {
  static constexpr const char* kNothing = "(nothing was raised)";

  std::string function;
  std::string explanation = kNothing;
  std::string file;
  bool isKernel = false;

  [[nodiscard]] bool raised() const { return explanation != kNothing; }
  /// The whole message, or "no failure".
  [[nodiscard]] std::string message() const {
    return raised() ? "ERROR [function " + function + "]: " + explanation : "no failure";
  }

  friend bool operator==(const Failure& failure, const std::string& message) { return failure.message() == message; }
  friend std::ostream& operator<<(std::ostream& out, const Failure& failure) { return out << failure.message(); }
};

/// The message of a failure, for comparison: EXPECT_EQ(failureOf(...), refusal("QVModel::close", "...")).
inline std::string refusal(const std::string& function, const std::string& explanation) {
  return "ERROR [function quvex::" + function + "]: " + explanation;
}

/// Runs a call and keeps its failure: EXPECT_EQ(failureOf([&] { model->close(); }).explanation, "...").
template <class Call>
Failure failureOf(Call&& call) {
  try {
    call();
  } catch (const QVException& e) {
    return {e.getFunctionName(), e.getExplanation(), e.getFileName(),
            dynamic_cast<const KernelException*>(&e) != nullptr};
  }
  return {};
}

/// The explanation alone.
template <class Call>
std::string explanationOf(Call&& call) {
  return failureOf(call).explanation;
}

}  // namespace quvex
