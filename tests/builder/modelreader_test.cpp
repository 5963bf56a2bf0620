#include "builder/modelreader.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "builder/modelwriter.h"
#include "solver/kernel/random.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

/// Reads a document that is given without header and outer braces.
void readBody(Quvex& quvex, const std::string& body) {
  const TempFile file("<QVM01>\r\n{" + body + "}", ".qvm");
  ModelReader(*quvex.getModel(), file.name()).read();
}

Failure failureOfBody(const std::string& body) {
  Quvex quvex;
  return failureOf([&] { readBody(quvex, body); });
}

// Two decisions, an integer objective (their sum) and a double one.
const std::string kTwoObjectives =
    R"("expressions"={{"type"="bool","name"="x"}{"type"="bool","name"="y"}{"type"="sum"}{"type"="const","value"=0.5})"
    R"({"type"="prod"}}"operands"={{}{}{0,1}{}{0,3}})"
    R"("objectives"={{"idx"=2,"dir"="maximize"}{"idx"=4,"dir"="minimize"}})";

TEST(ModelReader, RebuildsExpressions) {
  Quvex quvex;
  readBody(quvex, R"("info"={"version"="any"}"expressions"={{"type"="bool","name"="x"},{"type"="const","value"=7},)"
                  R"({"value"=0.5,"type"="const"},{"type"="const"},{"type"="sum"}})");
  const QVModel& model = *quvex.getModel();
  ASSERT_EQ(model.getNbExpressions(), 5);
  EXPECT_FALSE(model.isClosed());
  EXPECT_EQ(model.getExpression("x")->getIndex(), 0);
  EXPECT_EQ(model.getExpression(1)->getIntValue(), 7);
  EXPECT_EQ(model.getExpression(2)->getDoubleValue(), 0.5);
  EXPECT_EQ(model.getExpression(3)->getIntValue(), 0);
  EXPECT_EQ(model.getExpression(4)->getOperator(), QVOperator::Sum);
}

TEST(ModelReader, RebuildsAWholeModel) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives + R"("constraints"={})");
  const QVModel& model = *quvex.getModel();
  EXPECT_EQ(model.getExpression(2)->getNbOperands(), 2);
  EXPECT_EQ(model.getExpression(2)->getOperand(1)->getName(), "y");
  EXPECT_EQ(model.getNbObjectives(), 2);
  EXPECT_EQ(model.getObjective(0)->getIndex(), 2);
  EXPECT_EQ(model.getObjectiveDirection(0), QVObjectiveDirection::Maximize);
  EXPECT_EQ(model.getObjectiveDirection(1), QVObjectiveDirection::Minimize);
  EXPECT_EQ(model.getNbConstraints(), 0);
  EXPECT_FALSE(model.isClosed());
}

TEST(ModelReader, LeavesOutUnknownPropertiesEverywhere) {
  Quvex quvex;
  readBody(
      quvex,
      R"("expressions"={{"color"={"a"=1{}}"type"="bool"}}"extra"={1{2}}"constraints"={{"why"="x""idx"=0}{"why"=1}})"
      R"("objectives"={{"idx"=0"dir"="down"}{"why"=1}}"phases"={{"name"="p"}}"parameters"={"x"={}"seed"=3})"
      R"("solution"={"status"="optimal""decisions"={1}"x"=-nan}"last"=-nan)");
  EXPECT_EQ(quvex.getModel()->getNbConstraints(), 1);
  EXPECT_EQ(quvex.getModel()->getNbObjectives(), 1);
  EXPECT_EQ(quvex.getNbPhases(), 1);
  EXPECT_EQ(quvex.getParam()->getSeed(), 3);
  EXPECT_EQ(quvex.getModel()->getDecision(0)->getIntValue(), 1);
}

TEST(ModelReader, MinimizesUnlessTheDirectionIsExactlyMaximize) {
  Quvex quvex;
  readBody(
      quvex,
      R"("expressions"={{"type"="bool"}}"objectives"={{"idx"=0"dir"="Maximize"}{"idx"=0}{"idx"=0"dir"="maximize"}})");
  const QVModel& model = *quvex.getModel();
  EXPECT_EQ(model.getObjectiveDirection(0), QVObjectiveDirection::Minimize);
  EXPECT_EQ(model.getObjectiveDirection(1), QVObjectiveDirection::Minimize);
  EXPECT_EQ(model.getObjectiveDirection(2), QVObjectiveDirection::Maximize);
}

