namespace QuvexNet
{
    /// <summary>Sense of an objective.</summary>
    public enum QVObjectiveDirection
    {
        /// <summary>The smaller, the better.</summary>
        Minimize = 0,

        /// <summary>The larger, the better.</summary>
        Maximize = 1,
    }
}
