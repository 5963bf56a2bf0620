using System;
using System.Threading;

namespace QuvexNet
{
    /// <summary>
    /// A solver: one model, one set of parameters, a list of phases, one solution. Build the model, close it, create
    /// phases, solve.
    /// </summary>
    /// <remarks>
    /// It owns the native memory of all objects that come from it: dispose of it when they are no longer needed. Each
    /// method tells the states in which it may be called; any other call, like all misuse, throws
    /// <see cref="QVException"/>. All methods but <see cref="Stop"/> and <see cref="State"/> belong to one thread at a
    /// time.
    /// </remarks>
    public sealed class Quvex : IDisposable
    {
        private IntPtr pointer;
        private int nbSolving;

        /// <summary>A solver with an empty model.</summary>
        public Quvex()
        {
            pointer = Native.CSharp_new_Quvex();
            Callbacks.ThrowPending();
            IntPtr model = Native.CSharp_Quvex_GetModel(pointer);
            Callbacks.ThrowPending();
            OwnModel = new QVModel(this, model);
        }

        /// <summary>Frees what nobody has disposed of.</summary>
        ~Quvex()
        {
            Free();
        }

        /// <summary>The lifecycle state. In any state, from any thread.</summary>
        public QVState State
        {
            get { return (QVState)Check(Native.CSharp_Quvex_GetState(Pointer)); }
        }

        /// <summary>The model. Not while Running.</summary>
        public QVModel Model
        {
            get
            {
                Check(Native.CSharp_Quvex_GetModel(Pointer));
                return OwnModel;
            }
        }

        /// <summary>The parameters. Not while Running.</summary>
        public QVParam Param
        {
            get { return new QVParam(this, Check(Native.CSharp_Quvex_GetParam(Pointer))); }
        }

        /// <summary>Number of phases. Paused or Stopped.</summary>
        public int NbPhases
        {
            get { return Check(Native.CSharp_Quvex_GetNbPhases(Pointer)); }
        }

        /// <summary>
        /// The current solution: what the caller has set, or the best of the last search. Paused or Stopped.
        /// </summary>
        public QVSolution Solution
        {
            get { return new QVSolution(this, Check(Native.CSharp_Quvex_GetSolution(Pointer))); }
        }

        /// <summary>Sums over all phases of the last solve. Paused or Stopped.</summary>
        public QVStatistics Statistics
        {
            get { return new QVStatistics(this, Check(Native.CSharp_Quvex_GetStatistics(Pointer))); }
        }

        /// <summary>One line of progress, once the solver has been started. Paused or Stopped.</summary>
        public string Info
        {
            get { return CheckText(Native.CSharp_Quvex_GetInfo(Pointer)); }
        }

        /// <summary>The phase at an index from 0. Paused or Stopped.</summary>
        public QVPhase GetPhase(int index)
        {
            return new QVPhase(this, Check(Native.CSharp_Quvex_GetPhase(Pointer, index)));
        }

        /// <summary>Appends a phase without limits that optimises all objectives. Stopped.</summary>
        public QVPhase CreatePhase()
        {
            return new QVPhase(this, Check(Native.CSharp_Quvex_CreatePhase(Pointer)));
        }

        /// <summary>
        /// Searches from the current solution through all phases and leaves the best solution found. Without a phase,
        /// one without limits is created first. Stopped.
        /// </summary>
        public void Solve()
        {
            Interlocked.Increment(ref nbSolving);
            try
            {
                Native.CSharp_Quvex_Solve(Pointer);
            }
            finally
            {
                Interlocked.Decrement(ref nbSolving);
            }
            Check();
        }

        /// <summary>
        /// Ends a search, for good: every later solve of this object leaves its first phase at the first display. In
        /// any state, from any thread. Without a search it does nothing.
        /// </summary>
        public void Stop()
        {
            Native.CSharp_Quvex_Stop(Pointer);
            Check();
        }

        /// <summary>
        /// Writes model, phases, parameters and solution to a file. Names that end in ".qvb" mean the binary format,
        /// all others the text format; a further ".gz" means gzip. Not while Running.
        /// </summary>
        public void SaveEnvironment(string fileName)
        {
            Native.CSharp_Quvex_SaveEnvironment(Pointer, Utf8.Encode(fileName));
            Check();
        }

        /// <summary>
        /// Reads what <see cref="SaveEnvironment"/> wrote into an empty model, and closes it. A failure leaves what was
        /// read so far. Modeling.
        /// </summary>
        public void LoadEnvironment(string fileName)
        {
            Native.CSharp_Quvex_LoadEnvironment(Pointer, Utf8.Encode(fileName));
            Check();
        }

        /// <summary>Description of model, parameters and phases. Not while Running.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_Quvex_ToString(Pointer));
        }

        /// <summary>
        /// Frees all native memory. Every object of this solver throws <see cref="ObjectDisposedException"/> from then
        /// on. During <see cref="Solve"/> this is an <see cref="InvalidOperationException"/>: stop the search first, and
        /// let it return.
        /// </summary>
        public void Dispose()
        {
            if (Volatile.Read(ref nbSolving) != 0)
            {
                throw new InvalidOperationException("A solver cannot be disposed of while it solves.");
            }
            Free();
            GC.SuppressFinalize(this);
        }

        /// <summary>The model, whatever the state.</summary>
        internal QVModel OwnModel { get; private set; }

        internal void CheckAlive()
        {
            if (pointer == IntPtr.Zero) throw new ObjectDisposedException("Quvex");
        }

        private IntPtr Pointer
        {
            get
            {
                CheckAlive();
                return pointer;
            }
        }

        private void Free()
        {
            IntPtr freed = Interlocked.Exchange(ref pointer, IntPtr.Zero);
            if (freed != IntPtr.Zero) Native.CSharp_delete_Quvex(freed);
        }

        // As in QVObject: this object outlives the native call before it, and a failure of that call is thrown.

        private void Check()
        {
            GC.KeepAlive(this);
            Callbacks.ThrowPending();
        }

        private T Check<T>(T result)
        {
            Check();
            return result;
        }

        private string CheckText(IntPtr handle)
        {
            string text = Callbacks.TakeText(handle);
            Check();
            return text;
        }
    }
}
