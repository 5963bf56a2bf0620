using System;
using System.Collections.Generic;
using static QuvexNet.QVExpression;

namespace QuvexNet
{
    // The ways to make an expression of any operator. All need the state Modeling, and refuse operands that
    // QVExpression.AddOperand would refuse. Numbers among the operands become constants, from the last to the first.
    public sealed partial class QVModel
    {
        /// <summary>The constant of an integer value, made at the first call for it: a boolean for 0 and 1.</summary>
        public QVExpression CreateConstant(long value)
        {
            return Wrap(Native.CSharp_QVModel_CreateConstant__SWIG_0(Pointer, value));
        }

        /// <summary>A new constant of type double. Neither NaN nor infinite.</summary>
        public QVExpression CreateConstant(double value)
        {
            return Wrap(Native.CSharp_QVModel_CreateConstant__SWIG_1(Pointer, value));
        }

        /// <summary>A new expression over any number of operands, for the operators that take them.</summary>
        public QVExpression CreateExpression(QVOperator op, IEnumerable<QVExpression> operands)
        {
            if (operands == null) throw new ArgumentNullException("operands");
            QVExpression expression = CreateExpression(op);
            foreach (QVExpression operand in operands) expression.AddOperand(operand);
            return expression;
        }

        /// <summary>A new expression, whose operands come later.</summary>
        public QVExpression CreateExpression(QVOperator op)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_0(Pointer, (int)op));
        }

        /// <summary>A new expression over one operand.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_1(Pointer, (int)op, PointerOf(a)));
        }

        /// <summary>A new expression over two operands.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, QVExpression b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_2(Pointer, (int)op, PointerOf(a), PointerOf(b)));
        }

        /// <summary>A new expression over three operands.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, QVExpression b, QVExpression c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_3(Pointer, (int)op, PointerOf(a), PointerOf(b), PointerOf(c)));
        }

        /// <summary>The same over numbers too: integer.</summary>
        public QVExpression CreateExpression(QVOperator op, long a)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_4(Pointer, (int)op, a));
        }

        /// <summary>The same over numbers too: integer, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, long b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_5(Pointer, (int)op, a, b));
        }

        /// <summary>The same over numbers too: integer, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, QVExpression b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_6(Pointer, (int)op, a, PointerOf(b)));
        }

        /// <summary>The same over numbers too: expression, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, long b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_7(Pointer, (int)op, PointerOf(a), b));
        }

        /// <summary>The same over numbers too: integer, integer, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, long b, long c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_8(Pointer, (int)op, a, b, c));
        }

        /// <summary>The same over numbers too: integer, integer, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, long b, QVExpression c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_9(Pointer, (int)op, a, b, PointerOf(c)));
        }

        /// <summary>The same over numbers too: integer, expression, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, QVExpression b, long c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_10(Pointer, (int)op, a, PointerOf(b), c));
        }

        /// <summary>The same over numbers too: integer, expression, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, long a, QVExpression b, QVExpression c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_11(Pointer, (int)op, a, PointerOf(b), PointerOf(c)));
        }

        /// <summary>The same over numbers too: expression, integer, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, long b, long c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_12(Pointer, (int)op, PointerOf(a), b, c));
        }

        /// <summary>The same over numbers too: expression, integer, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, long b, QVExpression c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_13(Pointer, (int)op, PointerOf(a), b, PointerOf(c)));
        }

        /// <summary>The same over numbers too: expression, expression, integer.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, QVExpression b, long c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_14(Pointer, (int)op, PointerOf(a), PointerOf(b), c));
        }

        /// <summary>The same over numbers too: double.</summary>
        public QVExpression CreateExpression(QVOperator op, double a)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_15(Pointer, (int)op, a));
        }

        /// <summary>The same over numbers too: double, double.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, double b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_16(Pointer, (int)op, a, b));
        }

        /// <summary>The same over numbers too: double, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, QVExpression b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_17(Pointer, (int)op, a, PointerOf(b)));
        }

        /// <summary>The same over numbers too: expression, double.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, double b)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_18(Pointer, (int)op, PointerOf(a), b));
        }

        /// <summary>The same over numbers too: double, double, double.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, double b, double c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_19(Pointer, (int)op, a, b, c));
        }

        /// <summary>The same over numbers too: double, double, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, double b, QVExpression c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_20(Pointer, (int)op, a, b, PointerOf(c)));
        }

        /// <summary>The same over numbers too: double, expression, double.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, QVExpression b, double c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_21(Pointer, (int)op, a, PointerOf(b), c));
        }

        /// <summary>The same over numbers too: double, expression, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, double a, QVExpression b, QVExpression c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_22(Pointer, (int)op, a, PointerOf(b), PointerOf(c)));
        }

        /// <summary>The same over numbers too: expression, double, double.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, double b, double c)
        {
            return Wrap(Native.CSharp_QVModel_CreateExpression__SWIG_23(Pointer, (int)op, PointerOf(a), b, c));
        }

        /// <summary>The same over numbers too: expression, double, expression.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, double b, QVExpression c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_24(Pointer, (int)op, PointerOf(a), b, PointerOf(c)));
        }

        /// <summary>The same over numbers too: expression, expression, double.</summary>
        public QVExpression CreateExpression(QVOperator op, QVExpression a, QVExpression b, double c)
        {
            return Wrap(
                Native.CSharp_QVModel_CreateExpression__SWIG_25(Pointer, (int)op, PointerOf(a), PointerOf(b), c));
        }
    }
}
