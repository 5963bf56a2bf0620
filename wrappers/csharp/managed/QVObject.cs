using System;

namespace QuvexNet
{
    /// <summary>
    /// An object that belongs to a <see cref="QuvexNet.Quvex"/> and lives as long as it. Two of these are equal when
    /// they stand for the same native object.
    /// </summary>
    public abstract class QVObject : IEquatable<QVObject>
    {
        private readonly IntPtr pointer;

        internal QVObject(Quvex owner, IntPtr pointer)
        {
            Owner = owner;
            this.pointer = pointer;
        }

        internal Quvex Owner { get; private set; }

        /// <summary>Fails once the solver has been disposed of.</summary>
        internal IntPtr Pointer
        {
            get
            {
                Owner.CheckAlive();
                return pointer;
            }
        }

        /// <summary>Whether both stand for the same native object.</summary>
        public bool Equals(QVObject other)
        {
            return !ReferenceEquals(other, null) && pointer == other.pointer && GetType() == other.GetType();
        }

        /// <inheritdoc/>
        public override bool Equals(object other)
        {
            return Equals(other as QVObject);
        }

        /// <inheritdoc/>
        public override int GetHashCode()
        {
            return pointer.GetHashCode();
        }

        // What stands behind every native call: the solver is not collected before the call is over, and a failure of
        // the call is thrown.

        internal void Check()
        {
            GC.KeepAlive(Owner);
            Callbacks.ThrowPending();
        }

        internal T Check<T>(T result)
        {
            Check();
            return result;
        }

        internal bool CheckBool(int result)
        {
            Check();
            return result != 0;
        }

        internal string CheckText(IntPtr handle)
        {
            string text = Callbacks.TakeText(handle);
            Check();
            return text;
        }
    }
}
