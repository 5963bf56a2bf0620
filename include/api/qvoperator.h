#pragma once

namespace quvex {

/// The operators of the model. The numbers are part of the interface; the text names are those of
/// `OperatorTools::getName`. Any `int` may be cast to this type: the model refuses numbers that it does not know.
enum class QVOperator : int {
  Bool = 0,     ///< a boolean decision
  Const = 1,    ///< a constant, made with `QVModel::createConstant` only
  Sum = 2,      ///< sum of all operands
  Prod = 3,     ///< product of all operands
  Max = 4,      ///< largest operand
  Min = 5,      ///< smallest operand
  Eq = 6,       ///< a == b
  Neq = 7,      ///< a != b
  Geq = 8,      ///< a >= b
  Leq = 9,      ///< a <= b
  Gt = 10,      ///< a > b
  Lt = 11,      ///< a < b
  Iif = 12,     ///< the second operand when the first one holds, the third one otherwise
  Not = 13,     ///< negation of a boolean
  And = 14,     ///< all operands hold
  Or = 15,      ///< some operand holds
  Xor = 16,     ///< an odd number of operands holds
  Abs = 17,     ///< |a|
  Dist = 18,    ///< |a - b|
  Div = 19,     ///< a / b, truncated when both are integers
  Mod = 20,     ///< remainder of a / b, integers only
  Array = 21,   ///< a list of expressions for "at" and "scalar"; it has no value of its own
  At = 22,      ///< the element of an array at an index
  Scalar = 23,  ///< scalar product of two arrays
  Ceil = 24,    ///< smallest integer not below a double
  Floor = 25,   ///< largest integer not above a double
  Round = 26,   ///< integer nearest to a double
  Sqrt = 27,    ///< square root
  Log = 28,     ///< natural logarithm
  Exp = 29,     ///< exponential
  Pow = 30,     ///< a to the power of b
  Cos = 31,     ///< cosine, of radians
  Sin = 32,     ///< sine, of radians
  Tan = 33,     ///< tangent, of radians
};

}  // namespace quvex
