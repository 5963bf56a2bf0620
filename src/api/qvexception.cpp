#include "api/qvexception.h"

#include <utility>

namespace quvex {

QVException::QVException(std::string fileName, int lineNumber, std::string functionName, std::string explanation)
    : fileName(std::move(fileName)),
      functionName(std::move(functionName)),
      lineNumber(lineNumber),
      explanation(std::move(explanation)),
      message("ERROR [function " + this->functionName + "]: " + this->explanation) {}

}  // namespace quvex
