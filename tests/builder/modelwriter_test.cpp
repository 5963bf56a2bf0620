#include "builder/modelwriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>

#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "qvm/fileformat.h"
#include "support/failure.h"
#include "support/tempfile.h"

namespace quvex {
namespace {

std::string saved(QVModel& model) {
  const TempFile file(".qvm");
  ModelWriter(model, file.name()).write();
  return file.content();
}

std::string documentOf(const std::string& sections) {
  const unsigned nbCores = std::max(1U, std::thread::hardware_concurrency());
  return "<QVM01>\r\n\n{\"info\"=\n{\"version\"=\"3.0.20130522-Win64\",\"nbCores\"=" + std::to_string(nbCores) + "}," +
         sections + "}";
}

TEST(ModelWriter, WritesAnEmptyModel) {
  Quvex quvex;
  EXPECT_EQ(saved(*quvex.getModel()), documentOf("\"expressions\"=\n{},\"operands\"=\n{},\"constraints\"=\n{},"
                                                 "\"objectives\"=\n{}"));
}

TEST(ModelWriter, WritesAnOpenModelWithoutWhatBelongsToASearch) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  QVExpression* x = model.createExpression(QVOperator::Bool);
  x->setName("x \"1\"");
  QVExpression* two = model.createConstant(2);
  QVExpression* half = model.createConstant(0.5);
  QVExpression* sum = model.createExpression(QVOperator::Sum, x, two, half);
  QVExpression* test = model.createExpression(QVOperator::Leq, sum, two);
  model.addConstraint(test);
  model.addObjective(sum, QVObjectiveDirection::Maximize);
  model.addObjective(x, QVObjectiveDirection::Minimize);
  EXPECT_EQ(saved(model), documentOf("\"expressions\"=\n{"
                                     "\n{\"type\"=\"bool\",\"name\"=\"x \\\"1\\\"\"},"
                                     "\n{\"type\"=\"const\",\"value\"=2},"
                                     "\n{\"type\"=\"const\",\"value\"=0.5},"
                                     "\n{\"type\"=\"sum\"},"
                                     "\n{\"type\"=\"leq\"}},"
                                     "\"operands\"=\n{\n{},\n{},\n{},\n{0,1,2},\n{3,1}},"
                                     "\"constraints\"=\n{\n{\"idx\"=4}},"
                                     "\"objectives\"=\n{\n{\"idx\"=3,\"dir\"=\"maximize\"},"
                                     "\n{\"idx\"=0,\"dir\"=\"minimize\"}}"));
}

TEST(ModelWriter, WritesAClosedModelWithEverything) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  QVExpression* x = model.createExpression(QVOperator::Bool);
  QVExpression* y = model.createExpression(QVOperator::Bool);
  QVExpression* scaled = model.createExpression(QVOperator::Prod, y, model.createConstant(2.5));
  model.addObjective(x, QVObjectiveDirection::Maximize);
  model.addObjective(scaled, QVObjectiveDirection::Minimize);
  model.close();
  QVPhase& phase = *quvex.createPhase();
  phase.setTimeLimit(10);
  phase.setOptimizedObjective(0);
  quvex.createPhase()->setIterationLimit(5000000000);
  QVParam& param = *quvex.getParam();
  param.setSeed(7);
  param.setIntObjectiveBound(0, 1);
  param.setAdvancedParam("zeta", -1);
  param.setAdvancedParam("alpha", 2);
  quvex.getSolution()->setIntValue(y, 1);
  const std::string document = saved(model);
  EXPECT_EQ(document.substr(document.find("\"phases\"")),
            "\"phases\"=\n{"
            "\n{\"iterationLimit\"=9223372036854775807,\"timeLimit\"=10,\"optimizedObjective\"=0},"
            "\n{\"iterationLimit\"=5000000000,\"timeLimit\"=2147483647,\"optimizedObjective\"=1}},"
            "\"parameters\"=\n{\"seed\"=7,\"nbThreads\"=2,\"annealingLevel\"=1,\"verbosity\"=1,"
            "\"timeBetweenDisplays\"=1,\"objectiveBounds\"=\n{1-inf},"
            "\"advancedParams\"=\n{\"alpha\"=2,\"zeta\"=-1}},"
            "\"solution\"=\n{\"status\"=\"feasible\",\"decisions\"=\n{0,1}}}");
}

TEST(ModelWriter, ChoosesTheEncodingByTheEndOfTheName) {
  struct Case {
    const char* suffix;
    bool binary;
    bool compressed;
  };
  for (const Case& expected : {Case{"x.qvb.gz", true, true}, Case{"x.qvb", true, false}, Case{"x.gz", false, true},
                               Case{"x.qvm.gz", false, true}, Case{"x.qvm", false, false}, Case{"x.txt", false, false},
                               Case{"x", false, false}, Case{"x.qvb.txt", false, false}}) {
    Quvex quvex;
    const TempFile file(expected.suffix);
    ModelWriter(*quvex.getModel(), file.name()).write();
    EXPECT_EQ(isBinaryFile(file.name()), expected.binary) << expected.suffix;
    EXPECT_EQ(isTextFile(file.name()), !expected.binary) << expected.suffix;
    EXPECT_EQ(file.content().starts_with("\x1f\x8b"), expected.compressed) << expected.suffix;
  }
}

TEST(ModelWriter, FailsWhenTheFileCannotBeCreated) {
  Quvex quvex;
  for (const char* name : {"/no/such/folder/x.qvm", "/no/such/folder/x.qvb.gz"}) {
    const Failure failure = failureOf([&] { ModelWriter(*quvex.getModel(), name); });
    EXPECT_EQ(failure.explanation, std::string("Cannot open file ") + name);
    EXPECT_TRUE(failure.isKernel);
  }
}

TEST(ModelWriter, TellsEveryStatus) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  QVExpression* x = model.createExpression(QVOperator::Bool);
  QVExpression* y = model.createExpression(QVOperator::Bool);
  model.addConstraint(model.createExpression(QVOperator::Or, x, y));
  model.addObjective(x, QVObjectiveDirection::Maximize);
  model.close();
  EXPECT_NE(saved(model).find("\"status\"=\"infeasible\",\"decisions\"=\n{0,0}"), std::string::npos);
  quvex.getSolution()->setIntValue(y, 1);
  EXPECT_NE(saved(model).find("\"status\"=\"feasible\",\"decisions\"=\n{0,1}"), std::string::npos);
  quvex.getSolution()->setIntValue(x, 1);
  EXPECT_NE(saved(model).find("\"status\"=\"optimal\",\"decisions\"=\n{1,1}"), std::string::npos);
}

TEST(ModelWriter, RefusesAnInconsistentSolution) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  QVExpression* x = model.createExpression(QVOperator::Bool);
  model.addConstraint(
      model.createExpression(QVOperator::Gt, model.createExpression(QVOperator::Sum, x, x), model.createConstant(5)));
  model.addObjective(x, QVObjectiveDirection::Maximize);
  model.close();
  const Failure failure = failureOf([&] { saved(model); });
  EXPECT_TRUE(failure.isKernel);
  EXPECT_EQ(failure, refusal("ModelWriter::writeSolution", "Solution status not supported"));
}

}  // namespace
}  // namespace quvex
