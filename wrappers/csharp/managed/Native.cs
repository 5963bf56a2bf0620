using System;
using System.Runtime.InteropServices;

namespace QuvexNet
{
    /// <summary>
    /// The functions of the native library, one line each: texts go in as UTF-8 that ends in NUL, and come out as what
    /// <see cref="Callbacks"/> makes of them. A failure is pending when a call returns; see
    /// <see cref="Callbacks.ThrowPending"/>.
    /// </summary>
    internal static class Native
    {
        private const string Library = "quvexnativenet";

        // Explicit, so that the callbacks are in place before the first call.
        static Native()
        {
            Callbacks.Register();
        }

        [DllImport(Library)] internal static extern void SWIGRegisterExceptionCallbacks_quvexnativenet(
            ExceptionCallback application, ExceptionCallback arithmetic, ExceptionCallback divideByZero,
            ExceptionCallback indexOutOfRange, ExceptionCallback invalidCast, ExceptionCallback invalidOperation,
            ExceptionCallback io, ExceptionCallback nullReference, ExceptionCallback outOfMemory,
            ExceptionCallback overflow, ExceptionCallback system);
        [DllImport(Library)] internal static extern void SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(
            ArgumentCallback argument, ArgumentCallback argumentNull, ArgumentCallback argumentOutOfRange);
        [DllImport(Library)] internal static extern void SWIGRegisterStringCallback_quvexnativenet(StringCallback callback);
        [DllImport(Library)] internal static extern void QVExceptionRegisterCallback(FailureCallback callback);

