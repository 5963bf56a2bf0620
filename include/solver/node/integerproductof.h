#pragma once

#include "solver/kernel/checkeddivision.h"
#include "solver/node/productbounds.h"
#include "solver/node/zeronodesaggregate.h"

namespace quvex {

/// Base of the integer products. A running product cannot survive a factor of zero, so zeros are counted apart.
/// Invariant: `nonZeroProduct` is the node's factor times all committed operands that are not 0, wrapping. Changes
/// divide old operands out again, which is exact unless the product has wrapped.
template <class Set, class Factor>
class IntegerProductOf : public ZeroNodesAggregate<Set> {
  using Base = ZeroNodesAggregate<Set>;

 public:
  using Base::Base;

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    return Base::isInit(dag, id) && nonZeroProduct == productOfNonZeros(dag, id);
  }
  void init(Dag& dag, NodeId id) final {
    Base::init(dag, id);
    nonZeroProduct = productOfNonZeros(dag, id);
  }
  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const final {
    std::int64_t product = Factor::factor(dag.fixed, id);
    for (const NodeId child : dag.fixed.childrenOf(id)) product = wrapMul(product, dag.nodeValue[child]);
    return product;
  }
  void print(const Dag& dag, NodeId id) const final {
    Base::print(dag, id);
    if constexpr (Factor::kScaled) std::cout << "scalar =" << Factor::factor(dag.fixed, id) << '\n';
  }

 protected:
  std::int64_t nonZeroProduct = 1;

  void evalProduct(Dag& dag, NodeId id, const Place& place) const {
    std::int64_t product = nonZeroProduct;
    std::uint32_t nbZeros = this->zeroNodes.size();
    forEachChange(dag, id, [&](OperandPos, std::int64_t before, std::int64_t after) {
      product = exchangeFactor(product, before, after, place);
      if (before == 0 && after != 0) --nbZeros;
      if (after == 0) ++nbZeros;
    });
    dag.tentativeValue[id] = nbZeros != 0 ? 0 : product;
  }

  /// Repeats the steps of `evalProduct` on the committed state.
  void commitProduct(Dag& dag, NodeId id, const Place& place) {
    const std::uint32_t n = dag.fixed.nbChildren[id];
    forEachChange(dag, id, [&](OperandPos p, std::int64_t before, std::int64_t after) {
      nonZeroProduct = exchangeFactor(nonZeroProduct, before, after, place);
      this->zeroNodes.set(p, n, after == 0);
    });
    this->commitCells(dag, id);
  }

  bool pickToward(const PickRequest& request, Direction, NodeId id) const final { return this->pickAny(request, id); }

 private:
  template <class Visit>
  void forEachChange(const Dag& dag, NodeId id, Visit visit) const {
    const NodeId* const children = dag.fixed.childrenOf(id).data();
    this->changedNodes(dag, id).forEach(
        [&](OperandPos p) { visit(p, dag.nodeValue[children[p]], dag.tentativeValue[children[p]]); });
  }

  /// Takes one factor out of a product of non-zeros and puts another one in.
  [[nodiscard]] static std::int64_t exchangeFactor(std::int64_t product, std::int64_t before, std::int64_t after,
                                                   const Place& place) {
    if (before != 0) product = checkedDivide(product, before, place);
    if (after != 0) product = wrapMul(product, after);
    return product;
  }

  [[nodiscard]] static std::int64_t productOfNonZeros(const Dag& dag, NodeId id) {
    std::int64_t product = Factor::factor(dag.fixed, id);
    for (const NodeId child : dag.fixed.childrenOf(id)) {
      if (dag.nodeValue[child] != 0) product = wrapMul(product, dag.nodeValue[child]);
    }
    return product;
  }
};

}  // namespace quvex
