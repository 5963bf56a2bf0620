// Solves one model file for a time and prints what bench/instances.py records:
//   instance_run MODEL SOLVED SECONDS THREADS SEED [KEY=VALUE]...
#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "quvex.h"
#include "solver/kernel/heuristic.h"
#include "support/apipeer.h"

namespace {

/// The moves with the most improvements over all threads, with their counts.
std::vector<std::string> bestMoves(quvex::Quvex& quvex) {
  std::map<std::string, std::uint32_t> improvements;
  for (std::size_t thread = 0; thread < quvex::ApiPeer::nbPools(quvex); ++thread) {
    for (const auto& move : quvex::ApiPeer::heuristic(quvex, thread).moves) {
      improvements[move->name] += move->nbImprovements;
    }
  }
  std::vector<std::pair<std::uint32_t, std::string>> ranking;
  for (const auto& [name, count] : improvements) ranking.emplace_back(count, name);
  std::sort(ranking.rbegin(), ranking.rend());
  std::vector<std::string> best;
  for (const auto& [count, name] : ranking) {
    if (count > 0 && best.size() < 4) best.push_back(name + " " + std::to_string(count));
  }
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 6) return 2;
  quvex::Quvex quvex;
  quvex::QVParam& param = *quvex.getParam();
  for (int i = 6; i < argc; ++i) {
    const std::string setting = argv[i];
    const std::size_t equals = setting.find('=');
    param.setAdvancedParam(setting.substr(0, equals), std::stoi(setting.substr(equals + 1)));
  }
  quvex.loadEnvironment(argv[1]);
  param.setVerbosity(0);
  param.setNbThreads(std::stoi(argv[4]));
  param.setSeed(std::stoi(argv[5]));
  quvex.createPhase()->setTimeLimit(std::stoi(argv[3]));
  const auto start = std::chrono::steady_clock::now();
  quvex.solve();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  quvex.saveEnvironment(argv[2]);

  nlohmann::json result;
  result["status"] = static_cast<int>(quvex.getSolution()->getStatus());
  quvex::QVModel& model = *quvex.getModel();
  for (int i = 0; i < model.getNbObjectives(); ++i) {
    quvex::QVExpression* objective = model.getObjective(i);
    if (objective->isDouble()) {
      result["objectives"].push_back(objective->getDoubleValue());
    } else {
      result["objectives"].push_back(objective->getIntValue());
    }
  }
  int violated = 0;
  for (int i = 0; i < model.getNbConstraints(); ++i) violated += model.getConstraint(i)->getIntValue() == 0 ? 1 : 0;
  result["violated"] = violated;
  result["iterations"] = quvex.getStatistics()->getNbIterations();
  result["iterationsPerSecond"] = static_cast<double>(quvex.getStatistics()->getNbIterations()) / seconds;
  result["moves"] = bestMoves(quvex);
  std::cout << result << std::endl;
}
