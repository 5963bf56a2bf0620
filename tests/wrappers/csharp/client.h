#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "wrappers/csharp/quvexnativenet.h"

/// A native stand-in for the managed client: its callbacks keep what they get, apart for each thread.
namespace client {

/// What a QVException held. The object itself is deleted on arrival.
struct Report {
  std::string file;
  int line = 0;
  std::string function;
  std::string explanation;
  std::string message;
};

/// Registers all callbacks and forgets what this thread has received.
void connect();

/// Removes and returns what has arrived on this thread.
[[nodiscard]] std::vector<Report> takeReports();
/// Messages and parameter names of the null arguments, as "<message>|<parameter>", with "(null)" for none.
[[nodiscard]] std::vector<std::string> takeNullTexts();
/// The text behind a result; it is the one of the last call that returned a text.
[[nodiscard]] std::string textOf(QvString result);

/// While this lives, the string callback throws an int.
class BrokenStringCallback {
 public:
  BrokenStringCallback();
  ~BrokenStringCallback();
  BrokenStringCallback(const BrokenStringCallback&) = delete;
  BrokenStringCallback& operator=(const BrokenStringCallback&) = delete;
};

/// Runs a call that must fail, and gives its one report.
template <class Call>
Report failureOf(Call&& call) {
  EXPECT_TRUE(takeReports().empty()) << "an earlier call has failed";
  call();
  const std::vector<Report> reports = takeReports();
  EXPECT_EQ(reports.size(), 1U);
  return reports.empty() ? Report{} : reports.front();
}

/// A test through the exported functions. Whatever failed without being asked for makes it fail at the end.
class BindingTest : public testing::Test {
 protected:
  BindingTest() { connect(); }
  ~BindingTest() override {
    CSharp_delete_Quvex(solver);
    for (const Report& report : takeReports()) ADD_FAILURE() << report.message;
    EXPECT_TRUE(takeNullTexts().empty());
  }

  QvObject solver = CSharp_new_Quvex();
  QvObject model = CSharp_Quvex_GetModel(solver);

  /// A decision.
  QvExpr decision() const { return CSharp_QVModel_CreateExpression__SWIG_0(model, 0); }

  /// Four items of weights 5, 4, 3 and 2 and values 10, 40, 30 and 50, capacity 9: the best value is 120.
  /// Closed, quiet, one thread.
  void closeKnapsack() {
    const QvLong weights[] = {5, 4, 3, 2};
    const QvLong values[] = {10, 40, 30, 50};
    weight = CSharp_QVModel_CreateExpression__SWIG_0(model, kSum);
    value = CSharp_QVModel_CreateExpression__SWIG_0(model, kSum);
    for (int i = 0; i < 4; ++i) {
      items.push_back(decision());
      CSharp_QVExpression_AddOperand__SWIG_0(weight, product(weights[i], items.back()));
      CSharp_QVExpression_AddOperand__SWIG_0(value, product(values[i], items.back()));
    }
    CSharp_QVModel_AddConstraint(model, CSharp_QVModel_CreateExpression__SWIG_7(model, kLeq, weight, 9));
    CSharp_QVModel_AddObjective(model, value, 1);
    CSharp_QVModel_Close(model);
    const QvObject param = CSharp_Quvex_GetParam(solver);
    CSharp_QVParam_SetVerbosity(param, 0);
    CSharp_QVParam_SetNbThreads(param, 1);
  }

  static constexpr QvOperator kSum = 2;
  static constexpr QvOperator kProd = 3;
  static constexpr QvOperator kLeq = 9;

  QvExpr weight = nullptr;
  QvExpr value = nullptr;
  std::vector<QvExpr> items;

 private:
  QvExpr product(QvLong factor, QvExpr item) const {
    return CSharp_QVModel_CreateExpression__SWIG_6(model, kProd, factor, item);
  }
};

}  // namespace client
