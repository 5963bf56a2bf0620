using System;

namespace QuvexNet.Tests
{
    internal sealed class ExpectationException : Exception
    {
        internal ExpectationException(string message)
            : base(message)
        {
        }
    }

    /// <summary>What a test expects; anything else is an <see cref="ExpectationException"/>.</summary>
    internal static class Expect
    {
        internal static void Equal<T>(T expected, T actual)
        {
            if (!Equals(expected, actual))
            {
                throw new ExpectationException(string.Format("expected <{0}>, got <{1}>", expected, actual));
            }
        }

        internal static void True(bool condition, string what)
        {
            if (!condition) throw new ExpectationException("expected " + what);
        }

        /// <summary>The exception of exactly this type that the call throws.</summary>
        internal static T Throws<T>(Action call)
            where T : Exception
        {
            try
            {
                call();
            }
            catch (T exception)
            {
                if (exception.GetType() == typeof(T)) return exception;
                throw;
            }
            throw new ExpectationException("expected " + typeof(T).Name + ", but nothing was thrown");
        }

        /// <summary>The library refuses the call: under the native name of the method, with this explanation.</summary>
        internal static void Refused(string function, string explanation, Action call)
        {
            QVException failure = Throws<QVException>(call);
            Equal("quvex::" + function, failure.FunctionName);
            Equal(explanation, failure.Explanation);
            Equal("ERROR [function quvex::" + function + "]: " + explanation, failure.Message);
            string source = failure.FunctionName.Split(new[] { "::" }, StringSplitOptions.None)[1].ToLowerInvariant();
            Equal("src/api/" + source + ".cpp", failure.FileName);
            True(failure.LineNumber > 0, "a line");
        }
    }
}
