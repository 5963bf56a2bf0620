using System.Collections.Generic;

namespace QuvexNet
{
    // One method per operator, where the operators of the language on QVExpression do not say it already.
    public sealed partial class QVModel
    {
        /// <summary>A new boolean decision.</summary>
        public QVExpression Bool()
        {
            return CreateExpression(QVOperator.Bool);
        }

        /// <summary>The constant of an integer value.</summary>
        public QVExpression Constant(long value)
        {
            return CreateConstant(value);
        }

        /// <summary>A new constant of type double.</summary>
        public QVExpression Constant(double value)
        {
            return CreateConstant(value);
        }

        /// <summary>The sum of all operands.</summary>
        public QVExpression Sum(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Sum, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>The sum of all operands.</summary>
        public QVExpression Sum(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Sum, operands);
        }

        /// <summary>The product of all operands.</summary>
        public QVExpression Prod(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Prod, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>The product of all operands.</summary>
        public QVExpression Prod(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Prod, operands);
        }

        /// <summary>The largest operand.</summary>
        public QVExpression Max(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Max, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>The largest operand.</summary>
        public QVExpression Max(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Max, operands);
        }

        /// <summary>The smallest operand.</summary>
        public QVExpression Min(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Min, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>The smallest operand.</summary>
        public QVExpression Min(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Min, operands);
        }

        /// <summary>Whether all operands hold.</summary>
        public QVExpression And(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.And, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>Whether all operands hold.</summary>
        public QVExpression And(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.And, operands);
        }

        /// <summary>Whether some operand holds.</summary>
        public QVExpression Or(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Or, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>Whether some operand holds.</summary>
        public QVExpression Or(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Or, operands);
        }

        /// <summary>Whether an odd number of operands holds.</summary>
        public QVExpression Xor(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Xor, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>Whether an odd number of operands holds.</summary>
        public QVExpression Xor(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Xor, operands);
        }

        /// <summary>
        /// A list of expressions for <see cref="At"/> and <see cref="Scalar"/>; it has no value of its own.
        /// </summary>
        public QVExpression Array(params QVExpression[] operands)
        {
            return CreateExpression(QVOperator.Array, (IEnumerable<QVExpression>)operands);
        }

        /// <summary>
        /// A list of expressions for <see cref="At"/> and <see cref="Scalar"/>; it has no value of its own.
        /// </summary>
        public QVExpression Array(IEnumerable<QVExpression> operands)
        {
            return CreateExpression(QVOperator.Array, operands);
        }

        /// <summary>Whether a equals b.</summary>
        public QVExpression Eq(QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Eq, a, b);
        }

        /// <summary>Whether a equals b.</summary>
        public QVExpression Eq(QVExpression a, long b)
        {
            return CreateExpression(QVOperator.Eq, a, b);
        }

        /// <summary>Whether a equals b.</summary>
        public QVExpression Eq(QVExpression a, double b)
        {
            return CreateExpression(QVOperator.Eq, a, b);
        }

        /// <summary>Whether a differs from b.</summary>
        public QVExpression Neq(QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Neq, a, b);
        }

        /// <summary>Whether a differs from b.</summary>
        public QVExpression Neq(QVExpression a, long b)
        {
            return CreateExpression(QVOperator.Neq, a, b);
        }

        /// <summary>Whether a differs from b.</summary>
        public QVExpression Neq(QVExpression a, double b)
        {
            return CreateExpression(QVOperator.Neq, a, b);
        }

        /// <summary>The distance |a - b|.</summary>
        public QVExpression Dist(QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Dist, a, b);
        }

        /// <summary>The distance |a - b|.</summary>
        public QVExpression Dist(QVExpression a, long b)
        {
            return CreateExpression(QVOperator.Dist, a, b);
        }

        /// <summary>The distance |a - b|.</summary>
        public QVExpression Dist(QVExpression a, double b)
        {
            return CreateExpression(QVOperator.Dist, a, b);
        }

        /// <summary>a to the power of b.</summary>
        public QVExpression Pow(QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Pow, a, b);
        }

        /// <summary>a to the power of b.</summary>
        public QVExpression Pow(QVExpression a, long b)
        {
            return CreateExpression(QVOperator.Pow, a, b);
        }

        /// <summary>a to the power of b.</summary>
        public QVExpression Pow(QVExpression a, double b)
        {
            return CreateExpression(QVOperator.Pow, a, b);
        }

        /// <summary>a when the condition holds, b otherwise.</summary>
        public QVExpression If(QVExpression condition, QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Iif, condition, a, b);
        }

        /// <summary>a when the condition holds, b otherwise.</summary>
        public QVExpression If(QVExpression condition, long a, long b)
        {
            return CreateExpression(QVOperator.Iif, condition, a, b);
        }

        /// <summary>a when the condition holds, b otherwise.</summary>
        public QVExpression If(QVExpression condition, double a, double b)
        {
            return CreateExpression(QVOperator.Iif, condition, a, b);
        }

        /// <summary>The element of an array at an index from 0.</summary>
        public QVExpression At(QVExpression array, QVExpression index)
        {
            return CreateExpression(QVOperator.At, array, index);
        }

        /// <summary>The scalar product of two arrays.</summary>
        public QVExpression Scalar(QVExpression a, QVExpression b)
        {
            return CreateExpression(QVOperator.Scalar, a, b);
        }

        /// <summary>Whether a does not hold.</summary>
        public QVExpression Not(QVExpression a)
        {
            return CreateExpression(QVOperator.Not, a);
        }

        /// <summary>|a|.</summary>
        public QVExpression Abs(QVExpression a)
        {
            return CreateExpression(QVOperator.Abs, a);
        }

        /// <summary>The smallest integer not below a double.</summary>
        public QVExpression Ceil(QVExpression a)
        {
            return CreateExpression(QVOperator.Ceil, a);
        }

        /// <summary>The largest integer not above a double.</summary>
        public QVExpression Floor(QVExpression a)
        {
            return CreateExpression(QVOperator.Floor, a);
        }

        /// <summary>The integer nearest to a double.</summary>
        public QVExpression Round(QVExpression a)
        {
            return CreateExpression(QVOperator.Round, a);
        }

        /// <summary>The square root.</summary>
        public QVExpression Sqrt(QVExpression a)
        {
            return CreateExpression(QVOperator.Sqrt, a);
        }

        /// <summary>The natural logarithm.</summary>
        public QVExpression Log(QVExpression a)
        {
            return CreateExpression(QVOperator.Log, a);
        }

        /// <summary>The exponential.</summary>
        public QVExpression Exp(QVExpression a)
        {
            return CreateExpression(QVOperator.Exp, a);
        }

        /// <summary>The cosine, of radians.</summary>
        public QVExpression Cos(QVExpression a)
        {
            return CreateExpression(QVOperator.Cos, a);
        }

        /// <summary>The sine, of radians.</summary>
        public QVExpression Sin(QVExpression a)
        {
            return CreateExpression(QVOperator.Sin, a);
        }

        /// <summary>The tangent, of radians.</summary>
        public QVExpression Tan(QVExpression a)
        {
            return CreateExpression(QVOperator.Tan, a);
        }
    }
}
