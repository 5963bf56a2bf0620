#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "solver/node/nodecomparison.h"

namespace quvex {

// The tests. `gap` is how far two values are from passing: for integers never below zero save by wrapping, for doubles
// signed. A strict order is off by one more.

template <class N>
struct EqTest {
  using Numbers = N;
  [[nodiscard]] static bool holds(typename N::Value a, typename N::Value b) { return N::equal(a, b); }
  [[nodiscard]] static std::int64_t gap(std::int64_t a, std::int64_t b) {
    return a < b ? wrapSub(b, a) : wrapSub(a, b);
  }
  [[nodiscard]] static double gap(double a, double b) { return std::abs(a - b); }
};

template <class N>
struct NeqTest {
  using Numbers = N;
  [[nodiscard]] static bool holds(typename N::Value a, typename N::Value b) { return !N::equal(a, b); }
};

template <class N>
struct LeqTest {
  using Numbers = N;
  static constexpr bool kTruthIsUp = false;
  [[nodiscard]] static bool holds(typename N::Value a, typename N::Value b) { return N::greaterOrEqual(b, a); }
  [[nodiscard]] static std::int64_t gap(std::int64_t a, std::int64_t b) {
    return std::max<std::int64_t>(wrapSub(a, b), 0);
  }
  [[nodiscard]] static double gap(double a, double b) { return a - b; }
};

template <class N>
struct LtTest {
  using Numbers = N;
  static constexpr bool kTruthIsUp = false;
  [[nodiscard]] static bool holds(typename N::Value a, typename N::Value b) { return N::greater(b, a); }
  [[nodiscard]] static std::int64_t gap(std::int64_t a, std::int64_t b) {
    return std::max<std::int64_t>(wrapAdd(wrapSub(a, b), 1), 0);
  }
  [[nodiscard]] static double gap(double a, double b) { return a - b + 1.0; }
};

/// "a over b" asks what `Mirrored` asks of b and a.
template <class Mirrored>
struct MirroredTest {
  using Numbers = typename Mirrored::Numbers;
  using Value = typename Numbers::Value;
  static constexpr bool kTruthIsUp = !Mirrored::kTruthIsUp;
  [[nodiscard]] static bool holds(Value a, Value b) { return Mirrored::holds(b, a); }
  [[nodiscard]] static Value gap(Value a, Value b) { return Mirrored::gap(b, a); }
};
template <class N>
using GeqTest = MirroredTest<LeqTest<N>>;
template <class N>
using GtTest = MirroredTest<LtTest<N>>;

class NodeEq final : public NodeEqualityOf<NodeEq, EqTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeEq";
};
class NodeNeq final : public NodeInequalityOf<NodeNeq, NeqTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeNeq";
};
class NodeGeq final : public NodeOrderOf<NodeGeq, GeqTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeGeq";
};
class NodeGt final : public NodeOrderOf<NodeGt, GtTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeGt";
};
class NodeLeq final : public NodeOrderOf<NodeLeq, LeqTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeLeq";
};
class NodeLt final : public NodeOrderOf<NodeLt, LtTest<Integers>> {
 public:
  static constexpr const char* kName = "quvex::NodeLt";
};

class NodeDoubleEq final : public NodeEqualityOf<NodeDoubleEq, EqTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleEq";
  [[nodiscard]] virtual const char* className() const { return "DoubleEq"; }
};
/// Violated by 1: there is no distance from a tie.
class NodeDoubleNeq final : public NodeInequalityOf<NodeDoubleNeq, NeqTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleNeq";
  [[nodiscard]] std::int64_t violation(const Dag& dag, NodeId id) const override {
    return holdsOn(OperandCells::committed(dag, id)) ? 0 : 1;
  }
  [[nodiscard]] std::int64_t violationDelta(const Dag& dag, NodeId id) const override {
    return (holdsOn(OperandCells::tentative(dag, id)) ? 0 : 1) - violation(dag, id);
  }
};
class NodeDoubleGeq final : public NodeOrderOf<NodeDoubleGeq, GeqTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleGeq";
};
class NodeDoubleGt final : public NodeOrderOf<NodeDoubleGt, GtTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleGt";
};
class NodeDoubleLeq final : public NodeOrderOf<NodeDoubleLeq, LeqTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleLeq";
};
class NodeDoubleLt final : public NodeOrderOf<NodeDoubleLt, LtTest<Doubles>> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleLt";
};

}  // namespace quvex
