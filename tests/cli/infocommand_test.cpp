#include <regex>

#include "clifixture.h"

namespace quvex::test {

class InfoCommand : public CliTest {
 protected:
  /// Two of three decisions must be set, and exactly one of the first two.
  void SetUp() override {
    CliTest::SetUp();
    write("model.qvm",
          "<QVM01>\n{\"expressions\"={{\"type\"=\"bool\"},{\"type\"=\"bool\"},{\"type\"=\"bool\"},{\"type\"=\"sum\"},"
          "{\"type\"=\"const\",\"value\"=2},{\"type\"=\"eq\"},{\"type\"=\"xor\"}},"
          "\"operands\"={{},{},{},{0,1,2},{},{3,4},{0,1}},\"constraints\"={{\"idx\"=5},{\"idx\"=6}},"
          "\"objectives\"={{\"idx\"=3,\"dir\"=\"minimize\"}}}");
  }
  /// The number beside a name, in the section under a heading.
  [[nodiscard]] static std::string count(const std::string& text, const std::string& heading, const std::string& name) {
    const std::string section = text.substr(text.find(heading + ":\n"));
    std::smatch found;
    return std::regex_search(section, found, std::regex("\n  " + name + " +(\\d+)\n")) ? found[1].str() : "absent";
  }
};

TEST_F(InfoCommand, DescribesTheModelByOperator) {
  const ProcessResult result = run({"info", "model.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("decisions = 3, constraints = 2, objectives = 1"), std::string::npos);
  EXPECT_EQ(count(result.out, "Operators", "bool"), "3");
  EXPECT_EQ(count(result.out, "Operators", "xor"), "1");
  EXPECT_EQ(result.out.find("Compiled graph"), std::string::npos);
}

TEST_F(InfoCommand, TellsTheStructureOfTheCompiledGraph) {
  const ProcessResult result = run({"info", "model.qvm", "--kernel"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(count(result.out, "Compiled graph", "boolean decisions"), "3");
  EXPECT_EQ(count(result.out, "Structure", "equality sums"), "1");
  EXPECT_EQ(count(result.out, "Structure", "free decisions"), "0");
  EXPECT_EQ(count(result.out, "Structure", "swappable decisions"), "3");
  EXPECT_EQ(count(result.out, "Constraint tree", "sum"), "1");
  EXPECT_EQ(count(result.out, "Constraint tree", "constraints covered"), "1");
  EXPECT_EQ(count(result.out, "Constraint tree", "constraints cut"), "1");  // an xor can't be reasoned about
  EXPECT_EQ(count(result.out, "Moves and their weights", "1-SimpleFlip"), "1");
  EXPECT_EQ(count(result.out, "Moves and their weights", "2-Cycle"), "2");
  EXPECT_EQ(count(result.out, "Moves and their weights", "1-Flip"), "absent");  // no decision is free
}

}  // namespace quvex::test
