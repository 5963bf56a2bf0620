#pragma once

#include <array>

#include "api/qvoperator.h"
#include "builder/operatortools.h"
#include "solver/kernel/nodetype.h"

namespace quvex {

/// How an operator of the model becomes nodes.
enum class Rewriting {
  Plain,  ///< one node over the nodes of the operands
  Constant,
  Sum,
  Product,
  MinMax,
  If,
  BooleanAggregate,
  Array,
  At,
  Scalar,
};

/// One row of the table of operators: the rewriting, and the node types that it chooses from.
struct Lowering {
  Rewriting rewriting;
  NodeType integerNode;  ///< without a double operand
  NodeType doubleNode;   ///< with a double operand
  // Only where coefficients or booleans have a node type of their own.
  NodeType scalarInteger{};
  NodeType scalarDouble{};
  NodeType booleanForm{};
};

/// By operator number.
inline constexpr std::array<Lowering, OperatorTools::kNbOperators> kLowerings = {{
    {Rewriting::Plain, NodeType::Boolean, NodeType::Boolean},
    {Rewriting::Constant, NodeType::Constant, NodeType::DoubleConstant},
    {Rewriting::Sum, NodeType::Sum, NodeType::DoubleSum, NodeType::ScalarSum, NodeType::DoubleScalarSum, {}},
    {Rewriting::Product, NodeType::Product, NodeType::DoubleProduct, NodeType::ScalarProduct,
     NodeType::DoubleScalarProduct, NodeType::And},
    {Rewriting::MinMax, NodeType::Max, NodeType::DoubleMax, NodeType::ScalarMax, NodeType::DoubleScalarMax,
     NodeType::Or},
    {Rewriting::MinMax, NodeType::Min, NodeType::DoubleMin, NodeType::ScalarMin, NodeType::DoubleScalarMin,
     NodeType::And},
    {Rewriting::Plain, NodeType::Eq, NodeType::DoubleEq},
    {Rewriting::Plain, NodeType::Neq, NodeType::DoubleNeq},
    {Rewriting::Plain, NodeType::Geq, NodeType::DoubleGeq},
    {Rewriting::Plain, NodeType::Leq, NodeType::DoubleLeq},
    {Rewriting::Plain, NodeType::Gt, NodeType::DoubleGt},
    {Rewriting::Plain, NodeType::Lt, NodeType::DoubleLt},
    {Rewriting::If, NodeType::If, NodeType::DoubleIf},
    {Rewriting::Plain, NodeType::Not, NodeType::Not},
    {Rewriting::BooleanAggregate, NodeType::And, NodeType::And},
    {Rewriting::BooleanAggregate, NodeType::Or, NodeType::Or},
    {Rewriting::BooleanAggregate, NodeType::Xor, NodeType::Xor},
    {Rewriting::Plain, NodeType::Abs, NodeType::DoubleAbs},
    {Rewriting::Plain, NodeType::Distance, NodeType::DoubleDistance},
    {Rewriting::Plain, NodeType::Divide, NodeType::DoubleDivide},
    {Rewriting::Plain, NodeType::Modulo, NodeType::Modulo},
    {Rewriting::Array, NodeType::Array, NodeType::Array},
    {Rewriting::At, NodeType::At, NodeType::DoubleAt},
    {Rewriting::Scalar, NodeType::ScalarSum, NodeType::DoubleScalarSum},
    {Rewriting::Plain, NodeType::DoubleCeil, NodeType::DoubleCeil},
    {Rewriting::Plain, NodeType::DoubleFloor, NodeType::DoubleFloor},
    {Rewriting::Plain, NodeType::DoubleRound, NodeType::DoubleRound},
    {Rewriting::Plain, NodeType::DoubleSqrt, NodeType::DoubleSqrt},
    {Rewriting::Plain, NodeType::DoubleLog, NodeType::DoubleLog},
    {Rewriting::Plain, NodeType::DoubleExp, NodeType::DoubleExp},
    {Rewriting::Plain, NodeType::DoublePow, NodeType::DoublePow},
    {Rewriting::Plain, NodeType::DoubleCos, NodeType::DoubleCos},
    {Rewriting::Plain, NodeType::DoubleSin, NodeType::DoubleSin},
    {Rewriting::Plain, NodeType::DoubleTan, NodeType::DoubleTan},
}};

}  // namespace quvex
