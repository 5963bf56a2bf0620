using System;
using System.Diagnostics;

namespace QuvexNet.Bench
{
    /// <summary>
    /// Building a model from C#: prints the seconds that a knapsack of some number of expressions takes, a million by
    /// default. The benchmark "build" of model_bench does the same in C++.
    /// </summary>
    internal static class ModelBuild
    {
        private static int Main(string[] arguments)
        {
            int nbItems = (arguments.Length > 0 ? int.Parse(arguments[0]) : 1000000) / 3;
            Build(1000);  // what the runtime compiles at the first call is not measured
            Stopwatch watch = Stopwatch.StartNew();
            int nbExpressions = Build(nbItems);
            Console.WriteLine("{0} expressions in {1:0.000} s", nbExpressions, watch.Elapsed.TotalSeconds);
            return 0;
        }

        /// <summary>Per item one decision and two products, over constants from 10 to 99.</summary>
        private static int Build(int nbItems)
        {
            using (Quvex solver = new Quvex())
            {
                QVModel model = solver.Model;
                QVExpression weight = model.Sum();
                QVExpression value = model.Sum();
                for (int i = 0; i < nbItems; ++i)
                {
                    QVExpression item = model.Bool();
                    weight.AddOperand((10 + (i % 90)) * item);
                    value.AddOperand((99 - (i % 90)) * item);
                }
                model.AddConstraint(weight <= 27 * nbItems);
                model.Maximize(value);
                return model.NbExpressions;
            }
        }
    }
}
