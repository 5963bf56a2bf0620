// Multidimensional knapsack: choose projects for the greatest profit within several budgets.
using System.Linq;

namespace QuvexNet.Examples
{
    internal sealed class MultiKnapsack : IExample
    {
        private const int NbProjects = 500;
        private const int NbBudgets = 10;

        private readonly int[] profits;
        private readonly int[][] costs;
        private readonly int[] budgets;
        private QVExpression[] chosen;
        private QVExpression profit;

        private MultiKnapsack()
        {
            DataRandom random = new DataRandom(1);
            profits = Enumerable.Range(0, NbProjects).Select(i => random.Between(10, 100)).ToArray();
            costs = Enumerable.Range(0, NbBudgets)
                .Select(r => profits.Select(p => random.Between(1, 60) + p / 2).ToArray()).ToArray();
            budgets = costs.Select(c => c.Sum() / 4).ToArray();  // a quarter of all projects fits
        }

        public void Build(QVModel model)
        {
            chosen = profits.Select(p => model.Bool()).ToArray();
            for (int r = 0; r < NbBudgets; ++r) model.AddConstraint(WeightedSum(model, costs[r]) <= budgets[r]);
            profit = WeightedSum(model, profits);
            model.Maximize(profit);
        }

        public string FindFault()
        {
            for (int r = 0; r < NbBudgets; ++r)
            {
                if (Total(costs[r]) > budgets[r]) return "budget " + r + " is exceeded";
            }
            return Total(profits) == profit.Value ? null : "the profit is another one";
        }

        private static int Main(string[] arguments)
        {
            return Example.Run(new MultiKnapsack(), arguments, 2000000);
        }

        private QVExpression WeightedSum(QVModel model, int[] weights)
        {
            return model.Sum(weights.Zip(chosen, (weight, project) => weight * project));
        }

        private long Total(int[] weights)
        {
            return weights.Zip(chosen, (weight, project) => weight * project.Value).Sum();
        }
    }
}
