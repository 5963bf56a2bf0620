#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "client.h"

namespace client {
namespace {

using Strings = std::vector<std::string>;
const Strings kOneNullText = {"null string|(null)"};

using Binding = BindingTest;

TEST_F(Binding, CarriesAWholeModel) {
  closeKnapsack();
  const QvObject phase = CSharp_Quvex_CreatePhase(solver);
  CSharp_QVPhase_SetIterationLimit(phase, 2000);
  CSharp_Quvex_Solve(solver);
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 3);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(value), 120);
  EXPECT_EQ(CSharp_QVExpression_GetValue(weight), 9);
  EXPECT_EQ(CSharp_QVSolution_GetValue(CSharp_Quvex_GetSolution(solver), items[0]), 0);
  EXPECT_EQ(CSharp_QVSolution_GetIntValue(CSharp_Quvex_GetSolution(solver), items[3]), 1);
  EXPECT_EQ(CSharp_QVSolution_GetStatus(CSharp_Quvex_GetSolution(solver)), 2);
  EXPECT_EQ(CSharp_QVStatistics_GetNbIterations(CSharp_Quvex_GetStatistics(solver)), 2000);
  EXPECT_EQ(CSharp_QVStatistics_GetNbMoves(CSharp_QVPhase_GetStatistics(phase)), 2000);
  EXPECT_NE(textOf(CSharp_Quvex_GetInfo(solver)).find("obj = (120)"), std::string::npos);
}

TEST_F(Binding, GivesObjectsThatKnowTheirOwners) {
  const QvExpr x = decision();
  EXPECT_EQ(CSharp_QVExpression_GetModel(x), model);
  EXPECT_EQ(CSharp_QVExpression_GetQuvex(x), solver);
  EXPECT_EQ(CSharp_QVModel_GetQuvex(model), solver);
  EXPECT_EQ(CSharp_QVParam_GetQuvex(CSharp_Quvex_GetParam(solver)), solver);
  CSharp_QVModel_AddObjective(model, x, 0);
  CSharp_QVModel_Close(model);
  const QvObject phase = CSharp_Quvex_CreatePhase(solver);
  EXPECT_EQ(CSharp_Quvex_GetPhase(solver, 0), phase);
  EXPECT_EQ(CSharp_Quvex_GetNbPhases(solver), 1);
  EXPECT_EQ(CSharp_QVPhase_GetQuvex(phase), solver);
  EXPECT_EQ(CSharp_QVSolution_GetQuvex(CSharp_Quvex_GetSolution(solver)), solver);
  EXPECT_EQ(CSharp_QVStatistics_GetQuvex(CSharp_Quvex_GetStatistics(solver)), solver);
}

TEST_F(Binding, GivesBooleansAndEnumerationsAsNumbers) {
  const QvExpr x = decision();
  const QvExpr sum = CSharp_QVModel_CreateExpression__SWIG_2(model, kSum, x, x);
  EXPECT_EQ(CSharp_QVExpression_GetOperator(sum), kSum);
  EXPECT_EQ(CSharp_QVExpression_IsDecision(x), 1);
  EXPECT_EQ(CSharp_QVExpression_IsDecision(sum), 0);
  EXPECT_EQ(CSharp_QVExpression_IsConstant(sum), 0);
  EXPECT_EQ(CSharp_QVExpression_IsConstraint(x), 0);
  CSharp_QVModel_AddConstraint(model, x);
  EXPECT_EQ(CSharp_QVExpression_IsConstraint(x), 1);
  CSharp_QVModel_AddObjective(model, sum, 1);
  CSharp_QVModel_AddObjective(model, x, 0);
  EXPECT_EQ(CSharp_QVExpression_IsObjective(sum), 1);
  EXPECT_EQ(CSharp_QVModel_GetObjectiveDirection(model, 0), 1);
  EXPECT_EQ(CSharp_QVModel_GetObjectiveDirection(model, 1), 0);
  EXPECT_EQ(CSharp_QVModel_IsClosed(model), 0);
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 0);
  CSharp_QVModel_Close(model);
  EXPECT_EQ(CSharp_QVModel_IsClosed(model), 1);
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 3);
  EXPECT_EQ(CSharp_QVExpression_IsBool(x), 1);
  EXPECT_EQ(CSharp_QVExpression_IsInt(x), 0);
  EXPECT_EQ(CSharp_QVExpression_IsInt(sum), 1);
  EXPECT_EQ(CSharp_QVExpression_IsDouble(sum), 0);
  CSharp_QVModel_Open(model);
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 0);
}

