using System;
using System.Collections.Generic;

namespace QuvexNet.Tests
{
    /// <summary>Every call against the rule of its method arrives as an exception with message, function and file.</summary>
    internal sealed class RefusalTests
    {
        private const string NotRunning =
            "This method cannot be called in state Running (the model must not be closed or the solver must be paused "
            + "or stopped).";
        private const string StoppedOnly =
            "This method is only allowed in state Stopped (the model must be closed and the solver must be stopped).";
        private const string PausedOrStopped =
            "This method is only allowed in states Paused or Stopped (the model must be closed and the solver must be "
            + "paused or stopped).";
        private const string ModelingOnly =
            "This method is only allowed in state Modeling (the model must not be closed).";

        /// <summary>A method of the library under its native name, its rule, and a call.</summary>
        private struct Case
        {
            internal string Function;
            internal string Rule;
            internal Action Call;
        }

        private sealed class Cases : List<Case>
        {
            internal void Add(string function, string rule, Action call)
            {
                Add(new Case { Function = function, Rule = rule, Call = call });
            }

            internal void Add<T>(string function, string rule, Func<T> call)
            {
                Add(function, rule, () => { call(); });
            }
        }

        /// <summary>What needs a solver and its model only.</summary>
        private static Cases OfTheModel(Quvex q, QVModel m, QVExpression e)
        {
            return new Cases
            {
                { "Quvex::createPhase", StoppedOnly, () => q.CreatePhase() },
                { "Quvex::getModel", NotRunning, () => q.Model },
                { "Quvex::getNbPhases", PausedOrStopped, () => q.NbPhases },
                { "Quvex::getParam", NotRunning, () => q.Param },
                { "Quvex::getPhase", PausedOrStopped, () => q.GetPhase(0) },
                { "Quvex::getSolution", PausedOrStopped, () => q.Solution },
                { "Quvex::getStatistics", PausedOrStopped, () => q.Statistics },
                { "Quvex::loadEnvironment", ModelingOnly, () => q.LoadEnvironment("any.qvm") },
                { "Quvex::saveEnvironment", NotRunning, () => q.SaveEnvironment("any.qvm") },
                { "Quvex::solve", StoppedOnly, () => q.Solve() },
                { "Quvex::toString", NotRunning, () => q.ToString() },
                { "QVModel::addConstraint", ModelingOnly, () => m.AddConstraint(e) },
                { "QVModel::addObjective", ModelingOnly, () => m.Minimize(e) },
                { "QVModel::close", ModelingOnly, () => m.Close() },
                { "QVModel::getConstraint", NotRunning, () => m.GetConstraint(0) },
                { "QVModel::getDecision", NotRunning, () => m.GetDecision(0) },
                { "QVModel::getExpression", NotRunning, () => m.GetExpression(0) },
                { "QVModel::getExpression", NotRunning, () => m.GetExpression("any") },
                { "QVModel::getQuvex", NotRunning, () => m.Quvex },
                { "QVModel::getNbConstraints", NotRunning, () => m.NbConstraints },
                { "QVModel::getNbDecisions", NotRunning, () => m.NbDecisions },
                { "QVModel::getNbExpressions", NotRunning, () => m.NbExpressions },
                { "QVModel::getNbObjectives", NotRunning, () => m.NbObjectives },
                { "QVModel::getNbOperands", NotRunning, () => m.NbOperands },
                { "QVModel::getObjective", NotRunning, () => m.GetObjective(0) },
                { "QVModel::getObjectiveDirection", NotRunning, () => m.GetObjectiveDirection(0) },
                { "QVModel::isClosed", NotRunning, () => m.IsClosed },
                { "QVModel::open", StoppedOnly, () => m.Open() },
                { "QVModel::toString", NotRunning, () => m.ToString() },
                { "QVModel::createConstant", ModelingOnly, () => m.Constant(1) },
                { "QVModel::createConstant", ModelingOnly, () => m.Constant(1.5) },
                { "QVModel::createExpression", ModelingOnly, () => m.Bool() },
                { "QVModel::createExpression", ModelingOnly, () => e + e },
                { "QVModel::createConstant", ModelingOnly, () => e + 1 },
                { "QVExpression::addOperand", ModelingOnly, () => e.AddOperand(1) },
                { "QVExpression::addOperand", ModelingOnly, () => e.AddOperand(1.5) },
                { "QVExpression::getInfo", NotRunning, () => e.Info },
                { "QVExpression::getQuvex", NotRunning, () => e.Quvex },
                { "QVExpression::getModel", NotRunning, () => e.Model },
                { "QVExpression::getIndex", NotRunning, () => e.Index },
                { "QVExpression::getName", NotRunning, () => e.Name },
                { "QVExpression::getNbOperands", NotRunning, () => e.NbOperands },
                { "QVExpression::getOperand", NotRunning, () => e.GetOperand(0) },
                { "QVExpression::getOperator", NotRunning, () => e.Operator },
                { "QVExpression::isBool", PausedOrStopped, () => e.IsBool },
                { "QVExpression::isConstant", NotRunning, () => e.IsConstant },
                { "QVExpression::isConstraint", NotRunning, () => e.IsConstraint },
                { "QVExpression::isDecision", NotRunning, () => e.IsDecision },
                { "QVExpression::isDouble", PausedOrStopped, () => e.IsDouble },
                { "QVExpression::isInt", PausedOrStopped, () => e.IsInt },
                { "QVExpression::isNamed", NotRunning, () => e.IsNamed },
                { "QVExpression::isObjective", NotRunning, () => e.IsObjective },
                { "QVExpression::setName", ModelingOnly, () => e.Name = "any" },
                { "QVExpression::setOperand", NotRunning, () => e.SetOperand(0, e) },
                { "QVModel::createConstant", ModelingOnly, () => e.SetOperand(0, 1) },
                { "QVModel::createConstant", ModelingOnly, () => e.SetOperand(0, 1.5) },
                { "QVExpression::setDoubleValue", PausedOrStopped, () => e.DoubleValue = 1.5 },
                { "QVExpression::setIntValue", PausedOrStopped, () => e.IntValue = 1 },
                { "QVExpression::setValue", PausedOrStopped, () => e.Value = 1 },
                { "QVExpression::toString", NotRunning, () => e.ToString() },
            };
        }

