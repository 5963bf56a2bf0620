using System;

namespace QuvexNet
{
    /// <summary>
    /// The parameters of the search. Limits of time and iterations belong to phases.
    /// </summary>
    public sealed class QVParam : QVObject
    {
        internal QVParam(Quvex owner, IntPtr pointer)
            : base(owner, pointer)
        {
        }

        /// <summary>The solver. Not while Running.</summary>
        public Quvex Quvex
        {
            get
            {
                Check(Native.CSharp_QVParam_GetQuvex(Pointer));
                return Owner;
            }
        }

        /// <summary>
        /// Start of all random draws, at least 0. Default 0. To be read in Paused or Stopped, to be set in Stopped.
        /// </summary>
        public int Seed
        {
            get
            {
                return Check(Native.CSharp_QVParam_GetSeed(Pointer));
            }

            set
            {
                Native.CSharp_QVParam_SetSeed(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// Number of search threads, 1 to 1024. Default 2. To be read in Paused or Stopped, to be set in Stopped.
        /// </summary>
        public int NbThreads
        {
            get
            {
                return Check(Native.CSharp_QVParam_GetNbThreads(Pointer));
            }

            set
            {
                Native.CSharp_QVParam_SetNbThreads(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// 0 is a pure descent; higher levels, up to 9, accept more. Default 1. To be read in Paused or Stopped, to be
        /// set in Stopped.
        /// </summary>
        public int AnnealingLevel
        {
            get
            {
                return Check(Native.CSharp_QVParam_GetAnnealingLevel(Pointer));
            }

            set
            {
                Native.CSharp_QVParam_SetAnnealingLevel(Pointer, value);
                Check();
            }
        }

        /// <summary>
        /// Seconds between two progress lines, 1 to 65535. Default 1. To be read in Paused or Stopped, to be set in
        /// Stopped.
        /// </summary>
        public int TimeBetweenDisplays
        {
            get
            {
                return Check(Native.CSharp_QVParam_GetTimeBetweenDisplays(Pointer));
            }

            set
            {
                Native.CSharp_QVParam_SetTimeBetweenDisplays(Pointer, value);
                Check();
            }
        }

        /// <summary>0 prints nothing. Default 1. To be read in Paused or Stopped, to be set in Stopped.</summary>
        public int Verbosity
        {
            get
            {
                return Check(Native.CSharp_QVParam_GetVerbosity(Pointer));
            }

            set
            {
                Native.CSharp_QVParam_SetVerbosity(Pointer, value);
                Check();
            }
        }

        /// <summary>The bound of a boolean or integer objective. Paused or Stopped.</summary>
        public long GetObjectiveBound(int index)
        {
            return Check(Native.CSharp_QVParam_GetObjectiveBound(Pointer, index));
        }

        /// <summary>A value at which a boolean or integer objective is good enough. Stopped.</summary>
        public void SetObjectiveBound(int index, long bound)
        {
            Native.CSharp_QVParam_SetObjectiveBound(Pointer, index, bound);
            Check();
        }

        /// <summary>The bound of a boolean or integer objective. Paused or Stopped.</summary>
        public long GetIntObjectiveBound(int index)
        {
            return Check(Native.CSharp_QVParam_GetIntObjectiveBound(Pointer, index));
        }

        /// <summary>A value at which a boolean or integer objective is good enough. Stopped.</summary>
        public void SetIntObjectiveBound(int index, long bound)
        {
            Native.CSharp_QVParam_SetIntObjectiveBound(Pointer, index, bound);
            Check();
        }

        /// <summary>The bound of a double objective. Paused or Stopped.</summary>
        public double GetDoubleObjectiveBound(int index)
        {
            return Check(Native.CSharp_QVParam_GetDoubleObjectiveBound(Pointer, index));
        }

        /// <summary>A value at which a double objective is good enough. Stopped.</summary>
        public void SetDoubleObjectiveBound(int index, double bound)
        {
            Native.CSharp_QVParam_SetDoubleObjectiveBound(Pointer, index, bound);
            Check();
        }

        /// <summary>A parameter that the caller has set. Paused or Stopped.</summary>
        public int GetAdvancedParam(string key)
        {
            return Check(Native.CSharp_QVParam_GetAdvancedParam__SWIG_0(Pointer, Utf8.Encode(key)));
        }

        /// <summary>A parameter, or a default for one that the caller has not set. Paused or Stopped.</summary>
        public int GetAdvancedParam(string key, int defaultValue)
        {
            return Check(Native.CSharp_QVParam_GetAdvancedParam__SWIG_1(Pointer, Utf8.Encode(key), defaultValue));
        }

        /// <summary>Sets any parameter by its name; unknown ones have no effect. Not while Running.</summary>
        public void SetAdvancedParam(string key, int value)
        {
            Native.CSharp_QVParam_SetAdvancedParam(Pointer, Utf8.Encode(key), value);
            Check();
        }

        /// <summary>Description of all parameters. Not while Running.</summary>
        public override string ToString()
        {
            return CheckText(Native.CSharp_QVParam_ToString(Pointer));
        }
    }
}
