using System;

namespace QuvexNet
{
    /// <summary>
    /// Counters of one phase, or of a whole solve.
    /// </summary>
    public sealed class QVStatistics : QVObject
    {
        internal QVStatistics(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Paused or Stopped.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVStatistics_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>Seconds of search. Paused or Stopped.</summary>
        public int RunningTime
        {
            get { return Check(Native.CSharp_QVStatistics_GetRunningTime(Pointer)); }
        }

        /// <summary>Iterations of the slowest thread. Paused or Stopped.</summary>
        public long NbIterations
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbIterations(Pointer)); }
        }

        /// <summary>Iterations of all threads. Paused or Stopped.</summary>
        public long NbMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbMoves(Pointer)); }
        }

        /// <summary>Moves that were kept. Paused or Stopped.</summary>
        public long NbAcceptedMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbAcceptedMoves(Pointer)); }
        }

        /// <summary>Moves that led to a new best solution. Paused or Stopped.</summary>
        public long NbImprovingMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbImprovingMoves(Pointer)); }
        }

        /// <summary>Moves that broke a constraint. Paused or Stopped.</summary>
        public long NbInfeasibleMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbInfeasibleMoves(Pointer)); }
        }

        /// <summary>Moves that were not kept, infeasible ones among them. Paused or Stopped.</summary>
        public long NbRejectedMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetNbRejectedMoves(Pointer)); }
        }

        /// <summary><see cref="NbAcceptedMoves"/> as a share of all moves, 0 to 100. Paused or Stopped.</summary>
        public double PercentAcceptedMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetPercentAcceptedMoves(Pointer)); }
        }

        /// <summary><see cref="NbImprovingMoves"/> as a share of all moves, 0 to 100. Paused or Stopped.</summary>
        public double PercentImprovingMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetPercentImprovingMoves(Pointer)); }
        }

        /// <summary><see cref="NbInfeasibleMoves"/> as a share of all moves, 0 to 100. Paused or Stopped.</summary>
        public double PercentInfeasibleMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetPercentInfeasibleMoves(Pointer)); }
        }

        /// <summary><see cref="NbRejectedMoves"/> as a share of all moves, 0 to 100. Paused or Stopped.</summary>
        public double PercentRejectedMoves
        {
            get { return Check(Native.CSharp_QVStatistics_GetPercentRejectedMoves(Pointer)); }
        }

        /// <summary>The second half of a progress line, once the solver has been started. Paused or Stopped.</summary>
        public string Info
        {
            get { return CheckText(Native.CSharp_QVStatistics_GetInfo(Pointer)); }
        }

        /// <summary>Three lines of figures. Paused or Stopped.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_QVStatistics_ToString(Pointer));
        }
    }
}
