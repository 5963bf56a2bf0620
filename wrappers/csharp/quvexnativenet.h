#pragma once

/// The flat functions of the library `quvexnativenet`, as a C header.
///
/// No function raises. One that fails hands a QVException to the callback of `QVExceptionRegisterCallback`, on the same
/// thread and before it returns, and then returns 0. What an object does, and when, is told at its class in
/// `include/api`.

#include <stdint.h>

typedef void QvVoid;
typedef int32_t QvInt; /* also of booleans, as 0 or 1, and of enumerations */
typedef int64_t QvLong;
typedef double QvReal;
typedef const char* QvText; /* UTF-8, ends in NUL; null calls the argument-null callback, and nothing else */
typedef void* QvString;     /* what the string callback made of a text */
typedef void* QvObject;     /* lives as long as its Quvex */
typedef QvObject QvExpr;    /* a QVExpression */
typedef QvInt QvOperator;   /* a number of QVOperator, 0 to 33 */
typedef QvInt QvDirection;  /* 0 minimises, 1 maximises */

/// Receives a message. Kept for clients that register the whole list: none is ever called.
typedef void (*QvExceptionCallback)(const char* message);
/// Receives a message and the name of a parameter, which may be null.
typedef void (*QvArgumentCallback)(const char* message, const char* parameter);
/// Copies a text, which is gone when the call is over; what it returns becomes the result of the exported function.
typedef QvString (*QvStringCallback)(const char* text);
/// Receives a QVException, and has to end it with `CSharp_delete_QVException`.
typedef void (*QvFailureCallback)(QvObject exception);

#define QV_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

// Registration, once and before anything else. A slot without a callback is silent.
QV_API void SWIGRegisterExceptionCallbacks_quvexnativenet(
    QvExceptionCallback application, QvExceptionCallback arithmetic, QvExceptionCallback divideByZero,
    QvExceptionCallback indexOutOfRange, QvExceptionCallback invalidCast, QvExceptionCallback invalidOperation,
    QvExceptionCallback io, QvExceptionCallback nullReference, QvExceptionCallback outOfMemory,
    QvExceptionCallback overflow, QvExceptionCallback system);
QV_API void SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(QvArgumentCallback argument,
                                                                  QvArgumentCallback argumentNull,
                                                                  QvArgumentCallback argumentOutOfRange);
QV_API void SWIGRegisterStringCallback_quvexnativenet(QvStringCallback callback);
QV_API void QVExceptionRegisterCallback(QvFailureCallback callback);

QV_API QvObject CSharp_new_Quvex(void);
QV_API QvObject CSharp_new_QVException(QvText fileName, QvInt lineNumber, QvText functionName, QvText explanation);
QV_API void CSharp_delete_QVException(QvObject self);

#define QV_METHOD_0(Result, Class, Export, method) QV_API Qv##Result CSharp_##Class##_##Export(QvObject self);
#define QV_METHOD_1(Result, Class, Export, method, A) \
  QV_API Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a);
#define QV_METHOD_2(Result, Class, Export, method, A, B) \
  QV_API Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b);
#define QV_METHOD_3(Result, Class, Export, method, A, B, C) \
  QV_API Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b, Qv##C c);
#define QV_METHOD_4(Result, Class, Export, method, A, B, C, D) \
  QV_API Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b, Qv##C c, Qv##D d);
#define QV_STATIC(Result, Class, Export, method) QV_API Qv##Result CSharp_##Class##_##Export(void);
#define QV_FIELD(Result, Class, Export, method) QV_API Qv##Result CSharp_##Class##_##Export(QvObject self);
#define QV_CONSTANT(Result, name) QV_API Qv##Result CSharp_##name##_get(void);
#define QV_DELETE(Class) QV_API void CSharp_delete_##Class(QvObject self);
#include "exports.def"

#ifdef __cplusplus
}
#endif