TEST(ModelReader, TakesOperandsWithLaterIds) {
  Quvex quvex;
  readBody(quvex, R"("expressions"={{"type"="not"}{"type"="bool"}}"operands"={{1}{}})");
  EXPECT_EQ(quvex.getModel()->getExpression(0)->getOperand(0)->getIndex(), 1);
}

TEST(ModelReader, TakesSectionsInAnyOrder) {
  Quvex quvex;
  readBody(quvex, R"("expressions"={{"type"="not"}{"type"="bool"}}"objectives"={{"idx"=1}}"constraints"={{"idx"=0}})"
                  R"("operands"={{1}}"solution"={"decisions"={1}}"parameters"={"nbThreads"=1})");
  EXPECT_TRUE(quvex.getModel()->isClosed());
  EXPECT_EQ(quvex.getParam()->getNbThreads(), 1);
  EXPECT_EQ(quvex.getSolution()->getStatus(), QVSolutionStatus::Infeasible);
}

TEST(ModelReader, SharesOneExpressionBetweenEqualConstants) {
  Quvex quvex;
  readBody(
      quvex,
      R"("expressions"={{"type"="const","value"=4}{"type"="const","value"=4}{"type"="sum"}}"operands"={{}{}{1,0}})");
  EXPECT_EQ(quvex.getModel()->getNbExpressions(), 2);
  EXPECT_EQ(quvex.getModel()->getExpression(1)->getOperand(0)->getIndex(), 0);
  EXPECT_EQ(quvex.getModel()->getExpression(1)->getNbOperands(), 2);
}

TEST(ModelReader, NeedsExpressionsFirst) {
  EXPECT_EQ(failureOfBody("").explanation, "Unexpected token. Token expected : 'property', line 2");
  EXPECT_EQ(failureOfBody(R"("operands"={})").explanation,
            "Unexpected property. Expected property 'expressions'. Property found 'operands'");
  EXPECT_EQ(failureOfBody(R"("info"={}"other"=1"expressions"={})").explanation,
            "Unexpected property. Expected property 'expressions'. Property found 'other'");
}

TEST(ModelReader, RefusesWrongExpressions) {
  const Failure failure = failureOfBody(R"("expressions"={{"name"="x"}})");
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("ModelReader::readExpressions", "Property 'type' is required to define an expression"));
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="summ"}})").explanation, "Unknown operator : summ");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"=1}})").explanation,
            "Unexpected token. Token expected : 'string', line 2");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="const""value"="1"}})").explanation,
            "Unexpected token. Token expected : 'long long', line 2");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="const""value"=inf}})").explanation,
            "Cannot use infinity as a double constant.");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="const""value"=-nan}})").explanation,
            "Cannot use NaN (Not a Number) as a double constant.");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="bool""name"="x"}{"type"="bool""name"="x"}})").explanation,
            "An operator with name \"x\" already exists.");
}

TEST(ModelReader, MakesNoExpressionOfAnEntryWithoutEnd) {
  Quvex quvex;
  EXPECT_EQ(failureOf([&] { readBody(quvex, R"("expressions"={{"type"="bool" 5}})"); }).explanation,
            "Unexpected token. Token expected : 'end-map', line 2");
  EXPECT_EQ(quvex.getModel()->getNbExpressions(), 0);
  EXPECT_EQ(failureOfBody(R"("expressions"={{"name"="x" 5}})").explanation,
            "Unexpected token. Token expected : 'end-map', line 2");
}

TEST(ModelReader, RefusesIdsThatDoNotExist) {
  const std::string text = " does not exist.\nOnly indices from 0 to 1 are currently allowed.";
  const std::string expressions = R"("expressions"={{"type"="bool"}{"type"="sum"}})";
  EXPECT_EQ(failureOfBody(expressions + R"("operands"={{}{2}})").explanation, "The expression with index 2" + text);
  EXPECT_EQ(failureOfBody(expressions + R"("operands"={{}{-1}})").explanation, "The expression with index -1" + text);
  EXPECT_EQ(failureOfBody(expressions + R"("operands"={{}{0}{}})").explanation, "The expression with index 2" + text);
  EXPECT_EQ(failureOfBody(expressions + R"("constraints"={{"idx"=2}})").explanation,
            "The expression with index 2" + text);
  EXPECT_EQ(failureOfBody(expressions + R"("objectives"={{"idx"=-5}})").explanation,
            "The expression with index -5" + text);
}

