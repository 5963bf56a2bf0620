using System;
using System.IO;
using System.Threading;

namespace QuvexNet.Tests
{
    internal sealed class FailureTests
    {
        public void TellPlaceAndReason()
        {
            using (Quvex solver = new Quvex())
            {
                Expect.Refused("QVModel::close", "At least one objective is required in the model.",
                               () => solver.Model.Close());
                Expect.True(!solver.Model.IsClosed, "an open model");
            }
        }

        public void ComeFromTheKernelToo()
        {
            File.WriteAllText("broken.qvm", "<QVM01>\n{\"expressions\"=");
            using (Quvex solver = new Quvex())
            {
                QVException failure = Expect.Throws<QVException>(() => solver.LoadEnvironment("broken.qvm"));
                Expect.True(failure.FunctionName.StartsWith("quvex::TextReader::"), "the reader's name");
                Expect.True(failure.FileName.StartsWith("src/qvm/"), "the reader's file");
            }
            File.Delete("broken.qvm");
        }

        public void OfNullTextsAreArgumentExceptions()
        {
            using (Quvex solver = new Quvex())
            {
                QVExpression x = solver.Model.Bool();
                x.Name = "x";
                ArgumentNullException failure = Expect.Throws<ArgumentNullException>(() => x.Name = null);
                Expect.True(failure.Message.StartsWith("null string"), "the library's text");
                Expect.Equal("x", x.Name);
                Expect.Throws<ArgumentNullException>(() => solver.SaveEnvironment(null));
                Expect.Throws<ArgumentNullException>(() => solver.LoadEnvironment(null));
                Expect.Throws<ArgumentNullException>(() => solver.Model.GetExpression(null));
                Expect.Throws<ArgumentNullException>(() => solver.Param.SetAdvancedParam(null, 1));
                Expect.Throws<ArgumentNullException>(() => solver.Param.GetAdvancedParam(null));
                Expect.Throws<ArgumentNullException>(() => solver.Param.GetAdvancedParam(null, 1));
            }
        }

        public void CanBeMadeByHand()
        {
            QVException exception = new QVException("f", 7, "g", "é");
            Expect.Equal("f", exception.FileName);
            Expect.Equal(7, exception.LineNumber);
            Expect.Equal("g", exception.FunctionName);
            Expect.Equal("é", exception.Explanation);
            Expect.Equal("ERROR [function g]: é", exception.Message);
            Expect.Throws<ArgumentNullException>(() => GC.KeepAlive(new QVException(null, 7, "g", "e")));
        }

        public void LeaveTheNextCallAlone()
        {
            using (Quvex solver = new Quvex())
            {
                Expect.Throws<QVException>(() => solver.Solve());
                Expect.Equal(QVState.Modeling, solver.State);
                Expect.Equal(0, solver.Model.NbExpressions);
            }
        }

        public void BelongToTheThreadThatCalled()
        {
            using (Quvex a = new Quvex())
            using (Quvex b = new Quvex())
            {
                Exception failure = null;
                Thread other = new Thread(() =>
                {
                    try
                    {
                        FailOften(b, 2000);
                    }
                    catch (Exception exception)
                    {
                        failure = exception;
                    }
                });
                other.Start();
                FailOften(a, 2000);
                other.Join();
                Expect.Equal(null, failure);
            }
        }

        public void StillArriveWhenTheCollectorHasRun()
        {
            using (Quvex solver = new Quvex())
            {
                for (int i = 0; i < 10; ++i)
                {
                    GC.Collect();
                    GC.WaitForPendingFinalizers();
                    FailOften(solver, 10);
                    Expect.Equal("", solver.Model.Bool().Name);
                }
            }
        }

        public void LeakNothingInAHundredThousand()
        {
            using (Quvex solver = new Quvex())
            {
                FailOften(solver, 10000);
                long before = ResidentBytes();
                FailOften(solver, 100000);
                long growth = ResidentBytes() - before;
                // A failure holds some 500 bytes of native memory: a leak of one per call would come to 50 MB.
                Expect.True(growth < 10000000, "no growth, but it was " + growth + " bytes");
            }
        }

        private static void FailOften(Quvex solver, int n)
        {
            QVModel model = solver.Model;
            for (int i = 0; i < n; ++i)
            {
                try
                {
                    model.GetExpression("a name that no expression of this model has");
                    throw new ExpectationException("expected a failure");
                }
                catch (QVException failure)
                {
                    Expect.Equal("quvex::QVModel::getExpression", failure.FunctionName);
                }
            }
        }

        /// <summary>Memory of this process after a collection, from the second field of /proc/self/statm.</summary>
        private static long ResidentBytes()
        {
            GC.Collect();
            GC.WaitForPendingFinalizers();
            GC.Collect();
            return long.Parse(File.ReadAllText("/proc/self/statm").Split(' ')[1]) * 4096;
        }
    }
}
