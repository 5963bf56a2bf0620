using System;
using System.Linq;
using System.Threading;

namespace QuvexNet.Tests
{
    /// <summary>A small closed model without output: four items, the best value is 120 at the full weight of 9.</summary>
    internal class Knapsack : IDisposable
    {
        internal readonly Quvex Solver = new Quvex();
        internal readonly QVExpression[] Items;
        internal readonly QVExpression Weight;
        internal readonly QVExpression Value;

        internal Knapsack()
        {
            QVModel model = Solver.Model;
            long[] weights = { 5, 4, 3, 2 };
            long[] values = { 10, 40, 30, 50 };
            Items = weights.Select(_ => model.Bool()).ToArray();
            Weight = model.Sum(weights.Zip(Items, (w, item) => w * item));
            Value = model.Sum(values.Zip(Items, (v, item) => v * item));
            model.AddConstraint(Weight <= 9);
            model.Maximize(Value);
            model.Close();
            Solver.Param.Verbosity = 0;
            Solver.Param.NbThreads = 1;
        }

        public virtual void Dispose()
        {
            Solver.Dispose();
        }
    }

    /// <summary>
    /// A search on a second thread that has no limits. It is Running until this ends: the next display is hours away.
    /// </summary>
    internal sealed class RunningSearch : Knapsack
    {
        internal readonly QVModel Model;
        internal readonly QVParam Param;
        internal readonly QVPhase Phase;
        internal readonly QVSolution Solution;
        internal readonly QVStatistics Statistics;
        private readonly Thread caller;
        private Exception failure;

        internal RunningSearch()
        {
            Model = Solver.Model;
            Param = Solver.Param;
            Param.TimeBetweenDisplays = 65535;
            Phase = Solver.CreatePhase();
            Solution = Solver.Solution;
            Statistics = Solver.Statistics;
            caller = new Thread(Solve);
            caller.Start();
            while (Solver.State != QVState.Running) Thread.Yield();
        }

        /// <summary>Stops the search, waits for its end, and hands on what went wrong in it.</summary>
        internal void Stop()
        {
            Solver.Stop();
            caller.Join();
            if (failure != null) throw failure;
        }

        public override void Dispose()
        {
            if (caller.IsAlive) Stop();
            base.Dispose();
        }

        private void Solve()
        {
            try
            {
                Solver.Solve();
            }
            catch (Exception exception)
            {
                failure = exception;
            }
        }
    }
}
