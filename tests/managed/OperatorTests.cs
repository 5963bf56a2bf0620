using System;
using System.Linq;

namespace QuvexNet.Tests
{
    internal sealed class OperatorTests : IDisposable
    {
        private readonly Quvex solver = new Quvex();
        private readonly QVModel model;
        private readonly QVExpression x;
        private readonly QVExpression y;

        internal OperatorTests()
        {
            model = solver.Model;
            x = model.Bool();
            y = model.Bool();
            x.Name = "x";
            y.Name = "y";
        }

        public void Dispose()
        {
            solver.Dispose();
        }

        /// <summary>An expression in prefix form, such as "leq(sum(x,y),3)".</summary>
        private static string Form(QVExpression e)
        {
            if (e.IsNamed) return e.Name;
            if (e.IsConstant)
            {
                string info = e.Info;
                return info.Substring(info.IndexOf("value = ", StringComparison.Ordinal) + 8).Trim();
            }
            string[] operands = Enumerable.Range(0, e.NbOperands).Select(i => Form(e.GetOperand(i))).ToArray();
            return e.Operator.ToString().ToLowerInvariant() + "(" + string.Join(",", operands) + ")";
        }

        public void CompareWithExpressionsAndNumbers()
        {
            Expect.Equal("leq(sum(x,y),3)", Form(model.Sum(x, y) <= 3));
            Expect.Equal("leq(x,y)", Form(x <= y));
            Expect.Equal("geq(x,y)", Form(x >= y));
            Expect.Equal("lt(x,y)", Form(x < y));
            Expect.Equal("gt(x,y)", Form(x > y));
            Expect.Equal("geq(3,x)", Form(3 >= x));
            Expect.Equal("lt(x,2.5)", Form(x < 2.5));
            Expect.Equal("gt(2.5,x)", Form(2.5 > x));
            Expect.Equal("eq(x,y)", Form(model.Eq(x, y)));
            Expect.Equal("eq(x,3)", Form(model.Eq(x, 3)));
            Expect.Equal("neq(x,2.5)", Form(model.Neq(x, 2.5)));
        }

        public void CalculateWithExpressionsAndNumbers()
        {
            Expect.Equal("sum(x,y)", Form(x + y));
            Expect.Equal("sum(x,4)", Form(x + 4));
            Expect.Equal("sum(0.5,x)", Form(0.5 + x));
            Expect.Equal("sum(x,prod(-1,y))", Form(x - y));
            Expect.Equal("sum(x,-4)", Form(x - 4));
            Expect.Equal("sum(4,prod(-1,x))", Form(4 - x));
            Expect.Equal("sum(x,-0.5)", Form(x - 0.5));
            Expect.Equal("prod(-1,x)", Form(-x));
            Expect.Equal("prod(4,x)", Form(4 * x));
            Expect.Equal("prod(x,0.5)", Form(x * 0.5));
            Expect.Equal("div(x,y)", Form(x / y));
            Expect.Equal("div(x,4)", Form(x / 4));
            Expect.Equal("mod(x,4)", Form(x % 4));
            Expect.Equal("mod(4,x)", Form(4 % x));
        }

        public void CombineBooleans()
        {
            Expect.Equal("and(x,y)", Form(x & y));
            Expect.Equal("or(x,y)", Form(x | y));
            Expect.Equal("xor(x,y)", Form(x ^ y));
            Expect.Equal("not(x)", Form(!x));
            Expect.Equal("and(x,y,x)", Form(model.And(x, y, x)));
            Expect.Equal("or(x)", Form(model.Or(x)));
            Expect.Equal("xor(x,y,x)", Form(model.Xor(x, y, x)));
            Expect.Equal("not(x)", Form(model.Not(x)));
        }

