#include "cli/phaseoption.h"

#include <gtest/gtest.h>

#include <vector>

#include "cli/errors.h"

namespace quvex::cli {

namespace {

std::string refusalOf(const std::string& text) {
  try {
    static_cast<void>(parsePhase(text));
  } catch (const CommandError& error) {
    EXPECT_EQ(error.exitCode(), kExitUsage);
    return error.what();
  }
  return "accepted";
}

constexpr const char* kForm = "; write for instance --phase time=10,iterations=5000,objective=0";

}  // namespace

TEST(PhaseOption, ReadsAllPartsInAnyOrder) {
  const PhaseLimits limits = parsePhase("objective=0,time=10,iterations=5000000000");
  EXPECT_EQ(limits.seconds, 10);
  EXPECT_EQ(limits.iterations, 5000000000);
  EXPECT_EQ(limits.objective, 0);
}

TEST(PhaseOption, LeavesOutWhatIsNotGiven) {
  const PhaseLimits limits = parsePhase("time=10");
  EXPECT_EQ(limits.seconds, 10);
  EXPECT_FALSE(limits.iterations.has_value());
  EXPECT_FALSE(limits.objective.has_value());
}

TEST(PhaseOption, RefusesOtherTexts) {
  const std::string form = kForm;
  EXPECT_EQ(refusalOf(""), "--phase \"\": nothing is given" + form);
  EXPECT_EQ(refusalOf("tim=1"), "--phase \"tim=1\": unknown part \"tim\"; did you mean \"time\"?" + form);
  EXPECT_EQ(refusalOf("time"), "--phase \"time\": \"\" is no whole number in range" + form);
  EXPECT_EQ(refusalOf("time=0"), "--phase \"time=0\": 0 is too small, the least is 1" + form);
  EXPECT_EQ(refusalOf("objective=-1"), "--phase \"objective=-1\": -1 is too small, the least is 0" + form);
  EXPECT_EQ(refusalOf("time=1,time=2"), "--phase \"time=1,time=2\": a part is given twice" + form);
}

TEST(PhaseOption, ReplacesThePhasesOfASolver) {
  Quvex solver;
  QVModel* model = solver.getModel();
  QVExpression* decision = model->createExpression(QVOperator::Bool);
  model->addObjective(decision, QVObjectiveDirection::Minimize);
  model->addObjective(decision, QVObjectiveDirection::Minimize);
  model->close();
  solver.createPhase();
  solver.createPhase();
  const std::vector<PhaseLimits> phases = {{7, 900, 0}};
  replacePhases(solver, phases);
  ASSERT_EQ(solver.getNbPhases(), 1);
  EXPECT_EQ(solver.getPhase(0)->getTimeLimit(), 7);
  EXPECT_EQ(solver.getPhase(0)->getIterationLimit(), 900);
  EXPECT_EQ(solver.getPhase(0)->getOptimizedObjective(), 0);

  const std::vector<PhaseLimits> wrong = {{std::nullopt, std::nullopt, 2}};
  EXPECT_THROW(replacePhases(solver, wrong), CommandError);
}

}  // namespace quvex::cli
