// Generalised assignment: every job goes to exactly one agent, agents have limited hours, the cost is to be least.
using System.Collections.Generic;
using System.Linq;

namespace QuvexNet.Examples
{
    internal sealed class Assignment : IExample
    {
        private const int NbAgents = 10;
        private const int NbJobs = 60;
        private const int Capacity = 200;

        private readonly int[,] cost = new int[NbAgents, NbJobs];
        private readonly int[,] hours = new int[NbAgents, NbJobs];
        private readonly QVExpression[,] assigned = new QVExpression[NbAgents, NbJobs];
        private QVExpression totalCost;

        private Assignment()
        {
            DataRandom random = new DataRandom(2);
            foreach (int a in Agents)
            {
                foreach (int j in Jobs)
                {
                    cost[a, j] = random.Between(10, 50);
                    hours[a, j] = 60 - cost[a, j] + random.Between(-5, 5);  // who is cheap is slow
                }
            }
        }

        private static IEnumerable<int> Agents
        {
            get { return Enumerable.Range(0, NbAgents); }
        }

        private static IEnumerable<int> Jobs
        {
            get { return Enumerable.Range(0, NbJobs); }
        }

        public void Build(QVModel model)
        {
            foreach (int a in Agents)
            {
                foreach (int j in Jobs) assigned[a, j] = model.Bool();
            }
            foreach (int j in Jobs) model.AddConstraint(model.Eq(model.Sum(Agents.Select(a => assigned[a, j])), 1));
            foreach (int a in Agents)
            {
                model.AddConstraint(model.Sum(Jobs.Select(j => hours[a, j] * assigned[a, j])) <= Capacity);
            }
            totalCost = model.Sum(Agents.SelectMany(a => Jobs.Select(j => cost[a, j] * assigned[a, j])));
            model.Minimize(totalCost);
        }

        public string FindFault()
        {
            foreach (int j in Jobs)
            {
                int nbAgents = Agents.Count(a => IsAssigned(a, j));
                if (nbAgents != 1) return "job " + j + " has " + nbAgents + " agents";
            }
            foreach (int a in Agents)
            {
                if (JobsOf(a).Sum(j => hours[a, j]) > Capacity) return "an agent works too long";
            }
            int total = Agents.Sum(a => JobsOf(a).Sum(j => cost[a, j]));
            return total == totalCost.Value ? null : "the cost is another one";
        }

        private static int Main(string[] arguments)
        {
            return Example.Run(new Assignment(), arguments, 500000);
        }

        private bool IsAssigned(int a, int j)
        {
            return assigned[a, j].Value == 1;
        }

        private IEnumerable<int> JobsOf(int a)
        {
            return Jobs.Where(j => IsAssigned(a, j));
        }
    }
}
