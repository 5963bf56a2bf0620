#include <nlohmann/json.hpp>

#include "clifixture.h"

namespace quvex::test {

using Json = nlohmann::json;

class CheckCommand : public CliTest {
 protected:
  void SetUp() override {
    CliTest::SetUp();
    saveModel("model.qvm");
    ASSERT_EQ(run({"solve", "model.qvm", "-q", "-i", "2000", "-o", "best.json"}).exitCode, 0);
    solution = Json::parse(read("best.json"));
  }
  [[nodiscard]] ProcessResult check(const Json& changed) const {
    write("changed.json", changed.dump());
    return run({"check", "model.qvm", "changed.json"});
  }

  Json solution;
};

TEST_F(CheckCommand, PassesASolution) {
  const ProcessResult result = run({"check", "model.qvm", "best.json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "objective 0: 24\n0 of 1 constraints violated\n");
}

TEST_F(CheckCommand, ListsViolatedConstraintsWithTheirGap) {
  for (auto& [name, value] : solution["decisions"].items()) value = 1;
  solution["objectives"][0]["value"] = 49;
  const ProcessResult result = check(solution);
  EXPECT_EQ(result.exitCode, 10);
  EXPECT_EQ(result.out,
            "objective 0: 49\n"
            "capacity: leq of 42 and 20 does not hold, gap 22\n"
            "1 of 1 constraints violated\n");
}

TEST_F(CheckCommand, FindsAWrongObjective) {
  solution["objectives"][0]["value"] = 25;
  const ProcessResult result = check(solution);
  EXPECT_EQ(result.exitCode, 10);
  EXPECT_NE(result.out.find("objective 0: the file says 25, its decisions give 24\n"), std::string::npos);
}

TEST_F(CheckCommand, ReadsASavedEnvironment) {
  ASSERT_EQ(run({"solve", "model.qvm", "-q", "-i", "2000", "-o", "after.qvm"}).exitCode, 0);
  const ProcessResult result = run({"check", "model.qvm", "after.qvm"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "objective 0: 24\n0 of 1 constraints violated\n");
}

TEST_F(CheckCommand, RefusesTheSolutionOfAnotherModel) {
  solution["decisions"]["other"] = 1;
  EXPECT_EQ(check(solution).err, "quvex: changed.json: the model has no decision \"other\"; is it another model's?\n");
  solution["decisions"].erase("other");
  solution["decisions"].erase("x0");
  const ProcessResult result = check(solution);
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.err, "quvex: changed.json: 6 decisions, but the model has 7; is it another model's?\n");
}

TEST_F(CheckCommand, RefusesWhatIsNoSolution) {
  write("text.json", "hello");
  EXPECT_EQ(run({"check", "model.qvm", "text.json"}).exitCode, 3);
  EXPECT_EQ(check(Json::array()).exitCode, 3);
  EXPECT_EQ(run({"check", "model.qvm", "none.json"}).exitCode, 3);
  solution["decisions"]["x0"] = 2;
  EXPECT_EQ(check(solution).err, "quvex: changed.json: The only allowed values are 0 or 1\n");
  solution["decisions"]["x0"] = "many";
  EXPECT_EQ(check(solution).err, "quvex: changed.json: a value is no number\n");
}

}  // namespace quvex::test
