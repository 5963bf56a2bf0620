#pragma once

#include <cstdint>
#include <vector>

#include "api/qvexception.h"
#include "api/qvstate.h"
#include "solver/kernel/types.h"

namespace quvex {

class DagBuilder;
class QVExpression;
class Quvex;

/// The solution in terms of the model: one value per expression, and a status. Decisions and constants are inputs;
/// everything else follows from them and is computed when it is asked for after a change.
/// Invariant: unless `dirty`, every value and the status follow from the decisions.
/// A decision set here is where the next solve starts; a solve leaves its best solution here.
class QVSolution {
 public:
  static constexpr const char* kName = "quvex::QVSolution";

  explicit QVSolution(Quvex* owningQuvex) : owner(owningQuvex) {}
  QVSolution(const QVSolution&) = delete;
  QVSolution& operator=(const QVSolution&) = delete;

  [[nodiscard]] Quvex* getQuvex() const;  // rule: NotRunning

  /// Sets a boolean decision (0 or 1) or an integer one.
  void setValue(const QVExpression* expr, std::int64_t value);     // rule: PausedOrStopped
  void setIntValue(const QVExpression* expr, std::int64_t value);  // rule: PausedOrStopped
  /// Sets a decision of type double.
  void setDoubleValue(const QVExpression* expr, double value);  // rule: PausedOrStopped

  /// The value of a boolean or integer expression. Fails with the evaluation's own error when a value that the model
  /// needs does not exist, such as a quotient by zero.
  [[nodiscard]] std::int64_t getValue(const QVExpression* expr);     // rule: PausedOrStopped
  [[nodiscard]] std::int64_t getIntValue(const QVExpression* expr);  // rule: PausedOrStopped
  /// The value of a double expression.
  [[nodiscard]] double getDoubleValue(const QVExpression* expr);  // rule: PausedOrStopped

  [[nodiscard]] QVSolutionStatus getStatus();  // rule: PausedOrStopped

  /// Sets every value to 0, constants included: they read 0 until the next close of the model.
  void clear();  // rule: StoppedOnly

 private:
  friend class DagBuilder;
  friend class QVModel;
  friend class Quvex;
  friend struct ModelAccess;

  /// An expression under evaluation, and the first of its operands that has not been looked at.
  struct Visit {
    const QVExpression* expr;
    std::uint32_t nextOperand;
  };

  /// One cell per expression, zero but for constants. Called when the model is closed.
  void initValues();
  /// Computes everything that follows from the decisions, the status included. Stays `dirty` when that fails.
  void recompute();
  void recomputeIfDirty();

  void markInputsEvaluated();
  /// Evaluates an expression, and before that, in order, those of its operands that need it.
  void evaluateFrom(const QVExpression* root);
  void evaluateOne(const QVExpression* expr);
  [[nodiscard]] QVSolutionStatus computeStatus() const;
  [[nodiscard]] bool isInconsistent() const;
  [[nodiscard]] bool isOptimal() const;
  [[nodiscard]] bool isAtTarget(int objective) const;

  /// The checked cells behind the public operations that come under two names.
  t_value& decisionCell(const QVExpression* expr, ValueType allowed, const Place& place);
  t_value computedCell(const QVExpression* expr, ValueType allowed, const Place& place);
  void setInteger(const QVExpression* expr, std::int64_t value, const Place& place);

  Quvex* owner;
  std::vector<t_value> values;  ///< by expression, as words of its type
  std::vector<bool> evaluated;  ///< by expression, during a recomputation: the value is current
  QVSolutionStatus status = QVSolutionStatus::Infeasible;
  bool dirty = false;

  // Scratch of a recomputation.
  std::vector<Visit> visits;
  std::vector<ValueType> operandTypes;
  std::vector<t_value> operandValues;
};

}  // namespace quvex