TEST_F(Binding, ListsTheModel) {
  closeKnapsack();
  EXPECT_EQ(CSharp_QVModel_GetNbDecisions(model), 4);
  EXPECT_EQ(CSharp_QVModel_GetDecision(model, 2), items[2]);
  EXPECT_EQ(CSharp_QVModel_GetNbConstraints(model), 1);
  EXPECT_EQ(CSharp_QVExpression_GetOperator(CSharp_QVModel_GetConstraint(model, 0)), kLeq);
  EXPECT_EQ(CSharp_QVModel_GetNbObjectives(model), 1);
  EXPECT_EQ(CSharp_QVModel_GetObjective(model, 0), value);
  EXPECT_EQ(CSharp_QVModel_GetExpression__SWIG_0(model, 0), weight);
  EXPECT_EQ(CSharp_QVExpression_GetIndex(value), 1);
  EXPECT_EQ(CSharp_QVExpression_GetNbOperands(value), 4);
  EXPECT_EQ(CSharp_QVModel_GetNbOperands(model), 4 + 4 + 8 * 2 + 2);
  EXPECT_EQ(CSharp_QVModel_GetNbExpressions(model), 24);  // 2 sums, 4 items, 8 products, 9 constants, 1 leq
  EXPECT_EQ(textOf(CSharp_QVModel_ToString(model)).substr(0, 7), "Model: ");
  EXPECT_EQ(textOf(CSharp_QVParam_ToString(CSharp_Quvex_GetParam(solver))).substr(0, 7), "Param: ");
  EXPECT_EQ(textOf(CSharp_Quvex_ToString(solver)).substr(0, 7), "Model: ");
  EXPECT_EQ(textOf(CSharp_QVExpression_ToString(weight)), "Expression 0 (type = sum)");
  EXPECT_EQ(textOf(CSharp_QVExpression_GetInfo(weight)),
            "Expression 0 (type = sum)\n  decision = 0, constraint = 0, objective = 0\n");
}

TEST_F(Binding, PassesDoublesUnchanged) {
  const QvExpr tenth = CSharp_QVModel_CreateConstant__SWIG_1(model, 0.1);
  const QvExpr root = CSharp_QVModel_CreateExpression__SWIG_15(model, 27, 2.0);
  CSharp_QVModel_AddObjective(model, root, 0);
  CSharp_QVModel_Close(model);
  EXPECT_EQ(CSharp_QVExpression_GetDoubleValue(tenth), 0.1);
  EXPECT_EQ(CSharp_QVExpression_IsDouble(root), 1);
  const QvObject param = CSharp_Quvex_GetParam(solver);
  CSharp_QVParam_SetDoubleObjectiveBound(param, 0, 1e-300);
  EXPECT_EQ(CSharp_QVParam_GetDoubleObjectiveBound(param, 0), 1e-300);
}

TEST_F(Binding, PassesWideIntegersUnchanged) {
  constexpr QvLong kMost = std::numeric_limits<QvLong>::max();
  constexpr QvLong kLeast = std::numeric_limits<QvLong>::min();
  const QvExpr most = CSharp_QVModel_CreateConstant__SWIG_0(model, kMost);
  const QvExpr least = CSharp_QVModel_CreateConstant__SWIG_0(model, kLeast);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(most), kMost);
  EXPECT_EQ(CSharp_QVExpression_GetValue(least), kLeast);
  closeKnapsack();
  const QvObject param = CSharp_Quvex_GetParam(solver);
  CSharp_QVParam_SetIntObjectiveBound(param, 0, kMost - 1);
  EXPECT_EQ(CSharp_QVParam_GetObjectiveBound(param, 0), kMost - 1);
  CSharp_QVParam_SetObjectiveBound(param, 0, kLeast + 1);
  EXPECT_EQ(CSharp_QVParam_GetIntObjectiveBound(param, 0), kLeast + 1);
  const QvObject phase = CSharp_Quvex_CreatePhase(solver);
  CSharp_QVPhase_SetIterationLimit(phase, kMost - 1);
  EXPECT_EQ(CSharp_QVPhase_GetIterationLimit(phase), kMost - 1);
}

