using System;

namespace QuvexNet
{
    /// <summary>
    /// One stage of a solve: limits, and the objective up to which it optimises. The limits of all phases up to this one
    /// add up, and a phase gets what its predecessors have left.
    /// </summary>
    public sealed class QVPhase : QVObject
    {
        internal QVPhase(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Stopped.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVPhase_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>
        /// Seconds, at least 1. Default 2147483647, which means no limit. To be read in Paused or Stopped, to be set in
        /// Stopped.
        /// </summary>
        public int TimeLimit
        {
            get
            {
                return Check(Native.CSharp_QVPhase_GetTimeLimit(Pointer));
            }

            set
            {
                Native.CSharp_QVPhase_SetTimeLimit(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// Iterations of each thread, at least 1. Default 9223372036854775807, which means no limit. To be read in
        /// Paused or Stopped, to be set in Stopped.
        /// </summary>
        public long IterationLimit
        {
            get
            {
                return Check(Native.CSharp_QVPhase_GetIterationLimit(Pointer));
            }

            set
            {
                Native.CSharp_QVPhase_SetIterationLimit(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// Index of the last objective that counts in this phase. Default: the last one of the model. To be read in
        /// Paused or Stopped, to be set in Stopped.
        /// </summary>
        public int OptimizedObjective
        {
            get
            {
                return Check(Native.CSharp_QVPhase_GetOptimizedObjective(Pointer));
            }

            set
            {
                Native.CSharp_QVPhase_SetOptimizedObjective(Pointer, value);
                Check();
            }
        }

        /// <summary>What this phase did in the last solve. Paused or Stopped.</summary>
        public QVStatistics Statistics
        {
            get { return new QVStatistics(Owner, Check(Native.CSharp_QVPhase_GetStatistics(Pointer))); }
        }

        /// <summary>The limits and the objective, on one line. In any state.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_QVPhase_ToString(Pointer));
        }
    }
}
