namespace QuvexNet
{
    /// <summary>The operators of a model.</summary>
    public enum QVOperator
    {
        /// <summary>A boolean decision.</summary>
        Bool = 0,

        /// <summary>A constant, made with <see cref="QVModel.CreateConstant(long)"/> only.</summary>
        Const = 1,

        /// <summary>Sum of all operands.</summary>
        Sum = 2,

        /// <summary>Product of all operands.</summary>
        Prod = 3,

        /// <summary>Largest operand.</summary>
        Max = 4,

        /// <summary>Smallest operand.</summary>
        Min = 5,

        /// <summary>a == b.</summary>
        Eq = 6,

        /// <summary>a != b.</summary>
        Neq = 7,

        /// <summary>a &gt;= b.</summary>
        Geq = 8,

        /// <summary>a &lt;= b.</summary>
        Leq = 9,

        /// <summary>a &gt; b.</summary>
        Gt = 10,

        /// <summary>a &lt; b.</summary>
        Lt = 11,

        /// <summary>The second operand when the first one holds, the third one otherwise.</summary>
        Iif = 12,

        /// <summary>Negation of a boolean.</summary>
        Not = 13,

        /// <summary>All operands hold.</summary>
        And = 14,

        /// <summary>Some operand holds.</summary>
        Or = 15,

        /// <summary>An odd number of operands holds.</summary>
        Xor = 16,

        /// <summary>|a|.</summary>
        Abs = 17,

        /// <summary>|a - b|.</summary>
        Dist = 18,

        /// <summary>a / b, truncated when both are integers.</summary>
        Div = 19,

        /// <summary>Remainder of a / b, integers only.</summary>
        Mod = 20,

        /// <summary>A list of expressions for "at" and "scalar"; it has no value of its own.</summary>
        Array = 21,

        /// <summary>The element of an array at an index.</summary>
        At = 22,

        /// <summary>Scalar product of two arrays.</summary>
        Scalar = 23,

        /// <summary>Smallest integer not below a double.</summary>
        Ceil = 24,

        /// <summary>Largest integer not above a double.</summary>
        Floor = 25,

        /// <summary>Integer nearest to a double.</summary>
        Round = 26,

        /// <summary>Square root.</summary>
        Sqrt = 27,

        /// <summary>Natural logarithm.</summary>
        Log = 28,

        /// <summary>Exponential.</summary>
        Exp = 29,

        /// <summary>a to the power of b.</summary>
        Pow = 30,

        /// <summary>Cosine, of radians.</summary>
        Cos = 31,

        /// <summary>Sine, of radians.</summary>
        Sin = 32,

        /// <summary>Tangent, of radians.</summary>
        Tan = 33,
    }
}
