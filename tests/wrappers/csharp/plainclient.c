#include "plainclient.h"

#include <string.h>

#include "wrappers/csharp/quvexnativenet.h"

static PlainResult result;

static void copyText(char* target, size_t size, const char* text) {
  size_t length = strlen(text);
  if (length >= size) length = size - 1;
  memcpy(target, text, length);
  target[length] = '\0';
}

static QvString keepText(const char* text) {
  copyText(result.text, sizeof result.text, text);
  return result.text;
}

static void keepFailure(QvObject exception) {
  ++result.nbFailures;
  CSharp_QVException_GetFunctionName(exception);
  copyText(result.function, sizeof result.function, result.text);
  CSharp_delete_QVException(exception);
}

static void countNullText(const char* message, const char* parameter) {
  if (strcmp(message, "null string") == 0 && parameter == NULL) ++result.nbNullTexts;
}

/* One of two decisions, worth 3 and 4, may be taken. */
static QvExpr buildChoice(QvObject model) {
  const QvExpr a = CSharp_QVModel_CreateExpression__SWIG_0(model, 0);
  const QvExpr b = CSharp_QVModel_CreateExpression__SWIG_0(model, 0);
  const QvExpr count = CSharp_QVModel_CreateExpression__SWIG_2(model, 2, a, b);
  const QvExpr value = CSharp_QVModel_CreateExpression__SWIG_2(
      model, 2, CSharp_QVModel_CreateExpression__SWIG_6(model, 3, 3, a),
      CSharp_QVModel_CreateExpression__SWIG_7(model, 3, b, 4));
  CSharp_QVModel_AddConstraint(model, CSharp_QVModel_CreateExpression__SWIG_7(model, 9, count, 1));
  CSharp_QVModel_AddObjective(model, value, 1);
  return value;
}

PlainResult runPlainClient(void) {
  memset(&result, 0, sizeof result);
  result.best = -1;
  SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(NULL, countNullText, NULL);
  SWIGRegisterStringCallback_quvexnativenet(keepText);
  QVExceptionRegisterCallback(keepFailure);

  const QvObject solver = CSharp_new_Quvex();
  const QvObject model = CSharp_Quvex_GetModel(solver);
  const QvExpr value = buildChoice(model);
  CSharp_QVModel_Close(model);
  CSharp_QVParam_SetVerbosity(CSharp_Quvex_GetParam(solver), 0);
  CSharp_QVPhase_SetIterationLimit(CSharp_Quvex_CreatePhase(solver), 1000);
  CSharp_Quvex_Solve(solver);
  result.best = CSharp_QVExpression_GetIntValue(value);

  CSharp_QVModel_Close(model);
  CSharp_QVExpression_SetName(value, NULL);
  CSharp_Quvex_GetPhase(solver, 7);
  CSharp_QVVersion_GetVersion();
  CSharp_delete_Quvex(solver);
  return result;
}
