using System;
using System.Collections.Generic;
using static QuvexNet.QVExpression;

namespace QuvexNet
{
    /// <summary>
    /// The model of a solver: expressions over boolean decisions, constraints that must hold, and a list of objectives
    /// of which the first matters most.
    /// </summary>
    public sealed partial class QVModel : QVObject
    {
        internal QVModel(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Not while Running.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVModel_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>Number of expressions. Not while Running.</summary>
        public int NbExpressions
        {
            get { return Check(Native.CSharp_QVModel_GetNbExpressions(Pointer)); }
        }

        /// <summary>Number of decisions. Not while Running.</summary>
        public int NbDecisions
        {
            get { return Check(Native.CSharp_QVModel_GetNbDecisions(Pointer)); }
        }

        /// <summary>Number of constraints. Not while Running.</summary>
        public int NbConstraints
        {
            get { return Check(Native.CSharp_QVModel_GetNbConstraints(Pointer)); }
        }

        /// <summary>Number of objectives. Not while Running.</summary>
        public int NbObjectives
        {
            get { return Check(Native.CSharp_QVModel_GetNbObjectives(Pointer)); }
        }

        /// <summary>Sum of the operand counts of all expressions. Not while Running.</summary>
        public int NbOperands
        {
            get { return Check(Native.CSharp_QVModel_GetNbOperands(Pointer)); }
        }

        /// <summary>Whether the model is closed. Not while Running.</summary>
        public bool IsClosed
        {
            get { return CheckBool(Native.CSharp_QVModel_IsClosed(Pointer)); }
        }

        /// <summary>The expression at an index from 0, in creation order. Not while Running.</summary>
        public QVExpression GetExpression(int index)
        {
            return Wrap(Native.CSharp_QVModel_GetExpression__SWIG_0(Pointer, index));
        }

        /// <summary>The expression of that name. Not while Running.</summary>
        public QVExpression GetExpression(string name)
        {
            return Wrap(Native.CSharp_QVModel_GetExpression__SWIG_1(Pointer, Utf8.Encode(name)));
        }

        /// <summary>The decision at an index from 0, in creation order. Not while Running.</summary>
        public QVExpression GetDecision(int index)
        {
            return Wrap(Native.CSharp_QVModel_GetDecision(Pointer, index));
        }

        /// <summary>The constraint at an index from 0, in the order of addition. Not while Running.</summary>
        public QVExpression GetConstraint(int index)
        {
            return Wrap(Native.CSharp_QVModel_GetConstraint(Pointer, index));
        }

        /// <summary>The objective at an index from 0. Not while Running.</summary>
        public QVExpression GetObjective(int index)
        {
            return Wrap(Native.CSharp_QVModel_GetObjective(Pointer, index));
        }

        /// <summary>The direction of the objective at an index from 0. Not while Running.</summary>
        public QVObjectiveDirection GetObjectiveDirection(int index)
        {
            return (QVObjectiveDirection)Check(Native.CSharp_QVModel_GetObjectiveDirection(Pointer, index));
        }

        /// <summary>Requires a boolean expression to hold. Adding it again has no effect. Modeling.</summary>
        public void AddConstraint(QVExpression expr)
        {
            Native.CSharp_QVModel_AddConstraint(Pointer, PointerOf(expr));
            Check();
        }

        /// <summary>Appends an objective: the first one added matters most. Not an array. Modeling.</summary>
        public void AddObjective(QVExpression expr, QVObjectiveDirection direction)
        {
            Native.CSharp_QVModel_AddObjective(Pointer, PointerOf(expr), (int)direction);
            Check();
        }

        /// <summary>Appends an objective to be made small. Modeling.</summary>
        public void Minimize(QVExpression expr)
        {
            AddObjective(expr, QVObjectiveDirection.Minimize);
        }

        /// <summary>Appends an objective to be made large. Modeling.</summary>
        public void Maximize(QVExpression expr)
        {
            AddObjective(expr, QVObjectiveDirection.Maximize);
        }

        /// <summary>
        /// Checks the whole model, fixes the type of every expression and compiles the model for the search; the solver
        /// is then Stopped. A failure leaves the model open. Modeling.
        /// </summary>
        public void Close()
        {
            Native.CSharp_QVModel_Close(Pointer);
            Check();
        }

        /// <summary>Drops the compiled form and the search, so that the model may be changed again. Stopped.</summary>
        public void Open()
        {
            Native.CSharp_QVModel_Open(Pointer);
            Check();
        }

        /// <summary>A few lines with the sizes of the model. Not while Running.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_QVModel_ToString(Pointer));
        }

        internal QVExpression Wrap(IntPtr expression)
        {
            Check();
            return new QVExpression(Owner, expression);
        }
    }
}
