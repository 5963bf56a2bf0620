using System;
using System.Runtime.InteropServices;
using System.Text;

namespace QuvexNet
{
    /// <summary>Texts on their way to and from the native library, which has them in UTF-8, ended by NUL.</summary>
    internal static class Utf8
    {
        // Half a surrogate pair has no UTF-8 form: refused, because a name must come back as it was given.
        private static readonly Encoding Strict = new UTF8Encoding(false, true);
        private static readonly Encoding Tolerant = new UTF8Encoding(false, false);

        /// <summary>Null stays null.</summary>
        internal static byte[] Encode(string text)
        {
            if (text == null) return null;
            if (text.IndexOf('\0') >= 0) throw new ArgumentException("A text cannot hold the character NUL.");
            byte[] bytes = new byte[Strict.GetByteCount(text) + 1];
            Strict.GetBytes(text, 0, text.Length, bytes, 0);
            return bytes;
        }

        /// <summary>Null stays null.</summary>
        internal static string Decode(IntPtr text)
        {
            if (text == IntPtr.Zero) return null;
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0) ++length;
            byte[] bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Tolerant.GetString(bytes);
        }
    }
}
