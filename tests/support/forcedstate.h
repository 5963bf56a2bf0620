#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "api/quvex.h"
#include "api/qvstate.h"
#include "api/statecheck.h"
#include "support/apipeer.h"
#include "support/failure.h"

namespace quvex {

/// A state for the length of a scope, without the road that leads there. For tests of refusals: a call that is let
/// through may find a solver that is not what its state says.
class ForcedState {
 public:
  ForcedState(Quvex& solver, QVState state) : quvex(solver), before(solver.getState()) {
    ApiPeer::setState(quvex, state);
  }
  ~ForcedState() { ApiPeer::setState(quvex, before); }
  ForcedState(const ForcedState&) = delete;
  ForcedState& operator=(const ForcedState&) = delete;

 private:
  Quvex& quvex;
  QVState before;
};

/// The whole text of a refusal by a state rule.
inline std::string textOfRule(StateRule rule) {
  switch (rule) {
    case StateRule::NotRunning:
      return kNotRunningText;
    case StateRule::StoppedOnly:
      return kStoppedOnlyText;
    case StateRule::PausedOrStopped:
      return kPausedOrStoppedText;
    case StateRule::ModelingOnly:
      break;
  }
  return kModelingOnlyText;
}

/// The states in which a rule refuses.
inline std::vector<QVState> statesRefusedBy(StateRule rule) {
  switch (rule) {
    case StateRule::NotRunning:
      return {QVState::Running};
    case StateRule::StoppedOnly:
      return {QVState::Modeling, QVState::Running, QVState::Paused};
    case StateRule::PausedOrStopped:
      return {QVState::Modeling, QVState::Running};
    case StateRule::ModelingOnly:
      break;
  }
  return {QVState::Running, QVState::Paused, QVState::Stopped};
}

/// A call must be refused by `rule`, under the name `function`, in every state that the rule excludes.
template <class Call>
void expectRule(Quvex& quvex, StateRule rule, const std::string& function, Call&& call) {
  for (const QVState state : statesRefusedBy(rule)) {
    SCOPED_TRACE(function + " in state " + std::to_string(static_cast<int>(state)));
    const ForcedState forced(quvex, state);
    const Failure failure = failureOf(call);
    EXPECT_EQ(failure.explanation, textOfRule(rule));
    EXPECT_EQ(failure.function, function);
  }
}

}  // namespace quvex
