// What the flat functions of the shared library cost above the direct call of the same C++ method.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "quvex.h"
#include "wrappers/csharp/quvexnativenet.h"

namespace {

/// A solver with one named decision, made in this program.
struct Direct {
  quvex::Quvex solver;
  quvex::QVModel* model = solver.getModel();
  quvex::QVExpression* x = model->createExpression(quvex::QVOperator::Bool);
};

/// The same one, made in the shared library.
struct Exported {
  QvObject solver = CSharp_new_Quvex();
  QvObject model = CSharp_Quvex_GetModel(solver);
  QvExpr x = CSharp_QVModel_CreateExpression__SWIG_0(model, 0);
  ~Exported() { CSharp_delete_Quvex(solver); }
};

void directCount(benchmark::State& state) {
  const Direct direct;
  for (auto _ : state) benchmark::DoNotOptimize(direct.model->getNbExpressions());
}

void exportedCount(benchmark::State& state) {
  const Exported exported;
  for (auto _ : state) benchmark::DoNotOptimize(CSharp_QVModel_GetNbExpressions(exported.model));
}

void directText(benchmark::State& state) {
  const Direct direct;
  for (auto _ : state) benchmark::DoNotOptimize(direct.x->toString());
}

void exportedText(benchmark::State& state) {
  const Exported exported;
  SWIGRegisterStringCallback_quvexnativenet([](const char* text) -> QvString { return const_cast<char*>(text); });
  for (auto _ : state) benchmark::DoNotOptimize(CSharp_QVExpression_ToString(exported.x));
  SWIGRegisterStringCallback_quvexnativenet(nullptr);
}

void directFailure(benchmark::State& state) {
  const Direct direct;
  for (auto _ : state) {
    try {
      benchmark::DoNotOptimize(direct.model->getExpression(-1));
    } catch (const quvex::QVException& failure) {
      benchmark::DoNotOptimize(&failure);
    }
  }
}

void exportedFailure(benchmark::State& state) {
  const Exported exported;
  QVExceptionRegisterCallback([](QvObject exception) { CSharp_delete_QVException(exception); });
  for (auto _ : state) benchmark::DoNotOptimize(CSharp_QVModel_GetExpression__SWIG_0(exported.model, -1));
  QVExceptionRegisterCallback(nullptr);
}

constexpr int kNbItems = 10000;

void directBuild(benchmark::State& state) {
  for (auto _ : state) {
    const Direct direct;
    quvex::QVExpression* sum = direct.model->createExpression(quvex::QVOperator::Sum);
    for (int i = 0; i < kNbItems; ++i) {
      quvex::QVExpression* item = direct.model->createExpression(quvex::QVOperator::Bool);
      sum->addOperand(direct.model->createExpression(quvex::QVOperator::Prod, i, item));
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kNbItems);
}

void exportedBuild(benchmark::State& state) {
  for (auto _ : state) {
    const Exported exported;
    const QvExpr sum = CSharp_QVModel_CreateExpression__SWIG_0(exported.model, 2);
    for (int i = 0; i < kNbItems; ++i) {
      const QvExpr item = CSharp_QVModel_CreateExpression__SWIG_0(exported.model, 0);
      CSharp_QVExpression_AddOperand__SWIG_0(sum, CSharp_QVModel_CreateExpression__SWIG_6(exported.model, 3, i, item));
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kNbItems);
}

BENCHMARK(directCount);
BENCHMARK(exportedCount);
BENCHMARK(directText);
BENCHMARK(exportedText);
BENCHMARK(directFailure);
BENCHMARK(exportedFailure);
BENCHMARK(directBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(exportedBuild)->Unit(benchmark::kMillisecond);

}  // namespace
