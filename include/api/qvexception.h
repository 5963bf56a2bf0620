#pragma once

#include <exception>
#include <sstream>
#include <string>
#include <string_view>

namespace quvex {

/// Every failure of the library: where it was raised, and a sentence for the user.
/// An object is complete once constructed and is copied freely, also between threads.
class QVException : public std::exception {
 public:
  QVException(std::string fileName, int lineNumber, std::string functionName, std::string explanation);

  /// Path of the raising source, relative to the project, such as "src/api/qvmodel.cpp".
  [[nodiscard]] const std::string& getFileName() const { return fileName; }
  /// Line of the raising source.
  [[nodiscard]] int getLineNumber() const { return lineNumber; }
  /// Fully qualified name, such as "quvex::QVModel::close".
  [[nodiscard]] const std::string& getFunctionName() const { return functionName; }
  /// The sentence alone.
  [[nodiscard]] const std::string& getExplanation() const { return explanation; }
  /// "ERROR [function <functionName>]: <explanation>".
  [[nodiscard]] const std::string& getMessage() const { return message; }
  [[nodiscard]] const std::string& toString() const { return message; }
  [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

 protected:
  QVException() = default;

 private:
  std::string fileName;
  std::string functionName;
  int lineNumber = 0;
  std::string explanation;
  std::string message;
};

/// A failure below the public interface: in the builder, the kernel or the model streams.
class KernelException : public QVException {
 public:
  using QVException::QVException;
  /// Empty texts and line 0: a slot that waits for a real failure.
  KernelException() = default;
};

/// The place of a raising call. Made by `here`, so that file, line and function are the caller's own.
struct Place {
  const char* fileName;
  int lineNumber;
  std::string_view className;  ///< qualified, such as "quvex::QVModel"
  const char* functionName;    ///< unqualified, as the compiler gives it
};

/// The place where it is called, inside a member of `Scope`. `Scope::kName` is the qualified name of that class.
/// Call it outside lambdas: inside one the compiler's function name is "operator()".
template <class Scope>
[[nodiscard]] Place here(const char* fileName = __builtin_FILE(), int lineNumber = __builtin_LINE(),
                         const char* functionName = __builtin_FUNCTION()) {
  return {fileName, lineNumber, Scope::kName, functionName};
}

/// The one way to fail: raise<QVException>(here<QVModel>(), "The phase with index ", i, " does not exist.").
template <class Exception, class... Pieces>
[[noreturn]] void raise(const Place& place, const Pieces&... pieces) {
  std::ostringstream explanation;
  (explanation << ... << pieces);
  throw Exception(place.fileName, place.lineNumber, std::string(place.className) + "::" + place.functionName,
                  explanation.str());
}

}  // namespace quvex
