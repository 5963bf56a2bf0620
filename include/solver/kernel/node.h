#pragma once

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/noderecord.h"
#include "solver/kernel/random.h"
#include "solver/kernel/types.h"

namespace quvex {

class Dag;
class Propagation;

/// The behaviour of one vertex of the kernel graph. A node owns no value: cells live in the `Dag`, structure in
/// `DagFixedFields`, so every operation takes both with the node's own id. Aggregates own small sets of operand
/// positions, nothing else; the operands changed in the current move stand in a record of the `Dag`.
///
/// Invariant between moves: `tentativeValue` equals `nodeValue`, and no node is dirty, so that what its record says of
/// changes is void.
///
/// For those who write an operator:
/// - `eval` reads tentative cells of operands (and committed ones for a difference) and writes one cell, its own
///   tentative one, and not before all that may raise. It empties nothing and touches no persistent set.
/// - a position is in `changedNodes` only if that operand's tentative value really differs from its committed one.
/// - `commit` folds `changedNodes` into the persistent sets, empties it, and copies the cell; `rollback` empties it and
///   copies the other way. Parents commit before their operands, so the operands' committed cells are still the old.
/// - `init` may be called again on a used node: it rebuilds the persistent sets position by position.
/// - `isInit` tests every cached datum against the committed cells.
/// - picks read committed cells unless told otherwise, leave their out-arguments alone when they fail, and draw exactly
///   what their rule says.
class Node {
 public:
  static constexpr const char* kName = "quvex::Node";

  Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node() = default;

  /// Whether every cached datum agrees with a recomputation from committed values.
  [[nodiscard]] virtual bool isInit(const Dag& dag, NodeId id) const = 0;
  /// `isInit`, or dump the node and raise "Error in check of operator.".
  virtual void check(const Dag& dag, NodeId id) const;
  /// Debug dump on standard output.
  virtual void print(const Dag& dag, NodeId id) const;

  /// Find one decision, and the step (-1 or +1) on it, that should lower, raise or change this node's value.
  virtual bool pickDecrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const = 0;
  virtual bool pickIncrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const = 0;
  virtual bool pickChange(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const = 0;

  /// How far this node, used as a constraint, is from true, on committed values.
  [[nodiscard]] virtual std::int64_t violation(const Dag& dag, NodeId id) const;
  /// The change of `violation` that the tentative values bring.
  [[nodiscard]] virtual std::int64_t violationDelta(const Dag& dag, NodeId id) const;

  /// Operands that could raise or lower this node, for the moves that look inside sums. Only sums have any.
  [[nodiscard]] virtual std::uint32_t nbIncreaseCandidates(const Dag& dag, NodeId id) const;
  [[nodiscard]] virtual std::uint32_t nbDecreaseCandidates(const Dag& dag, NodeId id) const;
  [[nodiscard]] virtual OperandPos increaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const;
  [[nodiscard]] virtual OperandPos decreaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const;
  [[nodiscard]] virtual bool isIncreaseCandidate(const Dag& dag, NodeId id, OperandPos p) const;
  [[nodiscard]] virtual bool isDecreaseCandidate(const Dag& dag, NodeId id, OperandPos p) const;
  /// A uniform member, kNone if there is none.
  [[nodiscard]] virtual OperandPos randomIncreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const;
  [[nodiscard]] virtual OperandPos randomDecreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const;

  /// Computes the node from scratch: both cells and the persistent sets.
  virtual void init(Dag& dag, NodeId id) = 0;
  /// Computes the tentative cell. The only operation that runs during a stage.
  virtual void eval(Dag& dag, Propagation& propagation, NodeId id) = 0;
  /// Whether the parents have to be told, asked of a node that is dirty. Doubles compare exactly.
  [[nodiscard]] virtual bool hasChanged(const Dag& dag, NodeId id) const;
  virtual void commit(Dag& dag, NodeId id);
  virtual void rollback(Dag& dag, NodeId id);
  /// The operand at this position has changed in the current move. Not called for a kind of changes that the evaluation
  /// driver notes by itself, as it takes them back by itself.
  virtual void notifyChildChanged(Dag& dag, OperandPos position, NodeId id);
  [[nodiscard]] virtual ChangeKind changeKind() const { return ChangeKind::None; }

 protected:
  /// The dump that every operator begins with.
  void printCommon(const Dag& dag, NodeId id) const;

  /// Uniform operand (no draw if there is at most one), then a coin: raise it when the bit is clear, lower it when set.
  /// Any change will do for those who share this rule.
  static bool pickAnyChange(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id);
};

}  // namespace quvex
