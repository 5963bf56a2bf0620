using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Threading;

namespace QuvexNet
{
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void ExceptionCallback(IntPtr message);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void ArgumentCallback(IntPtr message, IntPtr parameter);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate IntPtr StringCallback(IntPtr text);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void FailureCallback(IntPtr exception);

    /// <summary>
    /// What the native library calls. An exception must not run through native frames: it is kept here, for the thread
    /// that made the call, and thrown when the call has returned.
    /// </summary>
    internal static class Callbacks
    {
        // Fields, because the native library holds pointers to these that the collector does not see.
        private static readonly ExceptionCallback Application = m => Keep(new ApplicationException(Utf8.Decode(m)));
        private static readonly ExceptionCallback Arithmetic = m => Keep(new ArithmeticException(Utf8.Decode(m)));
        private static readonly ExceptionCallback DivideByZero = m => Keep(new DivideByZeroException(Utf8.Decode(m)));
        private static readonly ExceptionCallback IndexOutOfRange = m =>
            Keep(new IndexOutOfRangeException(Utf8.Decode(m)));
        private static readonly ExceptionCallback InvalidCast = m => Keep(new InvalidCastException(Utf8.Decode(m)));
        private static readonly ExceptionCallback InvalidOperation = m =>
            Keep(new InvalidOperationException(Utf8.Decode(m)));
        private static readonly ExceptionCallback Io = m => Keep(new IOException(Utf8.Decode(m)));
        private static readonly ExceptionCallback NullReference = m => Keep(new NullReferenceException(Utf8.Decode(m)));
        private static readonly ExceptionCallback OutOfMemory = m => Keep(new OutOfMemoryException(Utf8.Decode(m)));
        private static readonly ExceptionCallback Overflow = m => Keep(new OverflowException(Utf8.Decode(m)));
        private static readonly ExceptionCallback System = m => Keep(new SystemException(Utf8.Decode(m)));

        private static readonly ArgumentCallback Argument =
            (m, p) => Keep(new ArgumentException(Utf8.Decode(m), Utf8.Decode(p)));
        private static readonly ArgumentCallback ArgumentNull =
            (m, p) => Keep(new ArgumentNullException(Utf8.Decode(p), Utf8.Decode(m)));
        private static readonly ArgumentCallback ArgumentOutOfRange =
            (m, p) => Keep(new ArgumentOutOfRangeException(Utf8.Decode(p), Utf8.Decode(m)));

        private static readonly StringCallback Text = HandleOfCopy;
        private static readonly FailureCallback Failure = KeepFailure;

        [ThreadStatic] private static Exception pending;

        // Of all threads. Almost always 0, and then no thread has to look for its own.
        private static int nbPending;

        internal static void Register()
        {
            Native.SWIGRegisterExceptionCallbacks_quvexnativenet(
                Application, Arithmetic, DivideByZero, IndexOutOfRange, InvalidCast, InvalidOperation, Io, NullReference,
                OutOfMemory, Overflow, System);
            Native.SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(Argument, ArgumentNull, ArgumentOutOfRange);
            Native.SWIGRegisterStringCallback_quvexnativenet(Text);
            Native.QVExceptionRegisterCallback(Failure);
        }

        /// <summary>To be called behind every native call that can fail.</summary>
        internal static void ThrowPending()
        {
            if (Volatile.Read(ref nbPending) == 0 || pending == null) return;
            Exception exception = pending;
            pending = null;
            Interlocked.Decrement(ref nbPending);
            throw exception;
        }

        /// <summary>The text behind a handle that a native function has returned. Ends the handle.</summary>
        internal static string TakeText(IntPtr handle)
        {
            if (handle == IntPtr.Zero) return null;
            GCHandle copy = GCHandle.FromIntPtr(handle);
            string text = (string)copy.Target;
            copy.Free();
            return text;
        }

        /// <summary>The first failure of a call is the one that counts.</summary>
        private static void Keep(Exception exception)
        {
            if (pending != null) return;
            pending = exception;
            Interlocked.Increment(ref nbPending);
        }

        private static IntPtr HandleOfCopy(IntPtr text)
        {
            try
            {
                return GCHandle.ToIntPtr(GCHandle.Alloc(Utf8.Decode(text)));
            }
            catch (Exception exception)
            {
                Keep(exception);
                return IntPtr.Zero;
            }
        }

        private static void KeepFailure(IntPtr exception)
        {
            try
            {
                Keep(QVException.Take(exception));
            }
            catch (Exception other)
            {
                Keep(other);
            }
        }
    }
}
