using System;
using System.Runtime.CompilerServices;

namespace QuvexNet.Tests
{
    internal sealed class LifetimeTests
    {
        public void EndsWithDispose()
        {
            Quvex solver = new Quvex();
            QVModel model = solver.Model;
            QVExpression x = model.Bool();
            QVParam param = solver.Param;
            solver.Dispose();
            solver.Dispose();
            Expect.Throws<ObjectDisposedException>(() => GC.KeepAlive(solver.State));
            Expect.Throws<ObjectDisposedException>(() => solver.Stop());
            Expect.Throws<ObjectDisposedException>(() => model.Bool());
            Expect.Throws<ObjectDisposedException>(() => GC.KeepAlive(x.Index));
            Expect.Throws<ObjectDisposedException>(() => GC.KeepAlive(x <= 3));
            Expect.Throws<ObjectDisposedException>(() => param.SetAdvancedParam("any", 1));
        }

        public void RefusesDisposeDuringASearch()
        {
            using (RunningSearch search = new RunningSearch())
            {
                Expect.Throws<InvalidOperationException>(() => search.Solver.Dispose());
                search.Stop();
                Expect.Equal(QVState.Stopped, search.Solver.State);
            }
        }

        public void LastsAsLongAsAnyObjectOfTheSolver()
        {
            QVExpression sum = LoneSum(1000);
            for (int i = 0; i < 5; ++i)
            {
                GC.Collect();
                GC.WaitForPendingFinalizers();
            }
            Expect.Equal(1000, sum.NbOperands);
            Expect.Equal(1001, sum.Model.NbExpressions);
        }

        public void EndsWithTheCollectorToo()
        {
            // The collector of Mono looks at stacks conservatively and may keep a single one; not all of a hundred.
            int nbAlive = 0;
            WeakReference[] many = new WeakReference[100];
            for (int i = 0; i < many.Length; ++i) many[i] = Forgotten();
            OverwriteStack(50);
            GC.Collect();
            GC.WaitForPendingFinalizers();
            foreach (WeakReference one in many)
            {
                if (one.IsAlive) ++nbAlive;
            }
            Expect.True(nbAlive < 50, "most of a hundred forgotten solvers to be collected, but " + nbAlive + " live");
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static QVExpression LoneSum(int n)
        {
            QVModel model = new Quvex().Model;
            QVExpression sum = model.Sum();
            for (int i = 0; i < n; ++i) sum.AddOperand(model.Bool());
            return sum;
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static WeakReference Forgotten()
        {
            Quvex solver = new Quvex();
            solver.Model.Bool();
            return new WeakReference(solver);
        }

        [MethodImpl(MethodImplOptions.NoInlining)]
        private static int OverwriteStack(int depth)
        {
            return depth == 0 ? 0 : 1 + OverwriteStack(depth - 1);
        }
    }
}