        /// <summary>Of two rules in a row, NotRunning comes first, since constants have a value in Modeling, too.</summary>
        private static Cases OfTheValues(QVExpression e, string rule)
        {
            return new Cases
            {
                { "QVExpression::getDoubleValue", rule, () => e.DoubleValue },
                { "QVExpression::getIntValue", rule, () => e.IntValue },
                { "QVExpression::getValue", rule, () => e.Value },
            };
        }

        private static Cases OfTheParameters(QVParam p)
        {
            return new Cases
            {
                { "QVParam::getQuvex", NotRunning, () => p.Quvex },
                { "QVParam::getAdvancedParam", PausedOrStopped, () => p.GetAdvancedParam("any") },
                { "QVParam::getAdvancedParam", PausedOrStopped, () => p.GetAdvancedParam("any", 1) },
                { "QVParam::setAdvancedParam", NotRunning, () => p.SetAdvancedParam("any", 1) },
                { "QVParam::getAnnealingLevel", PausedOrStopped, () => p.AnnealingLevel },
                { "QVParam::setAnnealingLevel", StoppedOnly, () => p.AnnealingLevel = 1 },
                { "QVParam::getNbThreads", PausedOrStopped, () => p.NbThreads },
                { "QVParam::setNbThreads", StoppedOnly, () => p.NbThreads = 1 },
                { "QVParam::getSeed", PausedOrStopped, () => p.Seed },
                { "QVParam::setSeed", StoppedOnly, () => p.Seed = 1 },
                { "QVParam::getTimeBetweenDisplays", PausedOrStopped, () => p.TimeBetweenDisplays },
                { "QVParam::setTimeBetweenDisplays", StoppedOnly, () => p.TimeBetweenDisplays = 1 },
                { "QVParam::getVerbosity", PausedOrStopped, () => p.Verbosity },
                { "QVParam::setVerbosity", StoppedOnly, () => p.Verbosity = 0 },
                { "QVParam::getObjectiveBound", PausedOrStopped, () => p.GetObjectiveBound(0) },
                { "QVParam::setObjectiveBound", StoppedOnly, () => p.SetObjectiveBound(0, 1) },
                { "QVParam::getIntObjectiveBound", PausedOrStopped, () => p.GetIntObjectiveBound(0) },
                { "QVParam::setIntObjectiveBound", StoppedOnly, () => p.SetIntObjectiveBound(0, 1) },
                { "QVParam::getDoubleObjectiveBound", PausedOrStopped, () => p.GetDoubleObjectiveBound(0) },
                { "QVParam::setDoubleObjectiveBound", StoppedOnly, () => p.SetDoubleObjectiveBound(0, 1.5) },
                { "QVParam::toString", NotRunning, () => p.ToString() },
            };
        }

