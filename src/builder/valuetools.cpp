#include "builder/valuetools.h"

#include "api/qvexception.h"
#include "solver/kernel/mathdouble.h"

namespace quvex {

namespace {

/// Whether words of the type are doubles (and not integers).
bool holdsDouble(ValueType type, const Place& place) {
  if (type == kDouble) return true;
  if (type != kBoolean && type != kInteger) raise<KernelException>(place, "ValueType not supported");
  return false;
}

int compareDoubles(double a, double b) {
  if (MathDouble::isGreater(b, a)) return -1;
  return MathDouble::isGreater(a, b) ? 1 : 0;
}

}  // namespace

t_value ValueTools::minValue(ValueType type, t_value a, t_value b) {
  if (holdsDouble(type, here<ValueTools>())) return wordToDouble(a) > wordToDouble(b) ? b : a;
  return b < a ? b : a;
}

t_value ValueTools::maxValue(ValueType type, t_value a, t_value b) {
  if (holdsDouble(type, here<ValueTools>())) return wordToDouble(a) > wordToDouble(b) ? a : b;
  return b < a ? a : b;
}

int ValueTools::compare(ValueType type, t_value a, t_value b) {
  if (holdsDouble(type, here<ValueTools>())) return compareDoubles(wordToDouble(a), wordToDouble(b));
  if (a == b) return 0;
  return a < b ? -1 : 1;
}

}  // namespace quvex
