#include "callbacks.h"

namespace quvex::binding {

namespace {

constexpr const char* kSource = "wrappers/csharp/exception";
constexpr int kOutOfMemoryLine = 49;
constexpr int kUnknownLine = 54;

// Written once, when the client loads the library, before any other call.
QvStringCallback stringCallback = nullptr;
QvArgumentCallback argumentNullCallback = nullptr;
QvFailureCallback failureCallback = nullptr;

/// Stands in for a report that finds no memory itself. Made at load, shared by all calls.
QVException lastReport(kSource, kOutOfMemoryLine, "quvexnativenet", "Out of memory");

/// The client owns the exception from here on.
void deliver(QVException* exception) noexcept {
  if (failureCallback == nullptr) return release(exception);
  failureCallback(exception);
}

/// A failure that the library itself has no exception for.
void reportOwn(int line, const char* exported, const char* explanation) noexcept {
  QVException* exception = &lastReport;
  try {
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): the client throws it.
    exception = new QVException(kSource, line, exported, explanation);
  } catch (...) {
    // No memory for this either.
  }
  deliver(exception);
}

}  // namespace

QvString toClientString(const char* text) { return stringCallback == nullptr ? nullptr : stringCallback(text); }

void reportNullText() noexcept {
  if (argumentNullCallback != nullptr) argumentNullCallback("null string", nullptr);
}

void report(const QVException& failure, const char* exported) noexcept {
  QVException* copy = nullptr;
  try {
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): the client throws it.
    copy = new QVException(failure.getFileName(), failure.getLineNumber(), failure.getFunctionName(),
                           failure.getExplanation());
  } catch (...) {
    return reportOutOfMemory(exported);
  }
  deliver(copy);
}

void reportOutOfMemory(const char* exported) noexcept { reportOwn(kOutOfMemoryLine, exported, "Out of memory"); }

void reportUnknown(const char* exported) noexcept { reportOwn(kUnknownLine, exported, "Unknown exception"); }

void release(QVException* exception) noexcept {
  if (exception != &lastReport) delete exception;
}

}  // namespace quvex::binding

// The client fills whole lists; only the null-argument callback and the last two are ever called.

void SWIGRegisterExceptionCallbacks_quvexnativenet(QvExceptionCallback, QvExceptionCallback, QvExceptionCallback,
                                                   QvExceptionCallback, QvExceptionCallback, QvExceptionCallback,
                                                   QvExceptionCallback, QvExceptionCallback, QvExceptionCallback,
                                                   QvExceptionCallback, QvExceptionCallback) {}

void SWIGRegisterExceptionArgumentCallbacks_quvexnativenet(QvArgumentCallback, QvArgumentCallback argumentNull,
                                                           QvArgumentCallback) {
  quvex::binding::argumentNullCallback = argumentNull;
}

void SWIGRegisterStringCallback_quvexnativenet(QvStringCallback callback) { quvex::binding::stringCallback = callback; }

void QVExceptionRegisterCallback(QvFailureCallback callback) { quvex::binding::failureCallback = callback; }
