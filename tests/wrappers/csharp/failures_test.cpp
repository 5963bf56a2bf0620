#include <gtest/gtest.h>

#include <algorithm>
#include <boost/thread/thread.hpp>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "allocator.h"
#include "client.h"
#include "support/failure.h"

namespace client {
namespace {

constexpr const char* kBindingFile = "wrappers/csharp/exception";

/// The two failures that the library itself knows nothing of.
void expectOwnReport(const Report& report, allocator::Fault fault, const std::string& exported) {
  const bool outOfMemory = fault == allocator::Fault::OutOfMemory;
  EXPECT_EQ(report.file, kBindingFile);
  EXPECT_EQ(report.line, outOfMemory ? 49 : 54);
  EXPECT_EQ(report.function, exported);
  EXPECT_EQ(report.explanation, outOfMemory ? "Out of memory" : "Unknown exception");
  EXPECT_EQ(report.message, "ERROR [function " + exported + "]: " + report.explanation);
}

/// Lets every single allocation of a call fail, one run of the call after the other, until it gets through.
/// `check` sees the report of each failed run; a run whose failure the library has coped with gives none.
template <class Call, class Check>
void failEveryAllocation(allocator::Fault fault, Call call, Check check) {
  for (std::uint64_t nbSuccesses = 0;; ++nbSuccesses) {
    SCOPED_TRACE("allocation " + std::to_string(nbSuccesses));
    allocator::failOnce(nbSuccesses, fault);
    call();
    const bool failed = allocator::succeed();
    const std::vector<Report> reports = takeReports();
    ASSERT_LE(reports.size(), 1U);
    if (!failed) return;
    if (!reports.empty()) check(reports.front());
  }
}

// ----------------------------------------------------------------------------------------------- all functions at once

/// One object of each class of exports.def.
struct Objects {
  QvObject ofQuvex;
  QvObject ofQVModel;
  QvObject ofQVExpression;
  QvObject ofQVParam;
  QvObject ofQVPhase;
  QvObject ofQVSolution;
  QvObject ofQVStatistics;
  QvObject ofQVException;
};

/// An exported function with some valid arguments.
struct Export {
  std::string name;
  std::string method;  ///< the native one behind it
  void (*call)(const Objects&);
};

constexpr QvInt anyInt(const Objects&) { return 1; }
constexpr QvLong anyLong(const Objects&) { return 1; }
constexpr QvReal anyReal(const Objects&) { return 1.0; }
constexpr QvOperator anyOperator(const Objects&) { return 2; }
constexpr QvDirection anyDirection(const Objects&) { return 0; }
constexpr QvText anyText(const Objects&) { return "any"; }
QvExpr anyExpr(const Objects& objects) { return objects.ofQVExpression; }

#define QV_ROW(Class, Export, method, ...)                      \
  {"CSharp_" #Class "_" #Export, "quvex::" #Class "::" #method, \
   []([[maybe_unused]] const Objects& o) { static_cast<void>(CSharp_##Class##_##Export(__VA_ARGS__)); }},

/// Every method of an object.
std::vector<Export> methods() {
  return {
#define QV_METHOD_0(Result, Class, Export, method) QV_ROW(Class, Export, method, o.of##Class)
#define QV_METHOD_1(Result, Class, Export, method, A) QV_ROW(Class, Export, method, o.of##Class, any##A(o))
#define QV_METHOD_2(Result, Class, Export, method, A, B) \
  QV_ROW(Class, Export, method, o.of##Class, any##A(o), any##B(o))
#define QV_METHOD_3(Result, Class, Export, method, A, B, C) \
  QV_ROW(Class, Export, method, o.of##Class, any##A(o), any##B(o), any##C(o))
#define QV_METHOD_4(Result, Class, Export, method, A, B, C, D) \
  QV_ROW(Class, Export, method, o.of##Class, any##A(o), any##B(o), any##C(o), any##D(o))
#include "wrappers/csharp/exports.def"
  };
}

/// Every function that returns a text without a state rule.
std::vector<Export> unruledTexts() {
  std::vector<Export> result = {
#define QV_STATIC(Result, Class, Export, method) QV_ROW(Class, Export, method)
#include "wrappers/csharp/exports.def"
      {"CSharp_QV_PLATFORM_get", "", [](const Objects&) { static_cast<void>(CSharp_QV_PLATFORM_get()); }},
      {"CSharp_QVPhase_ToString", "",
       [](const Objects& o) { static_cast<void>(CSharp_QVPhase_ToString(o.ofQVPhase)); }},
      {"CSharp_QVException_What", "",
       [](const Objects& o) { static_cast<void>(CSharp_QVException_What(o.ofQVException)); }},
  };
  std::erase_if(result, [](const Export& e) {
    return e.name.ends_with("Number") || e.name.ends_with("Date") || e.name.ends_with("Code");
  });
  return result;
}

/// Methods that no state refuses.
const std::set<std::string> kUnruled = {"CSharp_Quvex_GetState", "CSharp_Quvex_Stop", "CSharp_QVPhase_ToString",
                                        "CSharp_QVException_What"};

/// What nothing can make fail: reads of a field or a constant, ends of objects, registrations.
const std::set<std::string> kInfallible = {"CSharp_Quvex_GetState",
                                           "CSharp_QVVersion_GetMajorVersionNumber",
                                           "CSharp_QVVersion_GetMinorVersionNumber",
                                           "CSharp_QVVersion_GetBuildDate",
                                           "CSharp_QVVersion_GetVersionCode",
                                           "CSharp_QV_MAJOR_VERSION_get",
                                           "CSharp_QV_MINOR_VERSION_get",
                                           "CSharp_QV_BUILD_DATE_get",
                                           "CSharp_QVException_GetExplanation",
                                           "CSharp_QVException_GetFileName",
                                           "CSharp_QVException_GetFunctionName",
                                           "CSharp_QVException_GetLineNumber",
                                           "CSharp_QVException_GetMessage",
                                           "CSharp_QVException_ToString",
                                           "CSharp_delete_Quvex",
                                           "CSharp_delete_QVVersion",
                                           "CSharp_delete_QVException",
                                           "SWIGRegisterExceptionCallbacks_quvexnativenet",
                                           "SWIGRegisterExceptionArgumentCallbacks_quvexnativenet",
                                           "SWIGRegisterStringCallback_quvexnativenet",
                                           "QVExceptionRegisterCallback"};

/// A solver whose search runs on another thread, without limits, until this ends: all that has a rule is refused.
class RunningSearch : public BindingTest {
 protected:
  RunningSearch() {
    closeKnapsack();
    CSharp_QVParam_SetTimeBetweenDisplays(CSharp_Quvex_GetParam(solver), 65535);
    objects = {solver,
               model,
               items[0],
               CSharp_Quvex_GetParam(solver),
               CSharp_Quvex_CreatePhase(solver),
               CSharp_Quvex_GetSolution(solver),
               CSharp_Quvex_GetStatistics(solver),
               CSharp_new_QVException("f", 7, "g", "e")};
    caller = std::thread([this] {
      CSharp_Quvex_Solve(solver);
      EXPECT_TRUE(takeReports().empty());
    });
    while (CSharp_Quvex_GetState(solver) != 1) std::this_thread::yield();
  }
  ~RunningSearch() override {
    CSharp_Quvex_Stop(solver);
    caller.join();
    CSharp_delete_QVException(objects.ofQVException);
  }

  static std::vector<Export> ruledMethods() {
    std::vector<Export> result = methods();
    std::erase_if(result, [](const Export& e) { return kUnruled.count(e.name) != 0; });
    return result;
  }

  Objects objects{};
  std::thread caller;
};

/// Literal operands go through `createConstant`, which is then the method that refuses.
std::string refusingMethod(const Export& exported) {
  const std::string& name = exported.name;
  const auto literalsFrom = [&](const std::string& prefix, int first) {
    return name.starts_with(prefix) && std::stoi(name.substr(prefix.size())) >= first;
  };
  const bool takesLiteral = literalsFrom("CSharp_QVModel_CreateExpression__SWIG_", 4) ||
                            literalsFrom("CSharp_QVExpression_SetOperand__SWIG_", 1);
  return takesLiteral ? "quvex::QVModel::createConstant" : exported.method;
}

TEST_F(RunningSearch, RefusesThroughEveryExport) {
  const std::set<std::string> rules = {quvex::kNotRunningText, quvex::kStoppedOnlyText, quvex::kPausedOrStoppedText,
                                       quvex::kModelingOnlyText};
  for (const Export& exported : ruledMethods()) {
    SCOPED_TRACE(exported.name);
    const Report report = failureOf([&] { exported.call(objects); });
    EXPECT_EQ(report.function, refusingMethod(exported));
    EXPECT_EQ(rules.count(report.explanation), 1U) << report.explanation;
    EXPECT_TRUE(report.file.starts_with("src/api/")) << report.file;
    EXPECT_GT(report.line, 0);
  }
}

TEST_F(RunningSearch, RunsOutOfMemoryThroughEveryExport) {
  for (const allocator::Fault fault : {allocator::Fault::OutOfMemory, allocator::Fault::Other}) {
    for (const Export& exported : ruledMethods()) {
      SCOPED_TRACE(exported.name);
      int nbOwnReports = 0;
      failEveryAllocation(
          fault, [&] { exported.call(objects); },
          [&](const Report& report) {
            if (report.function != exported.name) return;  // the refusal got through
            const bool unknown = report.line != 49;        // the report itself may have been what found no memory
            expectOwnReport(report, unknown ? fault : allocator::Fault::OutOfMemory, exported.name);
            if (unknown == (fault == allocator::Fault::Other)) ++nbOwnReports;
          });
      EXPECT_GT(nbOwnReports, 0);
    }
  }
}

TEST_F(RunningSearch, ReportsAThrowingStringCallback) {
  for (const Export& exported : unruledTexts()) {
    SCOPED_TRACE(exported.name);
    const BrokenStringCallback broken;
    expectOwnReport(failureOf([&] { exported.call(objects); }), allocator::Fault::Other, exported.name);
  }
}

TEST_F(RunningSearch, LeavesNoExportOut) {
  std::set<std::string> covered = kInfallible;
  for (const Export& exported : ruledMethods()) covered.insert(exported.name);
  for (const Export& exported : unruledTexts()) covered.insert(exported.name);
  // These fail in tests of their own below.
  covered.insert({"CSharp_new_Quvex", "CSharp_new_QVException", "CSharp_Quvex_Stop"});
  std::ifstream file(QUVEX_SOURCE_DIR "/tests/wrappers/csharp/exports.txt");
  std::size_t nbExports = 0;
  for (std::string name; std::getline(file, name); ++nbExports) EXPECT_EQ(covered.count(name), 1U) << name;
  EXPECT_EQ(covered.size(), nbExports);
}

// ---------------------------------------------------------------------------------------------------- single failures

using Failures = BindingTest;

TEST_F(Failures, NameTheNativeMethodOfAFailedClose) {
  const Report report = failureOf([&] { CSharp_QVModel_Close(model); });
  EXPECT_EQ(report.function, "quvex::QVModel::close");
  EXPECT_EQ(report.explanation, "At least one objective is required in the model.");
  EXPECT_TRUE(report.file.starts_with("src/api/qvmodel")) << report.file;
  EXPECT_EQ(CSharp_QVModel_IsClosed(model), 0);
}

TEST_F(Failures, OfTheKernelArriveLikeAllOthers) {
  std::ofstream("broken.qvm") << "<QVM01>\n{\"expressions\"=";
  const Report report = failureOf([&] { CSharp_Quvex_LoadEnvironment(solver, "broken.qvm"); });
  EXPECT_TRUE(report.function.starts_with("quvex::TextReader::")) << report.function;
  EXPECT_TRUE(report.file.starts_with("src/qvm/")) << report.file;
  EXPECT_GT(report.line, 0);
}

TEST_F(Failures, ReturnTheZeroOfTheResult) {
  EXPECT_EQ(CSharp_Quvex_GetSolution(solver), nullptr);
  EXPECT_EQ(CSharp_Quvex_GetNbPhases(solver), 0);
  EXPECT_EQ(CSharp_Quvex_GetInfo(solver), nullptr);
  const QvExpr x = decision();
  EXPECT_EQ(CSharp_QVExpression_GetIntValue(x), 0);
  EXPECT_EQ(CSharp_QVExpression_GetDoubleValue(x), 0.0);
  EXPECT_EQ(takeReports().size(), 5U);
}

TEST_F(Failures, OfMemoryInTheConstructorNameTheExport) {
  const auto failAtEach = [](allocator::Fault fault) {
    int nbReports = 0;
    failEveryAllocation(
        fault, [] { CSharp_delete_Quvex(CSharp_new_Quvex()); },
        [&](const Report& report) {
          expectOwnReport(report, fault, "CSharp_new_Quvex");
          ++nbReports;
        });
    EXPECT_GE(nbReports, 5);  // the object and what it owns
  };
  failAtEach(allocator::Fault::OutOfMemory);
  const std::int64_t before = allocator::nbLiveBlocks();
  failAtEach(allocator::Fault::OutOfMemory);
  failAtEach(allocator::Fault::Other);
  EXPECT_EQ(allocator::nbLiveBlocks(), before);
}

TEST_F(Failures, OfMemoryInAnExceptionNameTheExport) {
  const std::string longText(100, 'x');
  failEveryAllocation(
      allocator::Fault::OutOfMemory,
      [&] {
        CSharp_delete_QVException(CSharp_new_QVException(longText.c_str(), 1, longText.c_str(), longText.c_str()));
      },
      [&](const Report& report) { expectOwnReport(report, allocator::Fault::OutOfMemory, "CSharp_new_QVException"); });
}

TEST_F(Failures, OfMemoryLeaveAModelThatCloses) {
  closeKnapsack();
  for (const allocator::Fault fault : {allocator::Fault::OutOfMemory, allocator::Fault::Other}) {
    CSharp_QVModel_Open(model);
    failEveryAllocation(
        fault,
        [&] {
          if (CSharp_Quvex_GetState(solver) == 3) CSharp_QVModel_Open(model);
          CSharp_QVModel_Close(model);
        },
        [&](const Report& report) { expectOwnReport(report, fault, "CSharp_QVModel_Close"); });
    EXPECT_EQ(CSharp_Quvex_GetState(solver), 3);
  }
}

/// A model whose first iteration divides by zero, for two search threads of which only the first can be made: the
/// caller of `Solve` gets the missing memory, and the failure of the first thread waits for whoever asks next.
class HalfStartedSearch : public BindingTest {
 protected:
  HalfStartedSearch() {
    const QvExpr divisor = CSharp_QVModel_CreateExpression__SWIG_7(
        model, kSum, CSharp_QVModel_CreateExpression__SWIG_6(model, kProd, -2, decision()), 2);
    CSharp_QVModel_AddObjective(model, CSharp_QVModel_CreateExpression__SWIG_6(model, kDiv, 100, divisor), 1);
    CSharp_QVModel_Close(model);
    const QvObject param = CSharp_Quvex_GetParam(solver);
    CSharp_QVParam_SetVerbosity(param, 0);
    CSharp_QVParam_SetNbThreads(param, 2);
    // One move is left, which changes the one decision.
    CSharp_QVParam_SetAdvancedParam(param, "neighborhoodSize", 0);
    CSharp_QVParam_SetAdvancedParam(param, "advancedMovesEnabled", 0);
    starting = solver;
    nbThreadObjects = 0;
  }

  /// Of the allocations of a search that starts, the second one for a thread.
  static bool isSecondThread(std::size_t size) {
    return CSharp_Quvex_GetState(starting) == 1 && size == sizeof(boost::thread) && ++nbThreadObjects == 2;
  }

  /// Of the allocations of a search that starts, the one that all its threads belong to.
  static bool isThreadGroup(std::size_t size) {
    return CSharp_Quvex_GetState(starting) == 1 && size == sizeof(boost::thread_group);
  }

  void startHalf() const {
    const std::uint64_t nbEnded = allocator::nbEndedThreads();
    const Report report = failureOf([&] {
      allocator::failWhere(isSecondThread, allocator::Fault::OutOfMemory);
      CSharp_Quvex_Solve(solver);
    });
    ASSERT_EQ(nbThreadObjects, 2);
    expectOwnReport(report, allocator::Fault::OutOfMemory, "CSharp_Quvex_Solve");
    EXPECT_EQ(CSharp_Quvex_GetState(solver), 1) << "nothing restores the state";
    allocator::waitForEndOfThread(nbEnded);
  }

  static constexpr QvOperator kDiv = 19;
  static inline QvObject starting = nullptr;
  static inline int nbThreadObjects = 0;
};

TEST_F(HalfStartedSearch, HandsTheFailureOfASearchThreadToStop) {
  startHalf();
  const Report report = failureOf([&] { CSharp_Quvex_Stop(solver); });
  EXPECT_EQ(report.function, "quvex::NodeDivide::eval");
  EXPECT_EQ(report.explanation, "Division by zero.");
  EXPECT_EQ(report.message, "ERROR [function quvex::NodeDivide::eval]: Division by zero.");
  EXPECT_TRUE(report.file.starts_with("src/solver/node/nodedivide")) << report.file;
  EXPECT_GT(report.line, 0);
  CSharp_Quvex_Stop(solver);
  EXPECT_TRUE(takeReports().empty()) << "it is handed over once";
}

TEST_F(HalfStartedSearch, StopsWithoutAnyThreadToWaitFor) {
  const Report report = failureOf([&] {
    allocator::failWhere(isThreadGroup, allocator::Fault::OutOfMemory);
    CSharp_Quvex_Solve(solver);
  });
  expectOwnReport(report, allocator::Fault::OutOfMemory, "CSharp_Quvex_Solve");
  CSharp_Quvex_Stop(solver);
  EXPECT_TRUE(takeReports().empty());
}

TEST_F(HalfStartedSearch, RunsOutOfMemoryInStop) {
  // The failure itself is a copy that takes memory.
  startHalf();
  const Report report = failureOf([&] {
    allocator::failOnce(0, allocator::Fault::OutOfMemory);
    CSharp_Quvex_Stop(solver);
  });
  expectOwnReport(report, allocator::Fault::OutOfMemory, "CSharp_Quvex_Stop");
}

TEST_F(HalfStartedSearch, HasNoOneToTellItsFailureAtTheEndOfTheSolver) { startHalf(); }

TEST_F(Failures, WithoutAnyMemoryArriveAsOneReadyMadeReport) {
  allocator::failAlways();
  const QvObject none = CSharp_new_Quvex();
  allocator::succeed();
  EXPECT_EQ(none, nullptr);
  const std::vector<Report> reports = takeReports();
  ASSERT_EQ(reports.size(), 1U);
  expectOwnReport(reports[0], allocator::Fault::OutOfMemory, "quvexnativenet");
  // It is deleted like all others, and is still there the next time.
  allocator::failAlways();
  CSharp_QVModel_Close(model);
  allocator::succeed();
  EXPECT_EQ(takeReports().size(), 1U);
}

TEST_F(Failures, LeakNothingInAHundredThousand) {
  closeKnapsack();
  const auto failOften = [&](int n) {
    for (int i = 0; i < n; i += 4) {
      CSharp_QVModel_GetExpression__SWIG_0(model, -1);
      CSharp_QVModel_Close(model);
      CSharp_QVParam_SetSeed(CSharp_Quvex_GetParam(solver), -1);
      CSharp_QVModel_GetExpression__SWIG_1(model, "a name that no expression of this model has");
      EXPECT_EQ(takeReports().size(), 4U);
    }
  };
  failOften(4);
  const std::int64_t before = allocator::nbLiveBlocks();
  failOften(100000);
  EXPECT_EQ(allocator::nbLiveBlocks(), before);
}

}  // namespace
}  // namespace client
