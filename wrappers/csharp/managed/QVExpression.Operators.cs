using System;

namespace QuvexNet
{
    // The operators of the language: each makes a new expression in the model of its operand, which must be open.
    // Equality compares references, as everywhere; QVModel.Eq and QVModel.Neq compare values.
    public sealed partial class QVExpression
    {
        /// <summary>Whether a is at most b.</summary>
        public static QVExpression operator <=(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Leq, a, b);
        }

        /// <summary>Whether a is at most b.</summary>
        public static QVExpression operator <=(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Leq, a, b);
        }

        /// <summary>Whether a is at most b.</summary>
        public static QVExpression operator <=(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Leq, a, b);
        }

        /// <summary>Whether a is at most b.</summary>
        public static QVExpression operator <=(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Leq, a, b);
        }

        /// <summary>Whether a is at most b.</summary>
        public static QVExpression operator <=(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Leq, a, b);
        }

        /// <summary>Whether a is at least b.</summary>
        public static QVExpression operator >=(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Geq, a, b);
        }

        /// <summary>Whether a is at least b.</summary>
        public static QVExpression operator >=(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Geq, a, b);
        }

        /// <summary>Whether a is at least b.</summary>
        public static QVExpression operator >=(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Geq, a, b);
        }

        /// <summary>Whether a is at least b.</summary>
        public static QVExpression operator >=(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Geq, a, b);
        }

        /// <summary>Whether a is at least b.</summary>
        public static QVExpression operator >=(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Geq, a, b);
        }

        /// <summary>Whether a is below b.</summary>
        public static QVExpression operator <(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Lt, a, b);
        }

        /// <summary>Whether a is below b.</summary>
        public static QVExpression operator <(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Lt, a, b);
        }

        /// <summary>Whether a is below b.</summary>
        public static QVExpression operator <(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Lt, a, b);
        }

        /// <summary>Whether a is below b.</summary>
        public static QVExpression operator <(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Lt, a, b);
        }

        /// <summary>Whether a is below b.</summary>
        public static QVExpression operator <(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Lt, a, b);
        }

        /// <summary>Whether a is above b.</summary>
        public static QVExpression operator >(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Gt, a, b);
        }

        /// <summary>Whether a is above b.</summary>
        public static QVExpression operator >(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Gt, a, b);
        }

        /// <summary>Whether a is above b.</summary>
        public static QVExpression operator >(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Gt, a, b);
        }

        /// <summary>Whether a is above b.</summary>
        public static QVExpression operator >(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Gt, a, b);
        }

        /// <summary>Whether a is above b.</summary>
        public static QVExpression operator >(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Gt, a, b);
        }

        /// <summary>The sum.</summary>
        public static QVExpression operator +(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Sum, a, b);
        }

        /// <summary>The sum.</summary>
        public static QVExpression operator +(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Sum, a, b);
        }

        /// <summary>The sum.</summary>
        public static QVExpression operator +(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Sum, a, b);
        }

        /// <summary>The sum.</summary>
        public static QVExpression operator +(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Sum, a, b);
        }

        /// <summary>The sum.</summary>
        public static QVExpression operator +(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Sum, a, b);
        }

        /// <summary>The product.</summary>
        public static QVExpression operator *(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Prod, a, b);
        }

        /// <summary>The product.</summary>
        public static QVExpression operator *(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Prod, a, b);
        }

        /// <summary>The product.</summary>
        public static QVExpression operator *(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Prod, a, b);
        }

        /// <summary>The product.</summary>
        public static QVExpression operator *(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Prod, a, b);
        }

        /// <summary>The product.</summary>
        public static QVExpression operator *(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Prod, a, b);
        }

        /// <summary>The quotient, truncated when both are integers.</summary>
        public static QVExpression operator /(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Div, a, b);
        }

        /// <summary>The quotient, truncated when both are integers.</summary>
        public static QVExpression operator /(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Div, a, b);
        }

        /// <summary>The quotient, truncated when both are integers.</summary>
        public static QVExpression operator /(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Div, a, b);
        }

        /// <summary>The quotient, truncated when both are integers.</summary>
        public static QVExpression operator /(QVExpression a, double b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Div, a, b);
        }

        /// <summary>The quotient, truncated when both are integers.</summary>
        public static QVExpression operator /(double a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Div, a, b);
        }

        /// <summary>The remainder of integers.</summary>
        public static QVExpression operator %(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Mod, a, b);
        }

        /// <summary>The remainder of integers.</summary>
        public static QVExpression operator %(QVExpression a, long b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Mod, a, b);
        }

        /// <summary>The remainder of integers.</summary>
        public static QVExpression operator %(long a, QVExpression b)
        {
            return ModelOf(b).CreateExpression(QVOperator.Mod, a, b);
        }

        /// <summary>The difference, as a sum.</summary>
        public static QVExpression operator -(QVExpression a, QVExpression b)
        {
            return a + -b;
        }

        /// <summary>The difference, as a sum.</summary>
        public static QVExpression operator -(QVExpression a, long b)
        {
            return a + checked(-b);
        }

        /// <summary>The difference, as a sum.</summary>
        public static QVExpression operator -(long a, QVExpression b)
        {
            return a + -b;
        }

        /// <summary>The difference, as a sum.</summary>
        public static QVExpression operator -(QVExpression a, double b)
        {
            return a + -b;
        }

        /// <summary>The difference, as a sum.</summary>
        public static QVExpression operator -(double a, QVExpression b)
        {
            return a + -b;
        }

        /// <summary>Whether both hold.</summary>
        public static QVExpression operator &(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.And, a, b);
        }

        /// <summary>Whether at least one holds.</summary>
        public static QVExpression operator |(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Or, a, b);
        }

        /// <summary>Whether exactly one holds.</summary>
        public static QVExpression operator ^(QVExpression a, QVExpression b)
        {
            return ModelOf(a).CreateExpression(QVOperator.Xor, a, b);
        }

        /// <summary>The negative, as a product.</summary>
        public static QVExpression operator -(QVExpression a)
        {
            return -1 * a;
        }

        /// <summary>Whether a does not hold.</summary>
        public static QVExpression operator !(QVExpression a)
        {
            return ModelOf(a).CreateExpression(QVOperator.Not, a);
        }

        private static QVModel ModelOf(QVExpression expression)
        {
            if (expression == null) throw new ArgumentNullException("expression");
            return expression.Owner.OwnModel;
        }
    }
}