TEST_F(Binding, SetsAndReadsParametersAndPhases) {
  closeKnapsack();
  const QvObject param = CSharp_Quvex_GetParam(solver);
  CSharp_QVParam_SetSeed(param, 17);
  CSharp_QVParam_SetNbThreads(param, 3);
  CSharp_QVParam_SetAnnealingLevel(param, 9);
  CSharp_QVParam_SetTimeBetweenDisplays(param, 60);
  CSharp_QVParam_SetVerbosity(param, 2);
  CSharp_QVParam_SetAdvancedParam(param, "targetingLevel", 7);
  EXPECT_EQ(CSharp_QVParam_GetSeed(param), 17);
  EXPECT_EQ(CSharp_QVParam_GetNbThreads(param), 3);
  EXPECT_EQ(CSharp_QVParam_GetAnnealingLevel(param), 9);
  EXPECT_EQ(CSharp_QVParam_GetTimeBetweenDisplays(param), 60);
  EXPECT_EQ(CSharp_QVParam_GetVerbosity(param), 2);
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_0(param, "targetingLevel"), 7);
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_1(param, "targetingLevel", 5), 7);
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_1(param, "neighborhoodSize", 8), 8);
  const QvObject phase = CSharp_Quvex_CreatePhase(solver);
  CSharp_QVPhase_SetTimeLimit(phase, 5);
  CSharp_QVPhase_SetOptimizedObjective(phase, 0);
  EXPECT_EQ(CSharp_QVPhase_GetTimeLimit(phase), 5);
  EXPECT_EQ(CSharp_QVPhase_GetOptimizedObjective(phase), 0);
  EXPECT_EQ(textOf(CSharp_QVPhase_ToString(phase)), "time limit = 5 sec, no iteration limit, optimized objective = 0");
}

TEST_F(Binding, SetsAndReadsTheSolution) {
  closeKnapsack();
  const QvObject solution = CSharp_Quvex_GetSolution(solver);
  CSharp_QVExpression_SetValue(items[0], 1);
  CSharp_QVExpression_SetIntValue(items[1], 1);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(weight), 9);
  CSharp_QVSolution_SetValue(solution, items[0], 0);
  CSharp_QVSolution_SetIntValue(solution, items[3], 1);
  EXPECT_EQ(CSharp_QVSolution_GetIntValue(solution, value), 90);
  CSharp_QVSolution_Clear(solution);
  EXPECT_EQ(CSharp_QVSolution_GetValue(solution, value), 0);
}

TEST_F(Binding, ReplacesOperands) {
  const QvExpr x = decision();
  const QvExpr sum = CSharp_QVModel_CreateExpression__SWIG_2(model, kSum, x, x);
  CSharp_QVExpression_AddOperand__SWIG_1(sum, 5);
  CSharp_QVExpression_AddOperand__SWIG_2(sum, 2.5);
  CSharp_QVExpression_SetOperand__SWIG_0(sum, 0, decision());
  CSharp_QVExpression_SetOperand__SWIG_1(sum, 1, 6);
  CSharp_QVExpression_SetOperand__SWIG_2(sum, 2, 3.5);
  EXPECT_EQ(CSharp_QVExpression_GetNbOperands(sum), 4);
  EXPECT_NE(CSharp_QVExpression_GetOperand(sum, 0), x);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVExpression_GetOperand(sum, 1)), 6);
  EXPECT_EQ(CSharp_QVExpression_GetDoubleValue(CSharp_QVExpression_GetOperand(sum, 2)), 3.5);
  EXPECT_EQ(CSharp_QVExpression_GetDoubleValue(CSharp_QVExpression_GetOperand(sum, 3)), 2.5);
}

TEST_F(Binding, MakesLiteralsConstantsFromTheLastToTheFirst) {
  const QvExpr product = CSharp_QVModel_CreateExpression__SWIG_5(model, kProd, 5, 7);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVModel_GetExpression__SWIG_0(model, 0)), 7);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVModel_GetExpression__SWIG_0(model, 1)), 5);
  EXPECT_EQ(CSharp_QVExpression_GetIndex(product), 2);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVExpression_GetOperand(product, 0)), 5);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVExpression_GetOperand(product, 1)), 7);
}

