using System;

namespace QuvexNet
{
    /// <summary>What the native library tells of its build.</summary>
    public static class QVVersion
    {
        /// <summary>First number of the version.</summary>
        public static int MajorVersionNumber
        {
            get { return Native.CSharp_QVVersion_GetMajorVersionNumber(); }
        }

        /// <summary>Second number of the version.</summary>
        public static int MinorVersionNumber
        {
            get { return Native.CSharp_QVVersion_GetMinorVersionNumber(); }
        }

        /// <summary>Year, month and day in one number.</summary>
        public static int BuildDate
        {
            get { return Native.CSharp_QVVersion_GetBuildDate(); }
        }

        /// <summary>Ten times the first number, plus the second one.</summary>
        public static int VersionCode
        {
            get { return Native.CSharp_QVVersion_GetVersionCode(); }
        }

        /// <summary>What the library was built for.</summary>
        public static string Platform
        {
            get { return Text(Native.CSharp_QVVersion_GetPlatform()); }
        }

        /// <summary>All of these in one text.</summary>
        public static string Version
        {
            get { return Text(Native.CSharp_QVVersion_GetVersion()); }
        }

        /// <summary>The legal notice.</summary>
        public static string Copyright
        {
            get { return Text(Native.CSharp_QVVersion_GetCopyright()); }
        }

        /// <summary>Name, version and legal notice, on lines of their own.</summary>
        public static string Info
        {
            get { return Text(Native.CSharp_QVVersion_GetInfo()); }
        }

        private static string Text(IntPtr handle)
        {
            string text = Callbacks.TakeText(handle);
            Callbacks.ThrowPending();
            return text;
        }
    }
}
