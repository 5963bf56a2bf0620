using System;

namespace QuvexNet
{
    /// <summary>
    /// One expression of a model: a decision, a constant, or an operator over other expressions. The operators of the
    /// language make new ones: <c>2 * x + y &lt;= 3</c>.
    /// </summary>
    public sealed partial class QVExpression : QVObject
    {
        internal QVExpression(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Not while Running.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVExpression_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>The model. Not while Running.</summary>
        public QVModel Model
        {
            get
            {
                Check(Native.CSharp_QVExpression_GetModel(Pointer));
                return Owner.OwnModel;
            }
        }

        /// <summary>The operator. Not while Running.</summary>
        public QVOperator Operator
        {
            get { return (QVOperator)Check(Native.CSharp_QVExpression_GetOperator(Pointer)); }
        }

        /// <summary>Position among the expressions of the model, in creation order. Not while Running.</summary>
        public int Index
        {
            get { return Check(Native.CSharp_QVExpression_GetIndex(Pointer)); }
        }

        /// <summary>Number of operands. Not while Running.</summary>
        public int NbOperands
        {
            get { return Check(Native.CSharp_QVExpression_GetNbOperands(Pointer)); }
        }

        /// <summary>Whether this is a constant. Not while Running.</summary>
        public bool IsConstant
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsConstant(Pointer)); }
        }

        /// <summary>Whether this is a decision. Not while Running.</summary>
        public bool IsDecision
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsDecision(Pointer)); }
        }

        /// <summary>Whether this was added as a constraint. Not while Running.</summary>
        public bool IsConstraint
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsConstraint(Pointer)); }
        }

        /// <summary>Whether this was added as an objective. Not while Running.</summary>
        public bool IsObjective
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsObjective(Pointer)); }
        }

        /// <summary>
        /// Whether the value is a boolean. Types are known once the model is closed: Paused or Stopped.
        /// </summary>
        public bool IsBool
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsBool(Pointer)); }
        }

        /// <summary>Whether the value is an integer and not a boolean. Paused or Stopped.</summary>
        public bool IsInt
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsInt(Pointer)); }
        }

        /// <summary>Whether the value is a double. Paused or Stopped.</summary>
        public bool IsDouble
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsDouble(Pointer)); }
        }

        /// <summary>Whether a name was given. Not while Running.</summary>
        public bool IsNamed
        {
            get { return CheckBool(Native.CSharp_QVExpression_IsNamed(Pointer)); }
        }

        /// <summary>
        /// The name, empty when there is none; no two expressions of a model have the same. To be read when not
        /// Running, to be set in Modeling.
        /// </summary>
        public string Name
        {
            get
            {
                return CheckText(Native.CSharp_QVExpression_GetName(Pointer));
            }

            set
            {
                Native.CSharp_QVExpression_SetName(Pointer, Utf8.Encode(value));
                Check();
            }
        }

        /// <summary>
        /// The value in the current solution of a boolean or integer expression; only decisions can be set. Paused or
        /// Stopped; constants can be read in Modeling, too.
        /// </summary>
        public long Value
        {
            get
            {
                return Check(Native.CSharp_QVExpression_GetValue(Pointer));
            }

            set
            {
                Native.CSharp_QVExpression_SetValue(Pointer, value);
                Check();
            }
        }

        /// <summary>The same as <see cref="Value"/>.</summary>
        public long IntValue
        {
            get
            {
                return Check(Native.CSharp_QVExpression_GetIntValue(Pointer));
            }

            set
            {
                Native.CSharp_QVExpression_SetIntValue(Pointer, value);
                Check();
            }
        }

        /// <summary>The same for a double expression.</summary>
        public double DoubleValue
        {
            get
            {
                return Check(Native.CSharp_QVExpression_GetDoubleValue(Pointer));
            }

            set
            {
                Native.CSharp_QVExpression_SetDoubleValue(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// Several lines: this expression, its roles in the model and, where it is known, its value. Not while Running.
        /// </summary>
        public string Info
        {
            get { return CheckText(Native.CSharp_QVExpression_GetInfo(Pointer)); }
        }

        /// <summary>The operand at an index from 0. Not while Running.</summary>
        public QVExpression GetOperand(int index)
        {
            return Owner.OwnModel.Wrap(Native.CSharp_QVExpression_GetOperand(Pointer, index));
        }

        /// <summary>Appends an operand. Modeling.</summary>
        public void AddOperand(QVExpression operand)
        {
            Native.CSharp_QVExpression_AddOperand__SWIG_0(Pointer, PointerOf(operand));
            Check();
        }

        /// <summary>Appends the constant of an integer. Modeling.</summary>
        public void AddOperand(long operand)
        {
            Native.CSharp_QVExpression_AddOperand__SWIG_1(Pointer, operand);
            Check();
        }

        /// <summary>Appends a new double constant. Modeling.</summary>
        public void AddOperand(double operand)
        {
            Native.CSharp_QVExpression_AddOperand__SWIG_2(Pointer, operand);
            Check();
        }

        /// <summary>
        /// Replaces the operand at an index from 0. The new one is held against the position behind the last operand,
        /// as if it were appended: an expression that is full refuses every replacement. Not while Running.
        /// </summary>
        public void SetOperand(int index, QVExpression operand)
        {
            Native.CSharp_QVExpression_SetOperand__SWIG_0(Pointer, index, PointerOf(operand));
            Check();
        }

        /// <summary>Replaces an operand by the constant of an integer. Modeling.</summary>
        public void SetOperand(int index, long operand)
        {
            Native.CSharp_QVExpression_SetOperand__SWIG_1(Pointer, index, operand);
            Check();
        }

        /// <summary>Replaces an operand by a new double constant. Modeling.</summary>
        public void SetOperand(int index, double operand)
        {
            Native.CSharp_QVExpression_SetOperand__SWIG_2(Pointer, index, operand);
            Check();
        }

        /// <summary>Index, operator and name. Not while Running.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_QVExpression_ToString(Pointer));
        }

        /// <summary>The library itself refuses null.</summary>
        internal static IntPtr PointerOf(QVExpression expression)
        {
            return expression == null ? IntPtr.Zero : expression.Pointer;
        }
    }
}