        /// <summary>What exists once the model has been closed.</summary>
        private static Cases OfTheResults(QVExpression e, QVPhase phase, QVSolution s, QVStatistics t)
        {
            return new Cases
            {
                { "QVPhase::getQuvex", StoppedOnly, () => phase.Quvex },
                { "QVPhase::getTimeLimit", PausedOrStopped, () => phase.TimeLimit },
                { "QVPhase::setTimeLimit", StoppedOnly, () => phase.TimeLimit = 1 },
                { "QVPhase::getIterationLimit", PausedOrStopped, () => phase.IterationLimit },
                { "QVPhase::setIterationLimit", StoppedOnly, () => phase.IterationLimit = 1 },
                { "QVPhase::getOptimizedObjective", PausedOrStopped, () => phase.OptimizedObjective },
                { "QVPhase::setOptimizedObjective", StoppedOnly, () => phase.OptimizedObjective = 0 },
                { "QVPhase::getStatistics", PausedOrStopped, () => phase.Statistics },
                { "QVSolution::getQuvex", NotRunning, () => s.Quvex },
                { "QVSolution::getStatus", PausedOrStopped, () => s.Status },
                { "QVSolution::getValue", PausedOrStopped, () => s.GetValue(e) },
                { "QVSolution::setValue", PausedOrStopped, () => s.SetValue(e, 1) },
                { "QVSolution::getIntValue", PausedOrStopped, () => s.GetIntValue(e) },
                { "QVSolution::setIntValue", PausedOrStopped, () => s.SetIntValue(e, 1) },
                { "QVSolution::getDoubleValue", PausedOrStopped, () => s.GetDoubleValue(e) },
                { "QVSolution::setDoubleValue", PausedOrStopped, () => s.SetDoubleValue(e, 1.5) },
                { "QVSolution::clear", StoppedOnly, () => s.Clear() },
                { "QVStatistics::getQuvex", PausedOrStopped, () => t.Quvex },
                { "QVStatistics::getRunningTime", PausedOrStopped, () => t.RunningTime },
                { "QVStatistics::getNbIterations", PausedOrStopped, () => t.NbIterations },
                { "QVStatistics::getNbMoves", PausedOrStopped, () => t.NbMoves },
                { "QVStatistics::getNbAcceptedMoves", PausedOrStopped, () => t.NbAcceptedMoves },
                { "QVStatistics::getNbImprovingMoves", PausedOrStopped, () => t.NbImprovingMoves },
                { "QVStatistics::getNbInfeasibleMoves", PausedOrStopped, () => t.NbInfeasibleMoves },
                { "QVStatistics::getNbRejectedMoves", PausedOrStopped, () => t.NbRejectedMoves },
                { "QVStatistics::getPercentAcceptedMoves", PausedOrStopped, () => t.PercentAcceptedMoves },
                { "QVStatistics::getPercentImprovingMoves", PausedOrStopped, () => t.PercentImprovingMoves },
                { "QVStatistics::getPercentInfeasibleMoves", PausedOrStopped, () => t.PercentInfeasibleMoves },
                { "QVStatistics::getPercentRejectedMoves", PausedOrStopped, () => t.PercentRejectedMoves },
                { "QVStatistics::toString", PausedOrStopped, () => t.ToString() },
            };
        }

        private static void ExpectRefusals(IEnumerable<Case> cases, params string[] rules)
        {
            foreach (Case c in cases)
            {
                if (Array.IndexOf(rules, c.Rule) >= 0) Expect.Refused(c.Function, c.Rule, c.Call);
            }
        }

        public void InStateModeling()
        {
            using (Quvex solver = new Quvex())
            {
                QVExpression x = solver.Model.Bool();
                ExpectRefusals(OfTheModel(solver, solver.Model, x), StoppedOnly, PausedOrStopped);
                ExpectRefusals(OfTheValues(x, PausedOrStopped), PausedOrStopped);
                ExpectRefusals(OfTheParameters(solver.Param), StoppedOnly, PausedOrStopped);
            }
        }

        public void InStateModelingAfterReopening()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                Quvex solver = knapsack.Solver;
                QVPhase phase = solver.CreatePhase();
                QVSolution solution = solver.Solution;
                QVStatistics statistics = solver.Statistics;
                solver.Model.Open();
                ExpectRefusals(OfTheResults(knapsack.Items[0], phase, solution, statistics), StoppedOnly, PausedOrStopped);
            }
        }

        public void InStateStopped()
        {
            using (Knapsack knapsack = new Knapsack())
            {
                ExpectRefusals(OfTheModel(knapsack.Solver, knapsack.Solver.Model, knapsack.Items[0]), ModelingOnly);
            }
        }

        public void InStateRunning()
        {
            string[] all = { NotRunning, StoppedOnly, PausedOrStopped, ModelingOnly };
            using (RunningSearch search = new RunningSearch())
            {
                QVExpression x = search.Items[0];
                ExpectRefusals(OfTheModel(search.Solver, search.Model, x), all);
                ExpectRefusals(OfTheValues(x, NotRunning), all);
                ExpectRefusals(OfTheParameters(search.Param), all);
                ExpectRefusals(OfTheResults(x, search.Phase, search.Solution, search.Statistics), all);
                Expect.Refused("Quvex::getInfo", PausedOrStopped, () => GC.KeepAlive(search.Solver.Info));
                Expect.Refused("QVStatistics::getInfo", PausedOrStopped, () => GC.KeepAlive(search.Statistics.Info));
                Expect.Refused("QVExpression::addOperand", NotRunning, () => x.AddOperand(x));
                Expect.Equal("no time limit, no iteration limit, optimized objective = 0", search.Phase.ToString());
            }
        }

        public void BeforeTheFirstSolve()
        {
            const string text = "This method cannot be called if the solver has not been started at least once.";
            using (Knapsack knapsack = new Knapsack())
            {
                Quvex solver = knapsack.Solver;
                Expect.Refused("Quvex::getInfo", text, () => GC.KeepAlive(solver.Info));
                Expect.Refused("QVStatistics::getInfo", text, () => GC.KeepAlive(solver.Statistics.Info));
            }
        }
    }
}
