#include "cli/parametertable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "cli/errors.h"
#include "quvex.h"

namespace quvex::cli {

namespace {

std::string refusalOf(const std::string& text) {
  try {
    static_cast<void>(parseSetting(text, false));
  } catch (const CommandError& error) {
    EXPECT_EQ(error.exitCode(), kExitUsage);
    return error.what();
  }
  return "accepted";
}

}  // namespace

TEST(ParameterTable, HoldsEachKeyOnceWithItsDefaultInRange) {
  std::set<std::string_view> keys;
  for (const ParameterInfo& info : parameterTable()) {
    EXPECT_TRUE(keys.insert(info.key).second) << info.key;
    EXPECT_LE(info.lowest, info.defaultValue) << info.key;
    EXPECT_GE(info.highest, info.defaultValue) << info.key;
    EXPECT_TRUE(info.sentence.ends_with('.')) << info.key;
  }
  EXPECT_EQ(keys.size(), 25U);
}

TEST(ParameterTable, HasTheDefaultsOfTheLibrary) {
  Quvex solver;
  QVModel* model = solver.getModel();
  model->addObjective(model->createExpression(QVOperator::Bool), QVObjectiveDirection::Minimize);
  model->close();
  const QVParam& param = *solver.getParam();
  EXPECT_EQ(findParameter("seed")->defaultValue, param.getSeed());
  EXPECT_EQ(findParameter("nbThreads")->defaultValue, param.getNbThreads());
  EXPECT_EQ(findParameter("annealingLevel")->defaultValue, param.getAnnealingLevel());
  EXPECT_EQ(findParameter("timeBetweenDisplays")->defaultValue, param.getTimeBetweenDisplays());
  EXPECT_EQ(findParameter("verbosity")->defaultValue, param.getVerbosity());
}

TEST(ParameterTable, ReadsASetting) {
  const AdvancedSetting setting = parseSetting("neighborhoodSize=4", false);
  EXPECT_EQ(setting.key, "neighborhoodSize");
  EXPECT_EQ(setting.value, 4);
}

TEST(ParameterTable, RefusesAnUnknownKeyWithTheNearestOne) {
  EXPECT_EQ(refusalOf("neighbourhoodSize=4"),
            "unknown parameter \"neighbourhoodSize\"; did you mean \"neighborhoodSize\"? \"quvex params\" lists all; "
            "--allow-unknown passes any");
}

TEST(ParameterTable, LetsAnUnknownKeyPassWhenAllowed) { EXPECT_EQ(parseSetting("mine=-3", true).value, -3); }

TEST(ParameterTable, SendsANamedParameterToItsFlag) {
  EXPECT_EQ(refusalOf("seed=4"), "\"seed\" has a flag of its own: --seed");
}

TEST(ParameterTable, RefusesValuesOutOfRange) {
  EXPECT_EQ(refusalOf("targetingLevel=11"), "targetingLevel must be 0 to 10, not 11");
  EXPECT_EQ(refusalOf("greedyEnabled=2"), "greedyEnabled must be 0 to 1, not 2");
}

TEST(ParameterTable, RefusesWhatIsNoSetting) {
  const std::string form = " is no setting; write -p KEY=VALUE, such as -p neighborhoodSize=4";
  EXPECT_EQ(refusalOf("neighborhoodSize"), "\"neighborhoodSize\"" + form);
  EXPECT_EQ(refusalOf("=4"), "\"=4\"" + form);
  const std::string number = " needs a whole number behind the equal sign";
  EXPECT_EQ(refusalOf("neighborhoodSize="), "\"neighborhoodSize=\"" + number);
  EXPECT_EQ(refusalOf("neighborhoodSize=4x"), "\"neighborhoodSize=4x\"" + number);
  EXPECT_EQ(refusalOf("neighborhoodSize=4294967296"), "\"neighborhoodSize=4294967296\"" + number);
}

}  // namespace quvex::cli
