// The exported functions: exports.def, each line spelled out as a definition, and the two constructors.
#include <cstdint>
#include <string>

#include "callbacks.h"
#include "guarded.h"
#include "quvex.h"
#include "quvexnativenet.h"

using namespace quvex;
using binding::guarded;

namespace {

// What the arguments of each type in exports.def become.
QVOperator nativeOperator(QvOperator number) { return static_cast<QVOperator>(number); }
QVObjectiveDirection nativeDirection(QvDirection number) { return static_cast<QVObjectiveDirection>(number); }
QVExpression* nativeExpr(QvExpr expression) { return static_cast<QVExpression*>(expression); }
std::string nativeText(QvText text) { return text; }
std::int32_t nativeInt(QvInt value) { return value; }
std::int64_t nativeLong(QvLong value) { return value; }
double nativeReal(QvReal value) { return value; }

}  // namespace

// NOLINTBEGIN(bugprone-macro-parentheses): names of classes and methods cannot stand in parentheses.
#define QV_METHOD_0(Result, Class, Export, method)                                             \
  Qv##Result CSharp_##Class##_##Export(QvObject self) {                                        \
    return guarded<Qv##Result>(__func__, [=] { return static_cast<Class*>(self)->method(); }); \
  }
#define QV_METHOD_1(Result, Class, Export, method, A)                                  \
  Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a) {                       \
    return guarded<Qv##Result>(                                                        \
        __func__, [=] { return static_cast<Class*>(self)->method(native##A(a)); }, a); \
  }
#define QV_METHOD_2(Result, Class, Export, method, A, B)                                                \
  Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b) {                               \
    return guarded<Qv##Result>(                                                                         \
        __func__, [=] { return static_cast<Class*>(self)->method(native##A(a), native##B(b)); }, a, b); \
  }
#define QV_METHOD_3(Result, Class, Export, method, A, B, C)                                                     \
  Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b, Qv##C c) {                              \
    return guarded<Qv##Result>(                                                                                 \
        __func__, [=] { return static_cast<Class*>(self)->method(native##A(a), native##B(b), native##C(c)); }); \
  }
#define QV_METHOD_4(Result, Class, Export, method, A, B, C, D)                                          \
  Qv##Result CSharp_##Class##_##Export(QvObject self, Qv##A a, Qv##B b, Qv##C c, Qv##D d) {             \
    return guarded<Qv##Result>(__func__, [=] {                                                          \
      return static_cast<Class*>(self)->method(native##A(a), native##B(b), native##C(c), native##D(d)); \
    });                                                                                                 \
  }
#define QV_STATIC(Result, Class, Export, method)                          \
  Qv##Result CSharp_##Class##_##Export() {                                \
    return guarded<Qv##Result>(__func__, [] { return Class::method(); }); \
  }
// A read of an exception, for a client that is just translating a failure: it can't fail, and what the client's own
// string callback throws goes through.
#define QV_FIELD(Result, Class, Export, method)                                      \
  Qv##Result CSharp_##Class##_##Export(QvObject self) {                              \
    return binding::toResult<Qv##Result>(static_cast<const Class*>(self)->method()); \
  }
#define QV_CONSTANT(Result, name)                              \
  Qv##Result CSharp_##name##_get() {                           \
    return guarded<Qv##Result>(__func__, [] { return name; }); \
  }
#define QV_DELETE(Class)                                                \
  void CSharp_delete_##Class(QvObject self) {                           \
    guarded<void>(__func__, [=] { delete static_cast<Class*>(self); }); \
  }
#include "exports.def"
// NOLINTEND(bugprone-macro-parentheses)

QvObject CSharp_new_Quvex() {
  return guarded<QvObject>(__func__, [] { return new Quvex; });
}

QvObject CSharp_new_QVException(QvText fileName, QvInt lineNumber, QvText functionName, QvText explanation) {
  return guarded<QvObject>(
      __func__, [=] { return new QVException(fileName, lineNumber, functionName, explanation); }, fileName,
      functionName, explanation);
}

void CSharp_delete_QVException(QvObject self) {
  guarded<void>(__func__, [=] { binding::release(static_cast<QVException*>(self)); });
}
