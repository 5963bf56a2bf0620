#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "quvex.h"
#include "solver/kernel/random.h"

/// The three problems on which speed is measured, as plain data: for the engine they become models, for the
/// hand-written searches they are what they work on.
namespace bench {

using quvex::QVExpression;
using quvex::QVModel;
using quvex::QVOperator;

/// n items of weights and values from 10 to 99, half of which fit.
struct Knapsack {
  static constexpr const char* kLabel = "knapsack";
  std::vector<std::int64_t> weights;
  std::vector<std::int64_t> values;
  std::int64_t capacity = 0;

  Knapsack(std::uint32_t n, quvex::RandomState seed) {
    for (std::uint32_t i = 0; i < n; ++i) {
      weights.push_back(10 + quvex::rand(seed, 90));
      values.push_back(10 + quvex::rand(seed, 90));
      capacity += weights.back();
    }
    capacity /= 2;
  }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(weights.size()); }
  void build(QVModel& model) const;
};

/// n nodes, 10 n edges.
struct MaxCut {
  static constexpr const char* kLabel = "max-cut";
  std::vector<std::pair<std::uint32_t, std::uint32_t>> edges;
  std::vector<std::vector<std::uint32_t>> neighbours;

  MaxCut(std::uint32_t n, quvex::RandomState seed) : neighbours(n) {
    for (std::uint32_t e = 0; e < 10 * n; ++e) {
      const std::uint32_t u = quvex::rand(seed, n);
      std::uint32_t v = quvex::rand(seed, n);
      if (u == v) v = (v + 1) % n;
      edges.emplace_back(u, v);
      neighbours[u].push_back(v);
      neighbours[v].push_back(u);
    }
  }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(neighbours.size()); }
  void build(QVModel& model) const;
};

/// n columns of costs from 1 to 99, n rows that five columns cover.
struct Covering {
  static constexpr const char* kLabel = "covering";
  std::vector<std::int64_t> costs;
  std::vector<std::vector<std::uint32_t>> rows;
  std::vector<std::vector<std::uint32_t>> rowsOf;

  Covering(std::uint32_t n, quvex::RandomState seed) : rowsOf(n) {
    for (std::uint32_t i = 0; i < n; ++i) costs.push_back(1 + quvex::rand(seed, 99));
    for (std::uint32_t r = 0; r < n; ++r) {
      std::vector<std::uint32_t> row;
      while (row.size() < 5) {
        const std::uint32_t c = quvex::rand(seed, n);
        bool seen = false;
        for (const std::uint32_t x : row) seen |= x == c;
        if (!seen) row.push_back(c);
      }
      for (const std::uint32_t c : row) rowsOf[c].push_back(r);
      rows.push_back(std::move(row));
    }
  }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(costs.size()); }
  void build(QVModel& model) const;
};

inline std::vector<QVExpression*> createDecisions(QVModel& model, std::uint32_t n) {
  std::vector<QVExpression*> decisions;
  for (std::uint32_t i = 0; i < n; ++i) decisions.push_back(model.createExpression(QVOperator::Bool));
  return decisions;
}

inline QVExpression* weightedSum(QVModel& model, const std::vector<QVExpression*>& terms,
                                 const std::vector<std::int64_t>& weights) {
  QVExpression* sum = model.createExpression(QVOperator::Sum);
  for (std::size_t i = 0; i < terms.size(); ++i) {
    sum->addOperand(model.createExpression(QVOperator::Prod, weights[i], terms[i]));
  }
  return sum;
}

inline void Knapsack::build(QVModel& model) const {
  const auto x = createDecisions(model, size());
  model.addConstraint(model.createExpression(QVOperator::Leq, weightedSum(model, x, weights), capacity));
  model.addObjective(weightedSum(model, x, values), quvex::QVObjectiveDirection::Maximize);
}

inline void MaxCut::build(QVModel& model) const {
  const auto x = createDecisions(model, size());
  QVExpression* cut = model.createExpression(QVOperator::Sum);
  for (const auto& [u, v] : edges) cut->addOperand(model.createExpression(QVOperator::Xor, x[u], x[v]));
  model.addObjective(cut, quvex::QVObjectiveDirection::Maximize);
}

inline void Covering::build(QVModel& model) const {
  const auto x = createDecisions(model, size());
  for (const auto& row : rows) {
    QVExpression* covered = model.createExpression(QVOperator::Or);
    for (const std::uint32_t c : row) covered->addOperand(x[c]);
    model.addConstraint(covered);
  }
  model.addObjective(weightedSum(model, x, costs), quvex::QVObjectiveDirection::Minimize);
}

}  // namespace bench
