using System;

namespace QuvexNet
{
    /// <summary>
    /// Every failure of the library: what went wrong, in a sentence, and where it was found. The line
    /// <see cref="Exception.Message"/> reads "ERROR [function &lt;FunctionName&gt;]: &lt;Explanation&gt;".
    /// </summary>
    public sealed class QVException : Exception
    {
        /// <summary>A failure as the library would raise it.</summary>
        public QVException(string fileName, int lineNumber, string functionName, string explanation)
            : this(Content.Of(fileName, lineNumber, functionName, explanation))
        {
        }

        private QVException(Content content)
            : base(content.Message)
        {
            FileName = content.FileName;
            LineNumber = content.LineNumber;
            FunctionName = content.FunctionName;
            Explanation = content.Explanation;
        }

        /// <summary>Source file that raised the failure, such as "src/api/qvmodel.cpp".</summary>
        public string FileName { get; private set; }

        /// <summary>Line of that file.</summary>
        public int LineNumber { get; private set; }

        /// <summary>Qualified name of the native method, such as "quvex::QVModel::close".</summary>
        public string FunctionName { get; private set; }

        /// <summary>The sentence alone.</summary>
        public string Explanation { get; private set; }

        /// <summary>Copies a native exception and ends it.</summary>
        internal static QVException Take(IntPtr native)
        {
            return new QVException(Content.Take(native));
        }

        /// <summary>What a native exception holds.</summary>
        private struct Content
        {
            internal string FileName;
            internal int LineNumber;
            internal string FunctionName;
            internal string Explanation;
            internal string Message;

            internal static Content Of(string fileName, int lineNumber, string functionName, string explanation)
            {
                IntPtr native = Native.CSharp_new_QVException(
                    Utf8.Encode(fileName), lineNumber, Utf8.Encode(functionName), Utf8.Encode(explanation));
                Callbacks.ThrowPending();
                return Take(native);
            }

            internal static Content Take(IntPtr native)
            {
                try
                {
                    return new Content
                    {
                        FileName = Callbacks.TakeText(Native.CSharp_QVException_GetFileName(native)),
                        LineNumber = Native.CSharp_QVException_GetLineNumber(native),
                        FunctionName = Callbacks.TakeText(Native.CSharp_QVException_GetFunctionName(native)),
                        Explanation = Callbacks.TakeText(Native.CSharp_QVException_GetExplanation(native)),
                        Message = Callbacks.TakeText(Native.CSharp_QVException_GetMessage(native)),
                    };
                }
                finally
                {
                    Native.CSharp_delete_QVException(native);
                }
            }
        }
    }
}
