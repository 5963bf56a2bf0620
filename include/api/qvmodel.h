#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "api/qvexpression.h"
#include "api/qvoperator.h"
#include "api/qvstate.h"

namespace quvex {

class DagBuilder;
class ExpressionPool;
class Quvex;
struct Place;

/// The mathematical model of a solver: a directed acyclic graph of expressions over boolean decisions, with constraints
/// that must hold and a list of objectives of which the first matters most.
///
/// Invariant: `closed` holds exactly while the solver is not in state Modeling, and exactly then the compiled form of
/// the model exists. The index of an expression is its position in `expressions`.
///
/// Every method names the states of the solver in which it may be called; a call in another state, like every other
/// misuse, raises QVException. There may be at most 2147483647 expressions, constraints, objectives, and operands in
/// all.
class QVModel {
 public:
  static constexpr const char* kName = "quvex::QVModel";

  /// Made by `Quvex`, which owns its one model.
  explicit QVModel(Quvex* owningQuvex);
  QVModel(const QVModel&) = delete;
  QVModel& operator=(const QVModel&) = delete;
  ~QVModel();

  /// The solver that owns this model. Not while Running.
  [[nodiscard]] Quvex* getQuvex() const;

  /// The constant of this integer value, made at the first call for it: a boolean for 0 and 1. Modeling only.
  QVExpression* createConstant(std::int64_t value);
  /// A new constant of type double. Fails for NaN and infinities. Modeling only.
  QVExpression* createConstant(double value);
  template <std::integral Integer>
  QVExpression* createConstant(Integer value) {
    return createConstant(static_cast<std::int64_t>(value));
  }

  /// A new expression, whose operands may be given here or later with `QVExpression::addOperand`. Fails for
  /// `QVOperator::Const`, for unknown operators, and for operands that `addOperand` would refuse. Modeling only.
  QVExpression* createExpression(QVOperator op);
  QVExpression* createExpression(QVOperator op, QVExpression* expr0);
  QVExpression* createExpression(QVOperator op, QVExpression* expr0, QVExpression* expr1);
  QVExpression* createExpression(QVOperator op, QVExpression* expr0, QVExpression* expr1, QVExpression* expr2);

  /// The same with numbers among the operands, which become constants, from the last one to the first.
  template <class... Operands>
  requires(sizeof...(Operands) >= 1 && sizeof...(Operands) <= 3 &&
           (std::is_arithmetic_v<Operands> || ...)) QVExpression* createExpression(QVOperator op,
                                                                                   Operands... operands) {
    return createFromMixed(op, std::array<Operand, sizeof...(Operands)>{toOperand(operands)...});
  }

  /// Number of expressions. Not while Running.
  [[nodiscard]] int getNbExpressions() const;
  /// The expression at `index`, in creation order. Not while Running.
  [[nodiscard]] QVExpression* getExpression(int index) const;
  /// The expression of that name. Fails when there is none. Not while Running.
  [[nodiscard]] QVExpression* getExpression(const std::string& name) const;
  /// Number of decisions. Not while Running.
  [[nodiscard]] int getNbDecisions() const;
  /// The decision at `index`, in creation order. Not while Running.
  [[nodiscard]] QVExpression* getDecision(int index) const;

  /// Requires a boolean expression to hold. Adding it again has no effect. Modeling only.
  void addConstraint(QVExpression* expr);
  /// Number of constraints. Not while Running.
  [[nodiscard]] int getNbConstraints() const;
  /// The constraint at `index`, in the order of addition. Not while Running.
  [[nodiscard]] QVExpression* getConstraint(int index) const;

  /// Appends an objective: the first one added matters most. Fails for an array. Modeling only.
  void addObjective(QVExpression* expr, QVObjectiveDirection direction);
  /// Number of objectives. Not while Running.
  [[nodiscard]] int getNbObjectives() const;
  /// The objective at `index`. Not while Running.
  [[nodiscard]] QVExpression* getObjective(int index) const;
  /// The direction of the objective at `index`. Not while Running.
  [[nodiscard]] QVObjectiveDirection getObjectiveDirection(int index) const;

  /// Sum of the operand counts of all expressions. Not while Running.
  [[nodiscard]] int getNbOperands() const;

  /// Checks the whole model, fixes the type of every expression and compiles the model for the search; the solver is
  /// then Stopped. Fails, and leaves the model open, when there is no objective, for cycles, for wrong numbers or types
  /// of operands, and when a constant part of the model cannot be computed. Linear in the size of the model. Modeling
  /// only.
  void close();
  /// Drops the compiled form and the search, so that the model may be changed again. Stopped only.
  void open();
  /// Whether the model is closed. Not while Running.
  [[nodiscard]] bool isClosed() const;

  /// A few lines with the sizes of the model. Not while Running.
  [[nodiscard]] std::string toString() const;

 private:
  friend class QVExpression;
  friend struct ModelAccess;

  using Operand = std::variant<QVExpression*, std::int64_t, double>;

  template <class Given>
  static Operand toOperand(Given operand) {
    if constexpr (std::is_integral_v<Given>)
      return static_cast<std::int64_t>(operand);
    else if constexpr (std::is_floating_point_v<Given>)
      return static_cast<double>(operand);
    else
      return static_cast<QVExpression*>(operand);
  }
  QVExpression* createFrom(QVOperator op, std::initializer_list<QVExpression*> operands, const Place& place);
  QVExpression* createFromMixed(QVOperator op, std::span<const Operand> operands);
  QVExpression* newExpression(QVOperator op);
  /// One expression on the path of a walk, and the operand to enter next.
  struct Visit {
    std::uint32_t index;
    std::uint32_t nextOperand;
  };

  // The steps of `close`. They raise at the place of `close`, which is what the user has called.
  void detectCycles(const Place& place) const;
  [[noreturn]] void raiseCycle(const std::vector<Visit>& path, std::uint32_t met, const Place& place) const;
  void fixValueTypes();
  void checkOperands(const QVExpression& expr, const Place& place) const;
  void compile();

  Quvex* owner;
  std::map<std::int64_t, QVExpression*> intConstants;
  std::map<std::string, QVExpression*, std::less<>> expressionsByName;
  std::map<std::uint32_t, std::string> namesByIndex;
  std::vector<QVExpression*> expressions;
  std::vector<QVObjectiveDirection> objectiveDirections;
  std::vector<QVExpression*> decisions;
  std::vector<QVExpression*> constraints;
  std::vector<QVExpression*> objectives;
  std::int32_t nbTotalOperands = 0;
  bool closed = false;
  std::unique_ptr<DagBuilder> dagBuilder;  ///< exists while the model is closed
  std::unique_ptr<ExpressionPool> expressionPool;
};

}  // namespace quvex