        public void CoverTheOtherFunctionsOfTheModel()
        {
            QVExpression array = model.Array(x, y);
            Expect.Equal("array(x,y)", Form(array));
            Expect.Equal("at(array(x,y),x)", Form(model.At(array, x)));
            Expect.Equal("scalar(array(x,y),array(x,y))", Form(model.Scalar(array, array)));
            Expect.Equal("iif(x,y,x)", Form(model.If(x, y, x)));
            Expect.Equal("iif(x,2,3)", Form(model.If(x, 2, 3)));
            Expect.Equal("iif(x,0.5,1.5)", Form(model.If(x, 0.5, 1.5)));
            Expect.Equal("max(x,y)", Form(model.Max(x, y)));
            Expect.Equal("min(x,y)", Form(model.Min(new[] { x, y }.ToList())));
            Expect.Equal("prod(x,y,x)", Form(model.Prod(x, y, x)));
            Expect.Equal("abs(x)", Form(model.Abs(x)));
            Expect.Equal("dist(x,3)", Form(model.Dist(x, 3)));
            Expect.Equal("pow(x,2.5)", Form(model.Pow(x, 2.5)));
            QVExpression root = model.Sqrt(x);
            Expect.Equal("sqrt(x)", Form(root));
            Expect.Equal("ceil(sqrt(x))", Form(model.Ceil(root)));
            Expect.Equal("floor(sqrt(x))", Form(model.Floor(root)));
            Expect.Equal("round(sqrt(x))", Form(model.Round(root)));
            Expect.Equal("log(x)", Form(model.Log(x)));
            Expect.Equal("exp(x)", Form(model.Exp(x)));
            Expect.Equal("cos(x)", Form(model.Cos(x)));
            Expect.Equal("sin(x)", Form(model.Sin(x)));
            Expect.Equal("tan(x)", Form(model.Tan(x)));
        }

        public void TakeEveryMixtureOfExpressionsAndLiterals()
        {
            const QVOperator sum = QVOperator.Sum;
            Expect.Equal("sum()", Form(model.CreateExpression(sum)));
            Expect.Equal("sum(x)", Form(model.CreateExpression(sum, x)));
            Expect.Equal("sum(x,y)", Form(model.CreateExpression(sum, x, y)));
            Expect.Equal("sum(x,y,x)", Form(model.CreateExpression(sum, x, y, x)));
            Expect.Equal("sum(5)", Form(model.CreateExpression(sum, 5)));
            Expect.Equal("sum(5,6)", Form(model.CreateExpression(sum, 5, 6)));
            Expect.Equal("sum(5,y)", Form(model.CreateExpression(sum, 5, y)));
            Expect.Equal("sum(x,6)", Form(model.CreateExpression(sum, x, 6)));
            Expect.Equal("sum(5,6,7)", Form(model.CreateExpression(sum, 5, 6, 7)));
            Expect.Equal("sum(5,6,x)", Form(model.CreateExpression(sum, 5, 6, x)));
            Expect.Equal("sum(5,y,7)", Form(model.CreateExpression(sum, 5, y, 7)));
            Expect.Equal("sum(5,y,x)", Form(model.CreateExpression(sum, 5, y, x)));
            Expect.Equal("sum(x,6,7)", Form(model.CreateExpression(sum, x, 6, 7)));
            Expect.Equal("sum(x,6,x)", Form(model.CreateExpression(sum, x, 6, x)));
            Expect.Equal("sum(x,y,7)", Form(model.CreateExpression(sum, x, y, 7)));
            Expect.Equal("sum(0.5)", Form(model.CreateExpression(sum, 0.5)));
            Expect.Equal("sum(0.5,1.5)", Form(model.CreateExpression(sum, 0.5, 1.5)));
            Expect.Equal("sum(0.5,y)", Form(model.CreateExpression(sum, 0.5, y)));
            Expect.Equal("sum(x,1.5)", Form(model.CreateExpression(sum, x, 1.5)));
            Expect.Equal("sum(0.5,1.5,2.5)", Form(model.CreateExpression(sum, 0.5, 1.5, 2.5)));
            Expect.Equal("sum(0.5,1.5,x)", Form(model.CreateExpression(sum, 0.5, 1.5, x)));
            Expect.Equal("sum(0.5,y,2.5)", Form(model.CreateExpression(sum, 0.5, y, 2.5)));
            Expect.Equal("sum(0.5,y,x)", Form(model.CreateExpression(sum, 0.5, y, x)));
            Expect.Equal("sum(x,1.5,2.5)", Form(model.CreateExpression(sum, x, 1.5, 2.5)));
            Expect.Equal("sum(x,1.5,x)", Form(model.CreateExpression(sum, x, 1.5, x)));
            Expect.Equal("sum(x,y,2.5)", Form(model.CreateExpression(sum, x, y, 2.5)));
        }
    }
}