TEST_F(Binding, MakesLiteralsConstantsFromTheLastToTheFirstInEveryMixture) {
  const QvExpr x = decision();
  QvInt nbBefore = 0;
  const auto newIntegers = [&] {
    std::vector<QvLong> values;
    for (const QvInt end = CSharp_QVModel_GetNbExpressions(model); nbBefore < end - 1; ++nbBefore) {
      values.push_back(CSharp_QVExpression_GetIntValue(CSharp_QVModel_GetExpression__SWIG_0(model, nbBefore)));
    }
    ++nbBefore;  // the sum itself
    return values;
  };
  const auto newDoubles = [&] {
    std::vector<QvReal> values;
    for (const QvInt end = CSharp_QVModel_GetNbExpressions(model); nbBefore < end - 1; ++nbBefore) {
      values.push_back(CSharp_QVExpression_GetDoubleValue(CSharp_QVModel_GetExpression__SWIG_0(model, nbBefore)));
    }
    ++nbBefore;
    return values;
  };
  using Integers = std::vector<QvLong>;
  using Doubles = std::vector<QvReal>;
  nbBefore = 1;
  CSharp_QVModel_CreateExpression__SWIG_8(model, kSum, 10, 11, 12);
  EXPECT_EQ(newIntegers(), (Integers{12, 11, 10}));
  CSharp_QVModel_CreateExpression__SWIG_9(model, kSum, 20, 21, x);
  EXPECT_EQ(newIntegers(), (Integers{21, 20}));
  CSharp_QVModel_CreateExpression__SWIG_10(model, kSum, 30, x, 31);
  EXPECT_EQ(newIntegers(), (Integers{31, 30}));
  CSharp_QVModel_CreateExpression__SWIG_12(model, kSum, x, 40, 41);
  EXPECT_EQ(newIntegers(), (Integers{41, 40}));
  CSharp_QVModel_CreateExpression__SWIG_16(model, kSum, 0.5, 1.5);
  EXPECT_EQ(newDoubles(), (Doubles{1.5, 0.5}));
  CSharp_QVModel_CreateExpression__SWIG_19(model, kSum, 0.5, 1.5, 2.5);
  EXPECT_EQ(newDoubles(), (Doubles{2.5, 1.5, 0.5}));
  CSharp_QVModel_CreateExpression__SWIG_20(model, kSum, 0.5, 1.5, x);
  EXPECT_EQ(newDoubles(), (Doubles{1.5, 0.5}));
  CSharp_QVModel_CreateExpression__SWIG_21(model, kSum, 0.5, x, 1.5);
  EXPECT_EQ(newDoubles(), (Doubles{1.5, 0.5}));
  CSharp_QVModel_CreateExpression__SWIG_23(model, kSum, x, 0.5, 1.5);
  EXPECT_EQ(newDoubles(), (Doubles{1.5, 0.5}));
}

/// The operands of an expression: "x" for a decision, else the constant.
std::string operandsOf(QvExpr expr) {
  std::string text;
  for (int pos = 0; pos < CSharp_QVExpression_GetNbOperands(expr); ++pos) {
    const QvExpr operand = CSharp_QVExpression_GetOperand(expr, pos);
    if (pos > 0) text += " ";
    if (CSharp_QVExpression_IsDecision(operand) != 0) {
      text += "x" + std::to_string(CSharp_QVExpression_GetIndex(operand));
      continue;
    }
    // 10 and above are the integers of the test below, what lies below are its doubles.
    const std::string info = textOf(CSharp_QVExpression_GetInfo(operand));
    text += info.substr(info.find("value = ") + 8);
    text.pop_back();
  }
  return text;
}

