#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "quvex.h"
#include "support/process.h"

namespace quvex::test {

/// Runs the program in a folder of the test's own, which holds a small model:
/// choose among x0 to x5 (and an unnamed seventh) of weights 3, 4, 5, 6, 7, 8, 9, at most 20, and maximise the value,
/// which is the weight plus one. The best choices are four items that weigh exactly 20.
class CliTest : public testing::Test {
 protected:
  static constexpr int kBestValue = 24;

  void SetUp() override {
    const testing::TestInfo& info = *testing::UnitTest::GetInstance()->current_test_info();
    directory = std::filesystem::current_path() / (std::string(info.test_suite_name()) + "." + info.name());
    std::filesystem::remove_all(directory);
    std::filesystem::create_directories(directory);
  }
  void TearDown() override { std::filesystem::remove_all(directory); }

  [[nodiscard]] std::string path(const std::string& name) const { return (directory / name).string(); }
  [[nodiscard]] bool exists(const std::string& name) const { return std::filesystem::exists(directory / name); }

  [[nodiscard]] std::string read(const std::string& name) const {
    std::ifstream stream(path(name), std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
  }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }

  /// Writes the model with phases of these iteration limits.
  void saveModel(const std::string& name, const std::vector<std::int64_t>& limits = {}) const;

  [[nodiscard]] static std::vector<std::string> command(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QUVEX_PROGRAM);
    return arguments;
  }
  /// Runs the program in the test's folder.
  [[nodiscard]] ProcessResult run(const std::vector<std::string>& arguments) const {
    return runProcess(command(arguments), directory.string());
  }

  std::filesystem::path directory;
};

inline void CliTest::saveModel(const std::string& name, const std::vector<std::int64_t>& limits) const {
  Quvex solver;
  QVModel* model = solver.getModel();
  QVExpression* weight = model->createExpression(QVOperator::Sum);
  QVExpression* value = model->createExpression(QVOperator::Sum);
  for (int i = 0; i < 7; ++i) {
    QVExpression* item = model->createExpression(QVOperator::Bool);
    if (i < 6) item->setName("x" + std::to_string(i));
    weight->addOperand(model->createExpression(QVOperator::Prod, 3 + i, item));
    value->addOperand(model->createExpression(QVOperator::Prod, 4 + i, item));
  }
  QVExpression* capacity = model->createExpression(QVOperator::Leq, weight, 20);
  capacity->setName("capacity");
  model->addConstraint(capacity);
  model->addObjective(value, QVObjectiveDirection::Maximize);
  model->close();
  for (const std::int64_t limit : limits) solver.createPhase()->setIterationLimit(limit);
  solver.saveEnvironment(path(name));
}

}  // namespace quvex::test
