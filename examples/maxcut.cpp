// Max-cut: split the nodes of a graph in two sides so that as many edges as possible run between them.
#include <utility>

#include "support/example.h"

using namespace quvex;

class MaxCut {
 public:
  explicit MaxCut(QVModel& model) {
    for (int i = 0; i < kNodes; ++i) side.push_back(model.createExpression(QVOperator::Bool));
    cut = model.createExpression(QVOperator::Sum);
    for (int e = 0; e < kEdges; ++e) {
      const int u = random.between(0, kNodes - 1);
      const int v = (u + random.between(1, kNodes - 1)) % kNodes;
      edges.emplace_back(u, v);
      cut->addOperand(model.createExpression(QVOperator::Xor, side[u], side[v]));
    }
    model.addObjective(cut, QVObjectiveDirection::Maximize);
  }

  std::string findFault() const {
    std::int64_t nbCut = 0;
    for (const auto& [u, v] : edges) nbCut += example::isSet(side[u]) != example::isSet(side[v]) ? 1 : 0;
    return nbCut == cut->getIntValue() ? "" : "the cut has " + std::to_string(nbCut) + " edges";
  }

 private:
  static constexpr int kNodes = 300;
  static constexpr int kEdges = 2000;

  example::Random random{3};
  std::vector<QVExpression*> side;
  std::vector<std::pair<int, int>> edges;
  QVExpression* cut = nullptr;
};

int main(int argc, char** argv) { return example::run<MaxCut>(argc, argv, 1000000); }
