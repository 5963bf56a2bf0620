#include <signal.h>

#include <nlohmann/json.hpp>

#include "clifixture.h"

namespace quvex::test {

using Json = nlohmann::json;

class SolveCommand : public CliTest {
 protected:
  void SetUp() override {
    CliTest::SetUp();
    saveModel("model.qvm");
  }
  [[nodiscard]] Json solveAsJson(std::vector<std::string> flags) const {
    flags.insert(flags.begin(), {"solve", "model.qvm", "--json"});
    const ProcessResult result = run(flags);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return Json::parse(result.out);
  }
};

TEST_F(SolveCommand, PutsTheResultOnStandardOutputAndTheRestOnStandardError) {
  const ProcessResult result = run({"solve", "model.qvm", "-i", "2000"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.out.starts_with("status: feasible\nstopReason: iterationLimit\nobjective 0: 24 (maximize)\n"))
      << result.out;
  EXPECT_NE(result.out.find("\nx0 = "), std::string::npos);
  EXPECT_NE(result.out.find("\n#"), std::string::npos);
  EXPECT_NE(result.err.find("Model: \n  expressions = "), std::string::npos);
  EXPECT_NE(result.err.find("[0 sec, 0 itr]: obj = (0)"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("2000 iterations, 4000 moves performed in "), std::string::npos);
  EXPECT_NE(result.err.find("\nFeasible solution: obj = (24)\n"), std::string::npos);
}

TEST_F(SolveCommand, QuietPrintsTheResultAlone) {
  const ProcessResult result = run({"solve", "-q", "-i", "100", "model.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(result.out.starts_with("status: "));
}

TEST_F(SolveCommand, VerboseShowsWhatTheLibraryPrints) {
  const ProcessResult result = run({"solve", "-v", "-i", "100", "model.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.out.starts_with("status: "));
  EXPECT_NE(result.err.find("Phase 0:\n\n"), std::string::npos);
  EXPECT_NE(result.err.find("1-SimpleFlip"), std::string::npos);
}

TEST_F(SolveCommand, WritesOneJsonObject) {
  const Json result = solveAsJson({"-i", "2000", "-s", "5", "-j", "1", "-p", "neighborhoodSize=3"});
  EXPECT_EQ(result["schema"], 1);
  EXPECT_EQ(result["status"], "feasible");
  EXPECT_EQ(result["stopReason"], "iterationLimit");
  EXPECT_EQ(result["objectives"], Json::parse(R"([{"index": 0, "direction": "maximize", "value": 24}])"));
  EXPECT_EQ(result["decisions"].size(), 7U);
  EXPECT_TRUE(result["violated"].empty());
  EXPECT_EQ(result["statistics"]["iterations"], 2000);
  EXPECT_EQ(result["statistics"]["moves"], 2000);
  EXPECT_EQ(result["run"]["model"], "model.qvm");
  EXPECT_EQ(result["run"]["seed"], 5);
  EXPECT_EQ(result["run"]["threads"], 1);
  EXPECT_EQ(result["run"]["changed"], Json::parse(R"({"seed": 5, "nbThreads": 1, "neighborhoodSize": 3})"));
}

TEST_F(SolveCommand, TheSameFlagsGiveTheSameResult) {
  Json first = solveAsJson({"-i", "50", "-s", "3", "-j", "3"});
  Json second = solveAsJson({"-i", "50", "-s", "3", "-j", "3"});
  first["statistics"].erase("seconds");
  second["statistics"].erase("seconds");
  EXPECT_EQ(first, second);
}

TEST_F(SolveCommand, UsesThePhasesOfTheFile) {
  saveModel("model.qvm", {30, 20});
  EXPECT_EQ(solveAsJson({})["statistics"]["iterations"], 50);
}

TEST_F(SolveCommand, AGivenLimitReplacesThePhasesOfTheFile) {
  saveModel("model.qvm", {30, 20});
  EXPECT_EQ(solveAsJson({"-i", "40"})["statistics"]["iterations"], 40);
  EXPECT_EQ(solveAsJson({"--phase", "iterations=5", "--phase", "iterations=6,objective=0"})["statistics"]["iterations"],
            11);
}

TEST_F(SolveCommand, LimitsAndPhasesExcludeEachOther) {
  const ProcessResult result = run({"solve", "model.qvm", "-t", "1", "--phase", "iterations=5"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "quvex: --phase has limits of its own; leave out --time and --iterations\n");
}

TEST_F(SolveCommand, WritesTheSolutionToAFile) {
  const ProcessResult result = run({"solve", "model.qvm", "-i", "100", "-o", "best.json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(Json::parse(read("best.json"))["schema"], 1);

  EXPECT_EQ(run({"solve", "model.qvm", "-i", "100", "-o", "best.sol"}).exitCode, 0);
  EXPECT_TRUE(read("best.sol").starts_with("status: "));
}

TEST_F(SolveCommand, WritesAWholeEnvironmentToAFile) {
  ASSERT_EQ(run({"solve", "model.qvm", "-i", "2000", "-s", "9", "-o", "after.qvm.gz"}).exitCode, 0);
  Quvex solver;
  solver.loadEnvironment(path("after.qvm.gz"));
  EXPECT_EQ(solver.getSolution()->getIntValue(solver.getModel()->getObjective(0)), kBestValue);
  EXPECT_EQ(solver.getParam()->getSeed(), 9);
  EXPECT_EQ(solver.getParam()->getVerbosity(), 1);
  EXPECT_EQ(solver.getNbPhases(), 1);
}

TEST_F(SolveCommand, RefusesAnOutputBeforeItSolves) {
  const ProcessResult result = run({"solve", "model.qvm", "-o", "missing/best.json"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err,
            "quvex: missing/best.json: cannot write this output: No such file or directory; give another file with "
            "-o\n");
}

TEST_F(SolveCommand, RefusesAnOutputWhoseEndingTellsNothing) {
  const ProcessResult result = run({"solve", "model.qvm", "-o", "best.txt"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("best.txt: the ending tells no format"), std::string::npos);
}

TEST_F(SolveCommand, ShowsOnlyTheValuesAskedFor) {
  const auto out = [this](const std::string& which) {
    return run({"solve", "model.qvm", "-i", "2000", "--values", which}).out;
  };
  EXPECT_EQ(out("none").find(" = "), std::string::npos);
  EXPECT_EQ(out("nonzero").find(" = 0"), std::string::npos);
  EXPECT_EQ(out("named").find("\n#"), std::string::npos);
}

TEST_F(SolveCommand, RefusesAMissingModel) {
  const ProcessResult result = run({"solve", "none.qvm"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err, "quvex: none.qvm: No such file or directory; check the path\n");
}

TEST_F(SolveCommand, RefusesWhatIsNoModel) {
  write("text.qvm", "hello");
  const ProcessResult result = run({"solve", "text.qvm"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err,
            "quvex: text.qvm: The given file format is not recognized. A model file begins with <QVM01> or <QVB01>.\n");
}

TEST_F(SolveCommand, NamesTheOperatorThatIsMeant) {
  write("typo.qvm", "<QVM01>{\"expressions\"={{\"type\"=\"summ\"}}}");
  const ProcessResult result = run({"solve", "typo.qvm"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err, "quvex: typo.qvm: Unknown operator : summ; did you mean \"sum\"?\n");
}

TEST_F(SolveCommand, TellsAnInconsistentModel) {
  write("never.qvm",
        "<QVM01>{\"expressions\"={{\"type\"=\"bool\"}{\"type\"=\"const\",\"value\"=0}}"
        "\"constraints\"={{\"idx\"=1}}\"objectives\"={{\"idx\"=0,\"dir\"=\"maximize\"}}}");
  const ProcessResult result = run({"solve", "never.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.out.starts_with("status: inconsistent\nstopReason: inconsistent\n")) << result.out;
  EXPECT_NE(result.err.find("Inconsistent model.\n"), std::string::npos);
}

TEST_F(SolveCommand, EndsByItselfAtAProvenEnd) {
  write("free.qvm", "<QVM01>{\"expressions\"={{\"type\"=\"bool\"}}\"objectives\"={{\"idx\"=0,\"dir\"=\"maximize\"}}}");
  const ProcessResult result = run({"solve", "free.qvm", "-q"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.out.starts_with("status: optimal\nstopReason: bound\nobjective 0: 1 (maximize)\n")) << result.out;
}

TEST_F(SolveCommand, InterruptKeepsTheBestSolution) {
  Process process(command({"solve", "model.qvm", "-o", "best.json"}), directory.string());
  ASSERT_TRUE(process.waitForErrorLine("["));
  process.sendSignal(SIGINT);
  const ProcessResult result = process.finish();
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const Json solution = Json::parse(read("best.json"));
  EXPECT_EQ(solution["stopReason"], "interrupted");
  EXPECT_EQ(solution["status"], "feasible");
}

}  // namespace quvex::test
