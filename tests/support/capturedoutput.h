#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace quvex {

/// Takes what is printed on standard output while it lives.
class CapturedOutput {
 public:
  CapturedOutput() : previous(std::cout.rdbuf(stream.rdbuf())) {}
  ~CapturedOutput() { std::cout.rdbuf(previous); }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  [[nodiscard]] std::string text() const { return stream.str(); }

 private:
  std::ostringstream stream;
  std::streambuf* previous;
};

}  // namespace quvex
