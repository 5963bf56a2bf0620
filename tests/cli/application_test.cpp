#include <algorithm>

#include "clifixture.h"

namespace quvex::test {

class Application : public CliTest {};

TEST_F(Application, AloneItSaysWhatItIs) {
  const ProcessResult result = run({});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 10);
  EXPECT_TRUE(result.out.starts_with("quvex finds good solutions"));
}

TEST_F(Application, SuggestsSolveForAModel) {
  const ProcessResult result = run({"model.qvm"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "quvex: \"model.qvm\" is a file; did you mean \"quvex solve model.qvm\"?\n");
}

TEST_F(Application, SuggestsTheNearestCommand) {
  const ProcessResult result = run({"slove", "model.qvm"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "quvex: unknown command \"slove\"; did you mean \"solve\"?\n");
  EXPECT_EQ(run({"optimise"}).err, "quvex: unknown command \"optimise\"; \"quvex --help\" lists all\n");
}

TEST_F(Application, SuggestsTheNearestFlag) {
  const ProcessResult result = run({"solve", "model.qvm", "--iteration", "5"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "quvex: unknown argument \"--iteration\"; did you mean \"--iterations\"?\n");
}

TEST_F(Application, RefusesValuesOutOfRange) {
  const ProcessResult result = run({"solve", "model.qvm", "--annealing", "10"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find("--annealing"), std::string::npos);
  EXPECT_EQ(run({"solve", "model.qvm", "-t", "0"}).exitCode, 2);
  EXPECT_EQ(run({"solve", "model.qvm", "-j", "1025"}).exitCode, 2);
  EXPECT_EQ(run({"solve", "model.qvm", "-i", "x"}).exitCode, 2);
}

TEST_F(Application, RefusesAnUnknownParameter) {
  const ProcessResult result = run({"solve", "model.qvm", "-p", "traceEnable=1"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("did you mean \"traceEnabled\"?"), std::string::npos);
}

TEST_F(Application, LetsAnUnknownParameterPassWhenAllowed) {
  saveModel("model.qvm");
  const ProcessResult result = run({"solve", "model.qvm", "-i", "10", "-p", "mine=3", "--allow-unknown"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.err.find("  mine = 3\n"), std::string::npos);
}

TEST_F(Application, HelpHasExamples) {
  const ProcessResult result = run({"solve", "--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("Examples:\n  quvex solve model.qvm -t 10"), std::string::npos);
  EXPECT_EQ(result.err, "");
}

TEST_F(Application, TellsItsVersion) {
  const ProcessResult result = run({"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.out.starts_with("Quvex 3.0 (")) << result.out;
  EXPECT_EQ(run({"version"}).out, QVVersion::getInfo());
}

TEST_F(Application, ListsTheParameters) {
  const ProcessResult all = run({"params"});
  EXPECT_EQ(all.exitCode, 0);
  EXPECT_NE(all.out.find("\nneighborhoodSize "), std::string::npos);
  const ProcessResult one = run({"params", "annealingLevel"});
  EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 2);
  EXPECT_EQ(run({"params", "annealing"}).exitCode, 2);
}

TEST_F(Application, DescribesAModel) {
  saveModel("model.qvm");
  const ProcessResult result = run({"info", "model.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(result.out.starts_with("Model: \n"));
  EXPECT_NE(result.out.find("Operators:\n  bool                               7\n"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("Compiled graph:"), std::string::npos);
}

TEST_F(Application, DescribesTheCompiledGraph) {
  saveModel("model.qvm");
  const ProcessResult result = run({"info", "model.qvm", "--kernel"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("  boolean decisions                  7\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("  scalar_sum                         2\n"), std::string::npos);
  EXPECT_NE(result.out.find("  objective 0: 0 to 49\n"), std::string::npos);
}

TEST_F(Application, ConvertsAmongTheFormats) {
  saveModel("model.qvm", {30});
  const std::vector<std::string> endings = {".qvm", ".qvm.gz", ".qvb", ".qvb.gz"};
  for (const std::string& from : endings) {
    ASSERT_EQ(run({"convert", "model.qvm", "from" + from}).exitCode, 0);
    for (const std::string& to : endings) {
      ASSERT_EQ(run({"convert", "from" + from, "to" + to}).exitCode, 0) << from << " " << to;
      EXPECT_EQ(read("to" + to).starts_with("\x1f\x8b"), to.ends_with(".gz"));
      ASSERT_EQ(run({"convert", "to" + to, "again.qvm"}).exitCode, 0);
      EXPECT_EQ(read("again.qvm"), read("model.qvm")) << from << " " << to;
    }
  }
  EXPECT_EQ(run({"convert", "model.qvm", "model.txt"}).exitCode, 2);
}

}  // namespace quvex::test
