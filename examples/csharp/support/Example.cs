using System;

namespace QuvexNet.Examples
{
    /// <summary>A model that builds itself from its own data, and later recomputes its answer from them.</summary>
    internal interface IExample
    {
        /// <summary>Fills the model of a new solver.</summary>
        void Build(QVModel model);

        /// <summary>What is wrong with the answer, or null.</summary>
        string FindFault();
    }

    /// <summary>The same data on every machine, and those of the example of the same name in C++.</summary>
    internal sealed class DataRandom
    {
        private uint state;

        internal DataRandom(uint seed)
        {
            state = seed;
        }

        /// <summary>Uniform in [low, high].</summary>
        internal int Between(int low, int high)
        {
            state = unchecked((state * 1664525u) + 1013904223u);
            return low + (int)((state >> 8) % (uint)(high - low + 1));
        }
    }

    /// <summary>What the examples share: a main that solves and checks.</summary>
    internal static class Example
    {
        /// <summary>PROGRAM [ITERATIONS]</summary>
        internal static int Run(IExample example, string[] arguments, long defaultIterations)
        {
            try
            {
                using (Quvex solver = new Quvex())
                {
                    example.Build(solver.Model);
                    solver.Model.Close();
                    solver.CreatePhase().IterationLimit =
                        arguments.Length > 0 ? long.Parse(arguments[0]) : defaultIterations;
                    solver.Solve();
                    string fault = example.FindFault();
                    Console.WriteLine(fault == null ? "The answer holds." : "The answer is wrong: " + fault);
                    return fault == null ? 0 : 1;
                }
            }
            catch (QVException failure)
            {
                Console.Error.WriteLine(failure.Message);
                return 1;
            }
        }
    }
}
