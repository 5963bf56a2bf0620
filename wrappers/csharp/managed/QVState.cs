namespace QuvexNet
{
    /// <summary>Lifecycle of a solver, which decides what may be called.</summary>
    public enum QVState
    {
        /// <summary>The model is open and may be changed.</summary>
        Modeling = 0,

        /// <summary>Search threads are working.</summary>
        Running = 1,

        /// <summary>Inside a solve, with all threads held.</summary>
        Paused = 2,

        /// <summary>The model is closed and no search is in progress.</summary>
        Stopped = 3,
    }
}
