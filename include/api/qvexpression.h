#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "api/qvoperator.h"
#include "solver/kernel/types.h"

namespace quvex {

class QVModel;
class Quvex;
struct Place;

/// One expression of a model: a decision, a constant, or an operator over other expressions.
/// Created by `QVModel` only, and alive as long as its model.
///
/// Invariant: operands are indices into the model's expressions. Up to two stand in the record itself; from the third
/// on they stand in an array whose last cell is `kNone`, so that it is full exactly when the cell behind the last
/// operand is `kNone`. This needs no capacity field and keeps a record at 32 bytes.
///
/// Every method names the states of the solver in which it may be called; a call in another state, like every other
/// misuse, raises QVException.
class QVExpression {
 public:
  static constexpr const char* kName = "quvex::QVExpression";

  QVExpression(const QVExpression&) = delete;
  QVExpression& operator=(const QVExpression&) = delete;

  /// The solver that owns the model. Not while Running.
  [[nodiscard]] Quvex* getQuvex() const;
  /// The model of this expression. Not while Running.
  [[nodiscard]] QVModel* getModel() const;
  /// The operator. Not while Running.
  [[nodiscard]] QVOperator getOperator() const;
  /// Position among the model's expressions, in creation order. Not while Running.
  [[nodiscard]] int getIndex() const;

  /// Whether this is a constant. Not while Running.
  [[nodiscard]] bool isConstant() const;
  /// Whether this is a decision. Not while Running.
  [[nodiscard]] bool isDecision() const;
  /// Whether this was added as a constraint. Not while Running.
  [[nodiscard]] bool isConstraint() const;
  /// Whether this was added as an objective. Not while Running.
  [[nodiscard]] bool isObjective() const;

  /// Whether the value is a double. The type is known once the model is closed: Paused or Stopped only.
  [[nodiscard]] bool isDouble() const;
  /// Whether the value is an integer (and not a boolean). Paused or Stopped only.
  [[nodiscard]] bool isInt() const;
  /// Whether the value is a boolean. Paused or Stopped only.
  [[nodiscard]] bool isBool() const;

  /// Appends an operand. Fails when it is null, belongs to another solver, is one too many for the operator, or when
  /// its operator can never produce a value of the expected type. Modeling only.
  void addOperand(QVExpression* expr);
  /// Appends a constant operand, see `QVModel::createConstant`. Modeling only.
  void addOperand(std::int64_t value);
  void addOperand(double value);
  template <std::integral Integer>
  void addOperand(Integer value) {
    addOperand(static_cast<std::int64_t>(value));
  }

  /// Replaces the operand at `pos`. The new operand is held against the position behind the last operand, as if it
  /// were to be appended: an expression that already has as many operands as its operator takes refuses every
  /// replacement. Not while Running; a closed model is not compiled again.
  void setOperand(int pos, QVExpression* expr);
  /// Replaces the operand at `pos` by a constant, see `QVModel::createConstant`. Modeling only.
  void setOperand(int pos, std::int64_t value);
  void setOperand(int pos, double value);
  template <std::integral Integer>
  void setOperand(int pos, Integer value) {
    setOperand(pos, static_cast<std::int64_t>(value));
  }

  /// The operand at `pos`, in [0, getNbOperands()). Not while Running.
  [[nodiscard]] QVExpression* getOperand(int pos) const;
  /// Number of operands. Not while Running.
  [[nodiscard]] int getNbOperands() const;

  /// Value in the current solution of a boolean or integer expression. Paused or Stopped only; of a constant, also in
  /// Modeling. Computing it may raise the failures of the arithmetic, such as a division by zero.
  [[nodiscard]] std::int64_t getValue() const;
  /// The same as `getValue`.
  [[nodiscard]] std::int64_t getIntValue() const;
  /// The same for a double expression.
  [[nodiscard]] double getDoubleValue() const;

  /// Sets the value of a decision in the current solution, from which the next solve starts: 0 or 1 for a boolean.
  /// Paused or Stopped only.
  void setValue(std::int64_t value);
  /// The same as `setValue`.
  void setIntValue(std::int64_t value);
  /// The same for a double decision.
  void setDoubleValue(double value);

  /// Names the expression, in place of an earlier name. The name must not be empty, and no expression of the model may
  /// have it already. Modeling only.
  void setName(const std::string& name);
  /// Whether a name was given. Not while Running.
  [[nodiscard]] bool isNamed() const;
  /// The name, or an empty text. Not while Running.
  [[nodiscard]] std::string getName() const;

  /// "Expression <index> (type = <operator>, name = <name>)", without the second part if unnamed. Not while Running.
  [[nodiscard]] std::string toString() const;
  /// Several lines: `toString`, the roles in the model and, where it is known, the value. Not while Running.
  [[nodiscard]] std::string getInfo() const;

 private:
  friend class ExpressionPool;
  friend class QVModel;
  friend struct ModelAccess;

  QVExpression(QVModel* owningModel, QVOperator ownOperator, std::uint32_t position);
  ~QVExpression();

  [[nodiscard]] bool hasInlineOperands() const { return nbOperands <= 2; }
  [[nodiscard]] std::span<const std::uint32_t> operandIndices() const {
    return {hasInlineOperands() ? operands.inlined : operands.heap, static_cast<std::size_t>(nbOperands)};
  }
  [[nodiscard]] QVOperator op() const { return static_cast<QVOperator>(opNumber); }
  [[nodiscard]] bool canBeBoolean() const;
  [[nodiscard]] bool hasKnownValue() const;
  /// State and type as a value getter asks for them: those of a constant are known while the model is open, too.
  void checkReadable(ValueType allowed, const Place& place) const;
  void appendOperand(std::uint32_t operandIndex);
  /// Moves the operands to a new array with at least one spare cell.
  void moveOperandsTo(std::size_t nbCells);

  union {
    std::uint32_t inlined[2];  ///< indices of up to two operands
    std::uint32_t* heap;       ///< owned array of indices of three or more
    t_value value;             ///< of a constant, by `valueType`
  } operands{};
  QVModel* model;
  std::int32_t nbOperands = 0;
  std::int32_t index;
  std::uint8_t opNumber;
  ValueType valueType = 0;  ///< one bit, or 0 until known
  bool objective = false;
  bool constraint = false;
};

static_assert(sizeof(QVExpression) == 32);

}  // namespace quvex