TEST(ModelReader, LetsTheModelRefuseWhatItsRulesForbid) {
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="not"}{"type"="bool"}}"operands"={{1,1}})").explanation,
            "Number of operands (2) is too large: at most 1 operands are expected for expression with type 'not'.");
  EXPECT_EQ(
      failureOfBody(R"("expressions"={{"type"="not"}}"operands"={{0}}"objectives"={{"idx"=0}}"phases"={})").explanation,
      "A cycle of length 1 was detected in the model : \n  - Expression 0 (type = not)");
  EXPECT_EQ(failureOfBody(R"("expressions"={{"type"="bool"}}"phases"={})").explanation,
            "At least one objective is required in the model.");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("phases"={}"constraints"={{"idx"=0}})").explanation,
            "This method is only allowed in state Modeling (the model must not be closed).");
}

TEST(ModelReader, KeepsWhatWasReadBeforeAFailure) {
  Quvex quvex;
  EXPECT_TRUE(failureOf([&] { readBody(quvex, R"("expressions"={{"type"="bool"}{"type"="bad"}})"); }).raised());
  EXPECT_EQ(quvex.getModel()->getNbExpressions(), 1);
}

TEST(ModelReader, SetsPhasesAndParameters) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives +
                      R"("phases"={{"iterationLimit"=5000000000"timeLimit"=9"optimizedObjective"=0}{}})"
                      R"("parameters"={"seed"=4"nbThreads"=3"annealingLevel"=0"verbosity"=2"timeBetweenDisplays"=5)"
                      R"("objectiveBounds"={12,0.25}"advancedParams"={"zeta"=-1"any name"=2}})");
  ASSERT_EQ(quvex.getNbPhases(), 2);
  EXPECT_EQ(quvex.getPhase(0)->getIterationLimit(), 5000000000);
  EXPECT_EQ(quvex.getPhase(0)->getTimeLimit(), 9);
  EXPECT_EQ(quvex.getPhase(0)->getOptimizedObjective(), 0);
  EXPECT_EQ(quvex.getPhase(1)->getOptimizedObjective(), 1);
  const QVParam& param = *quvex.getParam();
  EXPECT_EQ(param.getSeed(), 4);
  EXPECT_EQ(param.getNbThreads(), 3);
  EXPECT_EQ(param.getAnnealingLevel(), 0);
  EXPECT_EQ(param.getVerbosity(), 2);
  EXPECT_EQ(param.getTimeBetweenDisplays(), 5);
  EXPECT_EQ(param.getIntObjectiveBound(0), 12);
  EXPECT_EQ(param.getDoubleObjectiveBound(1), 0.25);
  EXPECT_EQ(param.getAdvancedParam("zeta"), -1);
  EXPECT_EQ(param.getAdvancedParam("any name"), 2);
}

TEST(ModelReader, LetsParametersRefuseWhatIsOutOfRange) {
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("parameters"={"nbThreads"=1025})").explanation,
            "The number of threads cannot exceed 1024.");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("phases"={{"timeLimit"=0}})").explanation,
            "Argument timeLimit must be a strictly positive number.");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("parameters"={"objectiveBounds"={1,2,3}})").explanation,
            "The objective with index 2 does not exist.\nOnly indices from 0 to 1 are currently allowed.");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("solution"={"decisions"={1,1,1}})").explanation,
            "The decision with index 2 does not exist.\nOnly indices from 0 to 1 are currently allowed.");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("solution"={"decisions"={2}})").explanation,
            "The only allowed values are 0 or 1");
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("solution"={"decisions"={0.5}})").explanation,
            "Cannot use this method. The given expression must be double.");
}

TEST(ModelReader, SetsTheBoundOfADoubleObjectiveFromAnInteger) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives + R"("parameters"={"objectiveBounds"={3,-2}})");
  EXPECT_EQ(quvex.getParam()->getIntObjectiveBound(0), 3);
  EXPECT_EQ(quvex.getParam()->getDoubleObjectiveBound(1), -2.0);
}

