using System;

namespace QuvexNet.Tests
{
    internal sealed class ModelTests : IDisposable
    {
        private readonly Quvex solver = new Quvex();
        private readonly QVModel model;

        internal ModelTests()
        {
            model = solver.Model;
        }

        public void Dispose()
        {
            solver.Dispose();
        }

        public void CountsAndListsItsExpressions()
        {
            QVExpression x = model.Bool();
            QVExpression sum = model.Sum(x, x);
            QVExpression atMost = sum <= 1;
            model.AddConstraint(atMost);
            model.AddObjective(sum, QVObjectiveDirection.Maximize);
            model.Minimize(x);
            Expect.Equal(4, model.NbExpressions);
            Expect.Equal(1, model.NbDecisions);
            Expect.Equal(1, model.NbConstraints);
            Expect.Equal(2, model.NbObjectives);
            Expect.Equal(4, model.NbOperands);
            Expect.Equal(x, model.GetExpression(0));
            Expect.Equal(x, model.GetDecision(0));
            Expect.Equal(atMost, model.GetConstraint(0));
            Expect.Equal(sum, model.GetObjective(0));
            Expect.Equal(QVObjectiveDirection.Maximize, model.GetObjectiveDirection(0));
            Expect.Equal(QVObjectiveDirection.Minimize, model.GetObjectiveDirection(1));
            Expect.True(model.ToString().StartsWith("Model: \n  expressions = 4, operands = 4\n"), "a description");
        }

        public void GivesEqualObjectsForOneNativeObject()
        {
            QVExpression x = model.Bool();
            Expect.Equal(x, model.GetExpression(0));
            Expect.Equal(x.GetHashCode(), model.GetExpression(0).GetHashCode());
            Expect.True(!x.Equals(model.Bool()), "two decisions to differ");
            Expect.True(!x.Equals(null), "a decision to differ from nothing");
            Expect.Equal(solver, model.Quvex);
            Expect.Equal(solver, x.Quvex);
            Expect.Equal(model, x.Model);
            Expect.Equal(solver, solver.Param.Quvex);
        }

        public void TellsTheRolesAndTypesOfExpressions()
        {
            QVExpression x = model.Bool();
            QVExpression sum = x + 2;
            QVExpression root = model.Sqrt(sum);
            model.AddConstraint(x);
            model.Maximize(root);
            Expect.True(x.IsDecision && !sum.IsDecision, "one decision");
            Expect.True(x.IsConstraint && !sum.IsConstraint, "one constraint");
            Expect.True(root.IsObjective && !x.IsObjective, "one objective");
            Expect.True(sum.GetOperand(1).IsConstant && !sum.IsConstant, "one constant");
            Expect.True(!model.IsClosed, "an open model");
            model.Close();
            Expect.True(model.IsClosed, "a closed model");
            Expect.Equal(QVState.Stopped, solver.State);
            Expect.True(x.IsBool && !x.IsInt && !x.IsDouble, "a boolean");
            Expect.True(sum.IsInt && !sum.IsBool, "an integer");
            Expect.True(root.IsDouble && !root.IsInt, "a double");
            model.Open();
            Expect.Equal(QVState.Modeling, solver.State);
        }

        public void AddsAndReplacesOperands()
        {
            QVExpression x = model.Bool();
            QVExpression sum = model.Sum(x, x);
            sum.AddOperand(model.Bool());
            sum.AddOperand(5);
            sum.AddOperand(2.5);
            sum.SetOperand(0, model.Bool());
            sum.SetOperand(1, 6);
            sum.SetOperand(2, 3.5);
            Expect.Equal(5, sum.NbOperands);
            Expect.True(!x.Equals(sum.GetOperand(0)), "another operand");
            Expect.Equal(6L, sum.GetOperand(1).Value);
            Expect.Equal(3.5, sum.GetOperand(2).DoubleValue);
            Expect.Equal(5L, sum.GetOperand(3).IntValue);
            Expect.Equal(2.5, sum.GetOperand(4).DoubleValue);
        }

        public void MakesConstantsOfLiteralsFromTheLastToTheFirst()
        {
            model.CreateExpression(QVOperator.Prod, 5, 7);
            Expect.Equal(7L, model.GetExpression(0).Value);
            Expect.Equal(5L, model.GetExpression(1).Value);
        }

        public void RefusesForeignAndMissingExpressions()
        {
            using (Quvex other = new Quvex())
            {
                QVExpression foreign = other.Model.Bool();
                Expect.Refused("QVModel::addConstraint", "Argument expr does not belong to this instance of Quvex.",
                               () => model.AddConstraint(foreign));
                Expect.Refused("QVModel::addConstraint", "Argument expr cannot be null.", () => model.AddConstraint(null));
                Expect.Throws<ArgumentNullException>(() => GC.KeepAlive((QVExpression)null <= 3));
                Expect.Throws<ArgumentNullException>(() => model.Sum(null));
                Expect.Equal(0, model.NbExpressions);
            }
        }

        public void TellsTheVersion()
        {
            Expect.Equal(3, QVVersion.MajorVersionNumber);
            Expect.Equal(0, QVVersion.MinorVersionNumber);
            Expect.Equal(20130522, QVVersion.BuildDate);
            Expect.Equal(30, QVVersion.VersionCode);
            Expect.Equal("Win64", QVVersion.Platform);
            Expect.Equal("3.0.20130522-Win64", QVVersion.Version);
            Expect.Equal("Quvex 3.0 (Win64, build 20130522)\n" + QVVersion.Copyright + "\n", QVVersion.Info);
        }
    }
}
