namespace QuvexNet
{
    /// <summary>What is known of the current solution.</summary>
    public enum QVSolutionStatus
    {
        /// <summary>Some constraint can never hold.</summary>
        Inconsistent = 0,

        /// <summary>Some constraint does not hold.</summary>
        Infeasible = 1,

        /// <summary>Every constraint holds.</summary>
        Feasible = 2,

        /// <summary>Feasible, and every objective has reached its bound.</summary>
        Optimal = 3,
    }
}
