using System.Collections.Generic;
using System.IO;

namespace QuvexNet.Tests
{
    internal sealed class SolveTests
    {
        public void FindsTheBestKnapsack()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                Quvex solver = knapsack.Solver;
                QVPhase phase = solver.CreatePhase();
                phase.IterationLimit = 2000;
                solver.Solve();
                Expect.Equal(QVState.Stopped, solver.State);
                Expect.Equal(120L, knapsack.Value.Value);
                Expect.Equal(9L, solver.Solution.GetValue(knapsack.Weight));
                Expect.Equal(QVSolutionStatus.Feasible, solver.Solution.Status);
                Expect.Equal(1, solver.NbPhases);
                Expect.Equal(phase, solver.GetPhase(0));
                Expect.Equal(solver, phase.Quvex);
                Expect.Equal(2000L, solver.Statistics.NbIterations);
                Expect.Equal(2000L, phase.Statistics.NbMoves);
                Expect.True(solver.Info.Contains("obj = (120)"), "the objective in the progress line");
            }
        }

        public void StopsFromASecondThread()
        {
            using (RunningSearch search = new RunningSearch())
            {
                search.Stop();
                Expect.Equal(QVState.Stopped, search.Solver.State);
                Expect.Equal(QVSolutionStatus.Feasible, search.Solver.Solution.Status);
                Expect.True(search.Statistics.NbIterations > 0, "some iterations");
            }
        }

        public void StopsNothingWithoutASearch()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                knapsack.Solver.Stop();
                Expect.Equal(QVState.Stopped, knapsack.Solver.State);
            }
        }

        public void CountsMovesConsistently()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                knapsack.Solver.CreatePhase().IterationLimit = 1000;
                knapsack.Solver.Solve();
                QVStatistics s = knapsack.Solver.Statistics;
                Expect.Equal(s.NbMoves, s.NbAcceptedMoves + s.NbRejectedMoves);
                Expect.True(s.NbInfeasibleMoves <= s.NbRejectedMoves, "infeasible moves among the rejected ones");
                Expect.True(s.NbImprovingMoves <= s.NbAcceptedMoves, "improving moves among the accepted ones");
                Expect.Equal(100.0 * s.NbAcceptedMoves / s.NbMoves, s.PercentAcceptedMoves);
                Expect.Equal(100.0 * s.NbRejectedMoves / s.NbMoves, s.PercentRejectedMoves);
                Expect.Equal(100.0 * s.NbImprovingMoves / s.NbMoves, s.PercentImprovingMoves);
                Expect.Equal(100.0 * s.NbInfeasibleMoves / s.NbMoves, s.PercentInfeasibleMoves);
                Expect.True(s.RunningTime >= 0, "a running time");
                Expect.True(s.Info.StartsWith("mov = 1000, "), "a line of figures");
                Expect.True(s.ToString().StartsWith("running time = "), "a text of figures");
                Expect.Equal(knapsack.Solver, s.Quvex);
            }
        }

        public void SetsAndReadsParametersAndPhases()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                QVParam param = knapsack.Solver.Param;
                param.Seed = 17;
                param.NbThreads = 3;
                param.AnnealingLevel = 9;
                param.TimeBetweenDisplays = 60;
                param.Verbosity = 2;
                param.SetAdvancedParam("targetingLevel", 7);
                param.SetObjectiveBound(0, long.MaxValue - 1);
                Expect.Equal(17, param.Seed);
                Expect.Equal(3, param.NbThreads);
                Expect.Equal(9, param.AnnealingLevel);
                Expect.Equal(60, param.TimeBetweenDisplays);
                Expect.Equal(2, param.Verbosity);
                Expect.Equal(7, param.GetAdvancedParam("targetingLevel"));
                Expect.Equal(8, param.GetAdvancedParam("neighborhoodSize", 8));
                Expect.Equal(long.MaxValue - 1, param.GetIntObjectiveBound(0));
                param.SetIntObjectiveBound(0, 120);
                Expect.Equal(120L, param.GetObjectiveBound(0));
                Expect.True(param.ToString().StartsWith("Param: "), "a description");

                QVPhase phase = knapsack.Solver.CreatePhase();
                Expect.Equal(int.MaxValue, phase.TimeLimit);
                Expect.Equal(long.MaxValue, phase.IterationLimit);
                phase.TimeLimit = 5;
                phase.IterationLimit = long.MaxValue - 1;
                phase.OptimizedObjective = 0;
                Expect.Equal(5, phase.TimeLimit);
                Expect.Equal(long.MaxValue - 1, phase.IterationLimit);
                Expect.Equal(0, phase.OptimizedObjective);
                Expect.True(phase.ToString().StartsWith("time limit = 5 sec"), "a description");
            }
        }

        public void ReachesABound()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                knapsack.Solver.Param.SetObjectiveBound(0, 90);
                knapsack.Solver.CreatePhase().IterationLimit = 100000;
                knapsack.Solver.Solve();
                Expect.Equal(QVSolutionStatus.Optimal, knapsack.Solver.Solution.Status);
            }
        }

        public void BoundsDoubleObjectives()
        {
            using (Quvex solver = new Quvex())
            {
                solver.Model.Maximize(0.5 * solver.Model.Bool());
                solver.Model.Close();
                solver.Param.SetDoubleObjectiveBound(0, 0.25);
                Expect.Equal(0.25, solver.Param.GetDoubleObjectiveBound(0));
            }
        }

        public void StartsFromTheSolutionThatIsSet()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                QVSolution solution = knapsack.Solver.Solution;
                knapsack.Items[0].Value = 1;
                solution.SetValue(knapsack.Items[1], 1);
                Expect.Equal(9L, knapsack.Weight.IntValue);
                solution.SetIntValue(knapsack.Items[2], 1);
                Expect.Equal(12L, solution.GetIntValue(knapsack.Weight));
                Expect.Equal(QVSolutionStatus.Infeasible, solution.Status);
                knapsack.Items[3].IntValue = 1;
                Expect.Equal(130L, knapsack.Value.Value);
                solution.Clear();
                Expect.Equal(0L, knapsack.Value.Value);
                Expect.Equal(0L, knapsack.Items[3].Value);
                Expect.Equal(knapsack.Solver, solution.Quvex);
            }
        }

        public void ReadsDoubleValues()
        {
            using (Quvex solver = new Quvex())
            {
                QVExpression x = solver.Model.Bool();
                QVExpression value = 2.5 * x;
                solver.Model.Maximize(value);
                solver.Model.Close();
                x.Value = 1;
                Expect.Equal(2.5, value.DoubleValue);
                Expect.Equal(2.5, solver.Solution.GetDoubleValue(value));
            }
        }

        public void SurvivesAFile()
        {
            foreach (string ending in new[] { ".qvm", ".qvm.gz", ".qvb", ".qvb.gz" })
            {
                string fileName = "mòdèl 模型" + ending;
                using (Knapsack knapsack = new Knapsack())
                {
                    knapsack.Items[3].Value = 1;
                    knapsack.Solver.CreatePhase().IterationLimit = 500;
                    knapsack.Solver.SaveEnvironment(fileName);
                }
                Expect.True(File.Exists(fileName), "the file " + fileName);
                using (Quvex copy = new Quvex())
                {
                    copy.LoadEnvironment(fileName);
                    Expect.Equal(QVState.Stopped, copy.State);
                    Expect.Equal(50L, copy.Model.GetObjective(0).Value);
                    Expect.Equal(500L, copy.GetPhase(0).IterationLimit);
                    copy.Solve();
                    Expect.Equal(120L, copy.Model.GetObjective(0).Value);
                }
                File.Delete(fileName);
            }
        }

        public void RunsManySolversOneAfterTheOther()
        {
            List<long> values = new List<long>();
            for (int i = 0; i < 20; ++i)
            {
                using (Knapsack knapsack = new Knapsack())
                {
                    knapsack.Solver.Param.NbThreads = 2;
                    knapsack.Solver.CreatePhase().IterationLimit = 500;
                    knapsack.Solver.Solve();
                    values.Add(knapsack.Value.Value);
                }
            }
            Expect.True(values.TrueForAll(v => v == 120), "the best value each time");
        }
    }
}
