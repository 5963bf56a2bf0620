using System;
using static QuvexNet.QVExpression;

namespace QuvexNet
{
    /// <summary>
    /// The values of all expressions. Decisions that are set here are where the next solve starts; it leaves its best
    /// solution here.
    /// </summary>
    public sealed class QVSolution : QVObject
    {
        internal QVSolution(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Not while Running.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVSolution_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>What is known of the solution. Paused or Stopped.</summary>
        public QVSolutionStatus Status
        {
            get { return (QVSolutionStatus)Check(Native.CSharp_QVSolution_GetStatus(Pointer)); }
        }

        /// <summary>The value of a boolean or integer expression. Paused or Stopped.</summary>
        public long GetValue(QVExpression expr)
        {
            return Check(Native.CSharp_QVSolution_GetValue(Pointer, PointerOf(expr)));
        }

        /// <summary>Sets a boolean or integer decision. Paused or Stopped.</summary>
        public void SetValue(QVExpression expr, long value)
        {
            Native.CSharp_QVSolution_SetValue(Pointer, PointerOf(expr), value);
            Check();
        }

        /// <summary>The value of a boolean or integer expression. Paused or Stopped.</summary>
        public long GetIntValue(QVExpression expr)
        {
            return Check(Native.CSharp_QVSolution_GetIntValue(Pointer, PointerOf(expr)));
        }

        /// <summary>Sets a boolean or integer decision. Paused or Stopped.</summary>
        public void SetIntValue(QVExpression expr, long value)
        {
            Native.CSharp_QVSolution_SetIntValue(Pointer, PointerOf(expr), value);
            Check();
        }

        /// <summary>The value of a double expression. Paused or Stopped.</summary>
        public double GetDoubleValue(QVExpression expr)
        {
            return Check(Native.CSharp_QVSolution_GetDoubleValue(Pointer, PointerOf(expr)));
        }

        /// <summary>Sets a double decision. Paused or Stopped.</summary>
        public void SetDoubleValue(QVExpression expr, double value)
        {
            Native.CSharp_QVSolution_SetDoubleValue(Pointer, PointerOf(expr), value);
            Check();
        }

        /// <summary>Sets every value to 0, constants included, until the model is closed again. Stopped.</summary>
        public void Clear()
        {
            Native.CSharp_QVSolution_Clear(Pointer);
            Check();
        }
    }
}