TEST(ModelReader, TakesAnInfinityForNoBoundWhateverTheObjective) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives + R"("parameters"={"objectiveBounds"={inf-inf}})");
  EXPECT_EQ(quvex.getParam()->getIntObjectiveBound(0), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(quvex.getParam()->getDoubleObjectiveBound(1), -kInf);
}

TEST(ModelReader, KeepsTheDirectionOfABoundThatLostItsSign) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives + R"("parameters"={"objectiveBounds"={5-inf}})");
  EXPECT_EQ(quvex.getParam()->getIntObjectiveBound(0), 5);
  EXPECT_EQ(quvex.getParam()->getDoubleObjectiveBound(1), -kInf);
}

TEST(ModelReader, KeepsInfiniteBoundsOfBinaryFiles) {
  for (const double bound : {kInf, -kInf}) {
    Quvex source;
    readBody(source, kTwoObjectives);
    if (!source.getModel()->isClosed()) source.getModel()->close();
    source.getParam()->setDoubleObjectiveBound(1, bound);
    const TempFile binary(".qvb");
    ModelWriter(*source.getModel(), binary.name()).write();
    Quvex fromBinary;
    ModelReader(*fromBinary.getModel(), binary.name()).read();
    EXPECT_EQ(fromBinary.getParam()->getDoubleObjectiveBound(1), bound);
    const TempFile text(".qvm");
    ModelWriter(*source.getModel(), text.name()).write();
    Quvex fromText;
    ModelReader(*fromText.getModel(), text.name()).read();
    EXPECT_EQ(fromText.getParam()->getDoubleObjectiveBound(1), -kInf) << "the sign may be a lost one";
  }
}

TEST(ModelReader, RefusesAFractionAsTheBoundOfAnIntegerObjective) {
  EXPECT_EQ(failureOfBody(kTwoObjectives + R"("parameters"={"objectiveBounds"={0.5}})").explanation,
            "Cannot use this method. The given expression must be double.");
}

TEST(ModelReader, LeavesDecisionsWithoutValueAtZero) {
  Quvex quvex;
  readBody(quvex, kTwoObjectives + R"("solution"={"decisions"={1}})");
  EXPECT_EQ(quvex.getModel()->getDecision(0)->getIntValue(), 1);
  EXPECT_EQ(quvex.getModel()->getDecision(1)->getIntValue(), 0);
}

TEST(ModelReader, ReadsABinaryFileUnderATextName) {
  Quvex source;
  source.getModel()->createExpression(QVOperator::Bool)->setName("x");
  const TempFile binary(".qvb");
  ModelWriter(*source.getModel(), binary.name()).write();
  const TempFile renamed(binary.content(), ".qvm");
  Quvex target;
  ModelReader(*target.getModel(), renamed.name()).read();
  EXPECT_EQ(target.getModel()->getExpression("x")->getIndex(), 0);
}

TEST(ModelReader, RefusesFilesOfNeitherFormat) {
  Quvex quvex;
  const TempFile file("something else", ".qvm");
  EXPECT_EQ(explanationOf([&] { ModelReader(*quvex.getModel(), file.name()); }),
            "The provided file is not recognized (wrong magic number)");
  EXPECT_EQ(explanationOf([&] { ModelReader(*quvex.getModel(), "/no/such/file"); }), "Cannot open file /no/such/file");
}

TEST(ModelReader, LosesTheDoubleTypeOfAWholeConstantInTextOnly) {
  for (const bool binary : {false, true}) {
    Quvex source;
    source.getModel()->createConstant(3.0);
    const TempFile file(binary ? ".qvb" : ".qvm");
    ModelWriter(*source.getModel(), file.name()).write();
    Quvex target;
    ModelReader(*target.getModel(), file.name()).read();
    const QVExpression& constant = *target.getModel()->getExpression(0);
    EXPECT_EQ(ModelAccess::valueType(constant), binary ? kDouble : kInteger);
  }
}