        [DllImport(Library)] internal static extern IntPtr CSharp_new_Quvex();
        [DllImport(Library)] internal static extern void CSharp_delete_Quvex(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_CreatePhase(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetInfo(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetModel(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_Quvex_GetNbPhases(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetParam(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetPhase(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetSolution(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_Quvex_GetState(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_GetStatistics(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_Quvex_LoadEnvironment(IntPtr self, byte[] a);
        [DllImport(Library)] internal static extern void CSharp_Quvex_SaveEnvironment(IntPtr self, byte[] a);
        [DllImport(Library)] internal static extern void CSharp_Quvex_Solve(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_Quvex_Stop(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_Quvex_ToString(IntPtr self);

        [DllImport(Library)] internal static extern void CSharp_QVModel_AddConstraint(IntPtr self, IntPtr a);
        [DllImport(Library)] internal static extern void CSharp_QVModel_AddObjective(IntPtr self, IntPtr a, int b);
        [DllImport(Library)] internal static extern void CSharp_QVModel_Close(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetConstraint(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetDecision(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetExpression__SWIG_0(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetExpression__SWIG_1(IntPtr self, byte[] a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetNbConstraints(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetNbDecisions(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetNbExpressions(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetNbObjectives(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetNbOperands(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_GetObjective(IntPtr self, int a);
        [DllImport(Library)] internal static extern int CSharp_QVModel_GetObjectiveDirection(IntPtr self, int a);
        [DllImport(Library)] internal static extern int CSharp_QVModel_IsClosed(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_QVModel_Open(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_ToString(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateConstant__SWIG_0(IntPtr self, long a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateConstant__SWIG_1(IntPtr self, double a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_0(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_1(IntPtr self, int a, IntPtr b);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_2(IntPtr self, int a, IntPtr b, IntPtr c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_3(IntPtr self, int a, IntPtr b, IntPtr c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_4(IntPtr self, int a, long b);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_5(IntPtr self, int a, long b, long c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_6(IntPtr self, int a, long b, IntPtr c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_7(IntPtr self, int a, IntPtr b, long c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_8(IntPtr self, int a, long b, long c, long d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_9(IntPtr self, int a, long b, long c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_10(IntPtr self, int a, long b, IntPtr c, long d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_11(IntPtr self, int a, long b, IntPtr c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_12(IntPtr self, int a, IntPtr b, long c, long d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_13(IntPtr self, int a, IntPtr b, long c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_14(IntPtr self, int a, IntPtr b, IntPtr c, long d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_15(IntPtr self, int a, double b);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_16(IntPtr self, int a, double b, double c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_17(IntPtr self, int a, double b, IntPtr c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_18(IntPtr self, int a, IntPtr b, double c);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_19(IntPtr self, int a, double b, double c, double d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_20(IntPtr self, int a, double b, double c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_21(IntPtr self, int a, double b, IntPtr c, double d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_22(IntPtr self, int a, double b, IntPtr c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_23(IntPtr self, int a, IntPtr b, double c, double d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_24(IntPtr self, int a, IntPtr b, double c, IntPtr d);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVModel_CreateExpression__SWIG_25(IntPtr self, int a, IntPtr b, IntPtr c, double d);

        [DllImport(Library)] internal static extern void CSharp_QVExpression_AddOperand__SWIG_0(IntPtr self, IntPtr a);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_AddOperand__SWIG_1(IntPtr self, long a);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_AddOperand__SWIG_2(IntPtr self, double a);
        [DllImport(Library)] internal static extern double CSharp_QVExpression_GetDoubleValue(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_GetIndex(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_GetInfo(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVExpression_GetIntValue(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_GetModel(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_GetName(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_GetNbOperands(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_GetOperand(IntPtr self, int a);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_GetOperator(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVExpression_GetValue(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsBool(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsConstant(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsConstraint(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsDecision(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsDouble(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsInt(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsNamed(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVExpression_IsObjective(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetDoubleValue(IntPtr self, double a);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetIntValue(IntPtr self, long a);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetName(IntPtr self, byte[] a);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetOperand__SWIG_0(IntPtr self, int a, IntPtr b);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetOperand__SWIG_1(IntPtr self, int a, long b);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetOperand__SWIG_2(IntPtr self, int a, double b);
        [DllImport(Library)] internal static extern void CSharp_QVExpression_SetValue(IntPtr self, long a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVExpression_ToString(IntPtr self);

        [DllImport(Library)] internal static extern int CSharp_QVParam_GetAdvancedParam__SWIG_0(IntPtr self, byte[] a);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetAdvancedParam__SWIG_1(IntPtr self, byte[] a, int b);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetAnnealingLevel(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVParam_GetDoubleObjectiveBound(IntPtr self, int a);
        [DllImport(Library)] internal static extern long CSharp_QVParam_GetIntObjectiveBound(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVParam_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetNbThreads(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVParam_GetObjectiveBound(IntPtr self, int a);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetSeed(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetTimeBetweenDisplays(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVParam_GetVerbosity(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetAdvancedParam(IntPtr self, byte[] a, int b);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetAnnealingLevel(IntPtr self, int a);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetDoubleObjectiveBound(IntPtr self, int a, double b);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetIntObjectiveBound(IntPtr self, int a, long b);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetNbThreads(IntPtr self, int a);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetObjectiveBound(IntPtr self, int a, long b);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetSeed(IntPtr self, int a);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetTimeBetweenDisplays(IntPtr self, int a);
        [DllImport(Library)] internal static extern void CSharp_QVParam_SetVerbosity(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVParam_ToString(IntPtr self);

        [DllImport(Library)] internal static extern long CSharp_QVPhase_GetIterationLimit(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVPhase_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVPhase_GetOptimizedObjective(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVPhase_GetStatistics(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVPhase_GetTimeLimit(IntPtr self);
        [DllImport(Library)] internal static extern void CSharp_QVPhase_SetIterationLimit(IntPtr self, long a);
        [DllImport(Library)] internal static extern void CSharp_QVPhase_SetOptimizedObjective(IntPtr self, int a);
        [DllImport(Library)] internal static extern void CSharp_QVPhase_SetTimeLimit(IntPtr self, int a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVPhase_ToString(IntPtr self);

        [DllImport(Library)] internal static extern void CSharp_QVSolution_Clear(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVSolution_GetDoubleValue(IntPtr self, IntPtr a);
        [DllImport(Library)] internal static extern long CSharp_QVSolution_GetIntValue(IntPtr self, IntPtr a);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVSolution_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVSolution_GetStatus(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVSolution_GetValue(IntPtr self, IntPtr a);
        [DllImport(Library)] internal static extern void CSharp_QVSolution_SetDoubleValue(IntPtr self, IntPtr a, double b);
        [DllImport(Library)] internal static extern void CSharp_QVSolution_SetIntValue(IntPtr self, IntPtr a, long b);
        [DllImport(Library)] internal static extern void CSharp_QVSolution_SetValue(IntPtr self, IntPtr a, long b);

        [DllImport(Library)] internal static extern IntPtr CSharp_QVStatistics_GetInfo(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVStatistics_GetQuvex(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbAcceptedMoves(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbImprovingMoves(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbInfeasibleMoves(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbIterations(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbMoves(IntPtr self);
        [DllImport(Library)] internal static extern long CSharp_QVStatistics_GetNbRejectedMoves(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVStatistics_GetPercentAcceptedMoves(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVStatistics_GetPercentImprovingMoves(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVStatistics_GetPercentInfeasibleMoves(IntPtr self);
        [DllImport(Library)] internal static extern double CSharp_QVStatistics_GetPercentRejectedMoves(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVStatistics_GetRunningTime(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVStatistics_ToString(IntPtr self);

        [DllImport(Library)] internal static extern void CSharp_delete_QVVersion(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVVersion_GetBuildDate();
        [DllImport(Library)] internal static extern IntPtr CSharp_QVVersion_GetCopyright();
        [DllImport(Library)] internal static extern IntPtr CSharp_QVVersion_GetInfo();
        [DllImport(Library)] internal static extern int CSharp_QVVersion_GetMajorVersionNumber();
        [DllImport(Library)] internal static extern int CSharp_QVVersion_GetMinorVersionNumber();
        [DllImport(Library)] internal static extern IntPtr CSharp_QVVersion_GetPlatform();
        [DllImport(Library)] internal static extern IntPtr CSharp_QVVersion_GetVersion();
        [DllImport(Library)] internal static extern int CSharp_QVVersion_GetVersionCode();
        [DllImport(Library)] internal static extern int CSharp_QV_BUILD_DATE_get();
        [DllImport(Library)] internal static extern int CSharp_QV_MAJOR_VERSION_get();
        [DllImport(Library)] internal static extern int CSharp_QV_MINOR_VERSION_get();
        [DllImport(Library)] internal static extern IntPtr CSharp_QV_PLATFORM_get();

        [DllImport(Library)] internal static extern IntPtr CSharp_new_QVException(byte[] fileName, int lineNumber, byte[] functionName, byte[] explanation);
        [DllImport(Library)] internal static extern void CSharp_delete_QVException(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_GetExplanation(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_GetFileName(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_GetFunctionName(IntPtr self);
        [DllImport(Library)] internal static extern int CSharp_QVException_GetLineNumber(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_GetMessage(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_ToString(IntPtr self);
        [DllImport(Library)] internal static extern IntPtr CSharp_QVException_What(IntPtr self);
    }
}