TEST_F(Binding, TakesEveryMixtureOfExpressionsAndLiterals) {
  const QvExpr x = decision();
  const QvExpr y = decision();
  const QvExpr z = decision();
  const auto sum = [&](auto create, auto... operands) { return operandsOf(create(model, kSum, operands...)); };
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_0), "");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_1, x), "x0");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_2, x, y), "x0 x1");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_3, x, y, z), "x0 x1 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_4, 10), "10");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_5, 10, 11), "10 11");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_6, 10, y), "10 x1");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_7, x, 11), "x0 11");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_8, 10, 11, 12), "10 11 12");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_9, 10, 11, z), "10 11 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_10, 10, y, 12), "10 x1 12");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_11, 10, y, z), "10 x1 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_12, x, 11, 12), "x0 11 12");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_13, x, 11, z), "x0 11 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_14, x, y, 12), "x0 x1 12");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_15, 0.5), "0.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_16, 0.5, 1.5), "0.5 1.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_17, 0.5, y), "0.5 x1");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_18, x, 1.5), "x0 1.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_19, 0.5, 1.5, 2.5), "0.5 1.5 2.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_20, 0.5, 1.5, z), "0.5 1.5 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_21, 0.5, y, 2.5), "0.5 x1 2.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_22, 0.5, y, z), "0.5 x1 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_23, x, 1.5, 2.5), "x0 1.5 2.5");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_24, x, 1.5, z), "x0 1.5 x2");
  EXPECT_EQ(sum(CSharp_QVModel_CreateExpression__SWIG_25, x, y, 2.5), "x0 x1 2.5");
}

TEST_F(Binding, CarriesTextsOfAnyScript) {
  const std::string name = "żółć 漢字 ελ \U0001F600";
  const QvExpr x = decision();
  CSharp_QVExpression_SetName(x, name.c_str());
  EXPECT_EQ(CSharp_QVExpression_IsNamed(x), 1);
  EXPECT_EQ(textOf(CSharp_QVExpression_GetName(x)), name);
  EXPECT_EQ(CSharp_QVModel_GetExpression__SWIG_1(model, name.c_str()), x);
  EXPECT_EQ(failureOf([&] { CSharp_QVModel_GetExpression__SWIG_1(model, "あ"); }).explanation,
            "No operator found with name 'あ'.");
}

TEST_F(Binding, SavesAndLoadsAnEnvironment) {
  closeKnapsack();
  CSharp_QVExpression_SetValue(items[3], 1);
  for (const char* fileName : {"binding.qvm", "binding.qvb.gz"}) {
    CSharp_Quvex_SaveEnvironment(solver, fileName);
    const QvObject copy = CSharp_new_Quvex();
    CSharp_Quvex_LoadEnvironment(copy, fileName);
    EXPECT_EQ(CSharp_Quvex_GetState(copy), 3);
    EXPECT_EQ(CSharp_QVExpression_GetIntValue(CSharp_QVModel_GetObjective(CSharp_Quvex_GetModel(copy), 0)), 50);
    CSharp_delete_Quvex(copy);
  }
}

/// The first code block of a page that starts with `start`.
std::string sampleOf(const std::string& page, const std::string& start) {
  std::ifstream file(std::string(QUVEX_SOURCE_DIR) + "/docs/" + page);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t begin = text.find("```\n" + start);
  return begin == std::string::npos ? "" : text.substr(begin + 4, text.find("\n```", begin) - begin - 4);
}

TEST_F(Binding, LoadsTheSampleOfTheDocumentation) {
  std::ofstream("sample.qvm") << sampleOf("fileformats.md", "<QVM01>");
  CSharp_Quvex_LoadEnvironment(solver, "sample.qvm");
  const QvExpr cost = CSharp_QVModel_GetObjective(model, 0);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(cost), 1);
  CSharp_QVExpression_SetValue(CSharp_QVModel_GetExpression__SWIG_1(model, "x"), 1);
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(cost), 4);
  EXPECT_EQ(CSharp_QVModel_GetNbConstraints(model), 1);
  EXPECT_EQ(CSharp_QVPhase_GetTimeLimit(CSharp_Quvex_GetPhase(solver, 0)), 10);
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_0(CSharp_Quvex_GetParam(solver), "targetingLevel"), 7);
}

