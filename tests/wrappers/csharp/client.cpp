#include "client.h"

#include <utility>

#include "allocator.h"

namespace client {

namespace {

thread_local std::vector<Report> reports;
thread_local std::vector<std::string> nullTexts;
thread_local std::string lastText;
thread_local bool stringCallbackBroken = false;

QvString keepText(const char* text) {
  if (stringCallbackBroken) throw 42;
  lastText = text;
  return &lastText;
}

void keepNullText(const char* message, const char* parameter) {
  nullTexts.push_back(std::string(message) + "|" + (parameter == nullptr ? "(null)" : parameter));
}

void keepFailure(QvObject exception) {
  allocator::succeed();  // keeping it takes memory, too
  const bool wasBroken = std::exchange(stringCallbackBroken, false);
  Report report;
  report.file = textOf(CSharp_QVException_GetFileName(exception));
  report.line = CSharp_QVException_GetLineNumber(exception);
  report.function = textOf(CSharp_QVException_GetFunctionName(exception));
  report.explanation = textOf(CSharp_QVException_GetExplanation(exception));
  report.message = textOf(CSharp_QVException_GetMessage(exception));
  CSharp_delete_QVException(exception);
  reports.push_back(std::move(report));
  stringCallbackBroken = wasBroken;
}

void neverCalled(const char*) { ADD_FAILURE() << "a callback of the list of eleven was called"; }
void neverCalledForArgument(const char*, const char*) { ADD_FAILURE() << "a wrong argument callback was called"; }

}  // namespace

void connect() {
  SWIGRegisterExceptionCallbacks_quvexnativenet(neverCalled, neverCalled, neverCalled, neverCalled, neverCalled,
                                                neverCalled, neverCalled, neverCalled, neverCalled, neverCalled,
                                                neverCalled);
  SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(neverCalledForArgument, keepNullText, neverCalledForArgument);
  SWIGRegisterStringCallback_quvexnativenet(keepText);
  QVExceptionRegisterCallback(keepFailure);
  reports.clear();
  nullTexts.clear();
  lastText.clear();
}

std::vector<Report> takeReports() { return std::exchange(reports, {}); }

std::vector<std::string> takeNullTexts() { return std::exchange(nullTexts, {}); }

std::string textOf(QvString result) {
  EXPECT_TRUE(result == nullptr || result == &lastText);
  return result == nullptr ? "(none)" : *static_cast<std::string*>(result);
}

BrokenStringCallback::BrokenStringCallback() { stringCallbackBroken = true; }
BrokenStringCallback::~BrokenStringCallback() { stringCallbackBroken = false; }

}  // namespace client