/// A random closed environment whose doubles all have fractions, so that text keeps them.
void buildRandomEnvironment(Quvex& quvex, std::uint32_t& state) {
  QVModel& model = *quvex.getModel();
  std::vector<QVExpression*> booleans;
  std::vector<QVExpression*> numbers;
  for (int i = 0; i < 8; ++i) booleans.push_back(model.createExpression(QVOperator::Bool));
  for (int i = 0; i < 4; ++i) {
    numbers.push_back(model.createConstant(static_cast<std::int64_t>(rand(state, 1000)) - 500));
    numbers.push_back(model.createConstant(static_cast<double>(rand(state, 1000)) + 0.1));
  }
  const auto any = [&](const std::vector<QVExpression*>& from) {
    return from[rand(state, static_cast<std::uint32_t>(from.size()))];
  };
  for (int i = 0; i < 30; ++i) {
    QVExpression* sum = model.createExpression(coin(state) ? QVOperator::Sum : QVOperator::Max);
    for (std::uint32_t n = 1 + rand(state, 6); n > 0; --n) sum->addOperand(coin(state) ? any(booleans) : any(numbers));
    numbers.push_back(sum);
    booleans.push_back(model.createExpression(QVOperator::Leq, any(numbers), any(numbers)));
    if (coin(state)) booleans.back()->setName("name \"" + std::to_string(i) + "\" \\ of more than 25 bytes");
  }
  // A decision on each constraint's side keeps the model consistent: others are not saved.
  for (int i = 0; i < 3; ++i) {
    model.addConstraint(model.createExpression(QVOperator::Or, booleans[rand(state, 8)], any(booleans)));
  }
  for (int i = 0; i < 3; ++i) {
    model.addObjective(any(numbers), coin(state) ? QVObjectiveDirection::Maximize : QVObjectiveDirection::Minimize);
  }
  model.close();
  for (int i = 0; i < 2; ++i) quvex.createPhase()->setTimeLimit(1 + static_cast<int>(rand(state, 100)));
  for (int i = 0; i < 3; ++i) {
    if (model.getObjective(i)->isDouble()) {
      quvex.getParam()->setDoubleObjectiveBound(i, static_cast<double>(rand(state, 100)) + 0.3);
    } else {
      quvex.getParam()->setIntObjectiveBound(i, static_cast<std::int64_t>(rand(state, 100)));
    }
  }
  quvex.getParam()->setAdvancedParam("key", static_cast<int>(rand(state, 9)));
  for (int i = 0; i < model.getNbDecisions(); ++i) model.getDecision(i)->setIntValue(coin(state) ? 1 : 0);
}

TEST(ModelReader, CarriesRandomEnvironmentsThroughAllFourForms) {
  for (std::uint32_t seed = 1; seed <= 30; ++seed) {
    std::uint32_t state = seed * 7919;
    Quvex source;
    buildRandomEnvironment(source, state);
    const TempFile first(".qvm");
    ModelWriter(*source.getModel(), first.name()).write();
    const std::string expected = first.content();
    std::string previous = first.name();
    std::vector<std::unique_ptr<TempFile>> files;
    for (const char* suffix : {".qvb", ".qvm.gz", ".qvb.gz", ".qvm"}) {
      Quvex target;
      ModelReader(*target.getModel(), previous).read();
      files.push_back(std::make_unique<TempFile>(suffix));
      previous = files.back()->name();
      ModelWriter(*target.getModel(), previous).write();
    }
    EXPECT_EQ(files.back()->content(), expected) << "seed " << seed;
  }
}

TEST(ModelReader, ReportsACutFileOrReadsAShorterModel) {
  Quvex source;
  std::uint32_t state = 5;
  buildRandomEnvironment(source, state);
  for (const char* suffix : {".qvm", ".qvb"}) {
    const TempFile whole(suffix);
    ModelWriter(*source.getModel(), whole.name()).write();
    const std::string bytes = whole.content();
    std::size_t nbRefused = 0;
    for (std::size_t size = 0; size < bytes.size(); size += 1 + bytes.size() / 500) {
      const TempFile cut(bytes.substr(0, size), suffix);
      Quvex target;
      const Failure failure = failureOf([&] { ModelReader(*target.getModel(), cut.name()).read(); });
      if (failure.raised()) ++nbRefused;
      EXPECT_LE(target.getModel()->getNbExpressions(), source.getModel()->getNbExpressions());
    }
    EXPECT_GT(nbRefused, 400U) << suffix;
  }
}

}  // namespace
}  // namespace quvex
