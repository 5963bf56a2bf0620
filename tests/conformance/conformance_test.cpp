#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "api/quvex.h"
#include "api/qvexpression.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvsolution.h"
#include "api/qvstatistics.h"
#include "solver/kernel/heuristic.h"
#include "support/apipeer.h"

namespace quvex {
namespace {

/// The models whose end under an iteration limit is known to the last counter: data/<name>.qvm.gz is a saved
/// environment, data/<name>.txt the end that a second, independent implementation of the same search reaches.
const std::filesystem::path kData = std::filesystem::path(QUVEX_SOURCE_DIR) / "tests/conformance/data";

std::vector<std::string> modelNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kData)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Splits what is expected into the parameters to set before loading, and the end.
struct Expectation {
  std::vector<std::pair<std::string, int>> before;
  std::string end;

  explicit Expectation(const std::string& name) {
    std::ifstream file(kData / (name + ".txt"));
    for (std::string line; std::getline(file, line);) {
      if (line.rfind("before ", 0) != 0) {
        end += line + '\n';
        continue;
      }
      const std::size_t equals = line.find('=');
      before.emplace_back(line.substr(7, equals - 7), std::stoi(line.substr(equals + 1)));
    }
  }
};

void describeThread(std::ostream& out, Quvex& quvex, std::size_t thread) {
  out << "thread " << thread << '\n';
  for (const auto& move : ApiPeer::heuristic(quvex, thread).moves) {
    out << "  " << move->name << ' ' << move->nbAttempted << ' ' << move->nbAccepted << ' ' << move->nbImprovements
        << ' ' << move->nbInfeasibles << ' ' << move->poolWeight << '\n';
  }
}

std::string describeEnd(Quvex& quvex) {
  std::ostringstream out;
  QVModel& model = *quvex.getModel();
  out << "status " << static_cast<int>(quvex.getSolution()->getStatus()) << "\nobjectives" << std::setprecision(9);
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    QVExpression* objective = model.getObjective(i);
    out << ' ';
    if (objective->isDouble()) {
      out << objective->getDoubleValue();
    } else {
      out << objective->getIntValue();
    }
  }
  out << "\ndecisions ";
  for (int i = 0; i < model.getNbDecisions(); ++i) out << model.getDecision(i)->getIntValue();
  const QVStatistics& statistics = *quvex.getStatistics();
  out << "\niterations " << statistics.getNbIterations() << " moves " << statistics.getNbMoves() << " accepted "
      << statistics.getNbAcceptedMoves() << " improving " << statistics.getNbImprovingMoves() << " infeasible "
      << statistics.getNbInfeasibleMoves() << '\n';
  for (std::size_t thread = 0; thread < ApiPeer::nbPools(quvex); ++thread) describeThread(out, quvex, thread);
  return out.str();
}

class Conformance : public testing::TestWithParam<std::string> {};

TEST_P(Conformance, ReachesTheSameEndToTheLastCounter) {
  const Expectation expectation(GetParam());
  Quvex quvex;
  for (const auto& [key, value] : expectation.before) quvex.getParam()->setAdvancedParam(key, value);
  std::string end;
  try {
    quvex.loadEnvironment(kData / (GetParam() + ".qvm.gz"));
    quvex.getParam()->setVerbosity(0);
    quvex.solve();
    end = describeEnd(quvex);
  } catch (const QVException& failure) {
    end = "error " + failure.getExplanation() + '\n';
  }
  EXPECT_EQ(end, expectation.end);
}

INSTANTIATE_TEST_SUITE_P(Models, Conformance, testing::ValuesIn(modelNames()), [](const auto& model) {
  std::string name = model.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

}  // namespace
}  // namespace quvex