TEST_F(Binding, TellsTheVersion) {
  EXPECT_EQ(CSharp_QVVersion_GetMajorVersionNumber(), 3);
  EXPECT_EQ(CSharp_QVVersion_GetMinorVersionNumber(), 0);
  EXPECT_EQ(CSharp_QVVersion_GetBuildDate(), 20130522);
  EXPECT_EQ(CSharp_QVVersion_GetVersionCode(), 30);
  EXPECT_EQ(textOf(CSharp_QVVersion_GetPlatform()), "Win64");
  EXPECT_EQ(textOf(CSharp_QVVersion_GetVersion()), "3.0.20130522-Win64");
  const std::string notice = textOf(CSharp_QVVersion_GetCopyright());
  EXPECT_EQ(textOf(CSharp_QVVersion_GetInfo()), "Quvex 3.0 (Win64, build 20130522)\n" + notice + "\n");
  EXPECT_EQ(CSharp_QV_MAJOR_VERSION_get(), 3);
  EXPECT_EQ(CSharp_QV_MINOR_VERSION_get(), 0);
  EXPECT_EQ(CSharp_QV_BUILD_DATE_get(), 20130522);
  EXPECT_EQ(textOf(CSharp_QV_PLATFORM_get()), "Win64");
  CSharp_delete_QVVersion(nullptr);
}

TEST_F(Binding, ReportsANullTextAndCallsNothing) {
  const QvExpr x = decision();
  CSharp_QVExpression_SetName(x, "x");
  CSharp_QVExpression_SetName(x, nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(textOf(CSharp_QVExpression_GetName(x)), "x");

  const QvObject param = CSharp_Quvex_GetParam(solver);
  CSharp_QVParam_SetAdvancedParam(param, nullptr, 1);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  // Refused by the state, too, had they been called.
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_0(param, nullptr), 0);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_QVParam_GetAdvancedParam__SWIG_1(param, nullptr, 9), 0);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_QVModel_GetExpression__SWIG_1(model, nullptr), nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  CSharp_Quvex_SaveEnvironment(solver, nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  CSharp_Quvex_LoadEnvironment(solver, nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_new_QVException(nullptr, 7, "g", "e"), nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_new_QVException("f", 7, nullptr, "e"), nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_new_QVException("f", 7, "g", nullptr), nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
  EXPECT_EQ(CSharp_new_QVException(nullptr, 7, nullptr, nullptr), nullptr);
  EXPECT_EQ(takeNullTexts(), kOneNullText);
}

TEST_F(Binding, MakesExceptionsWithAllTheirTexts) {
  const QvObject exception = CSharp_new_QVException("f", 7, "g", "e");
  EXPECT_EQ(textOf(CSharp_QVException_GetFileName(exception)), "f");
  EXPECT_EQ(CSharp_QVException_GetLineNumber(exception), 7);
  EXPECT_EQ(textOf(CSharp_QVException_GetFunctionName(exception)), "g");
  EXPECT_EQ(textOf(CSharp_QVException_GetExplanation(exception)), "e");
  EXPECT_EQ(textOf(CSharp_QVException_GetMessage(exception)), "ERROR [function g]: e");
  EXPECT_EQ(textOf(CSharp_QVException_ToString(exception)), "ERROR [function g]: e");
  EXPECT_EQ(textOf(CSharp_QVException_What(exception)), "ERROR [function g]: e");
  CSharp_delete_QVException(exception);
}

TEST_F(Binding, StopsASearchFromAnotherThread) {
  closeKnapsack();
  CSharp_QVParam_SetTimeBetweenDisplays(CSharp_Quvex_GetParam(solver), 65535);
  CSharp_Quvex_CreatePhase(solver);
  std::thread caller([&] {
    CSharp_Quvex_Solve(solver);
    EXPECT_TRUE(takeReports().empty());
  });
  while (CSharp_Quvex_GetState(solver) != 1) std::this_thread::yield();
  CSharp_Quvex_Stop(solver);
  caller.join();
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 3);
}

TEST_F(Binding, StopsNothingWithoutASearch) {
  CSharp_Quvex_Stop(solver);
  closeKnapsack();
  CSharp_Quvex_Stop(solver);
  EXPECT_EQ(CSharp_Quvex_GetState(solver), 3);
}

TEST_F(Binding, IsSilentWithoutCallbacks) {
  QVExceptionRegisterCallback(nullptr);
  SWIGRegisterStringCallback_quvexnativenet(nullptr);
  SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(nullptr, nullptr, nullptr);
  CSharp_QVModel_Open(model);
  EXPECT_EQ(CSharp_QVModel_ToString(model), nullptr);
  EXPECT_EQ(CSharp_QVModel_GetExpression__SWIG_1(model, nullptr), nullptr);
  connect();
  EXPECT_EQ(CSharp_QVModel_GetNbExpressions(model), 0);
}

}  // namespace
}  // namespace client
