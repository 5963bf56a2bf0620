#pragma once

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "quvex.h"

/// What the examples share: a seeded generator for their data, and a main that solves, checks and maybe saves.
namespace example {

/// The same data on every machine.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state(seed) {}
  /// Uniform in [low, high].
  int between(int low, int high) {
    state = state * 1664525U + 1013904223U;
    return low + static_cast<int>((state >> 8U) % static_cast<std::uint32_t>(high - low + 1));
  }

 private:
  std::uint32_t state;
};

inline bool isSet(quvex::QVExpression* decision) { return decision->getIntValue() == 1; }

/// Runs `Model`, which builds itself into a solver and later recomputes its answer from its own data:
///   PROGRAM [ITERATIONS] [FILE]      FILE receives the model as a saved environment, and nothing is solved
template <class Model>
int run(int argc, char** argv, std::int64_t defaultIterations) {
  try {
    quvex::Quvex solver;
    Model model(*solver.getModel());
    solver.getModel()->close();
    if (argc > 2) {
      solver.saveEnvironment(argv[2]);
      return EXIT_SUCCESS;
    }
    solver.createPhase()->setIterationLimit(argc > 1 ? std::atoll(argv[1]) : defaultIterations);
    solver.solve();
    const std::string fault = model.findFault();
    std::cout << (fault.empty() ? "The answer holds." : "The answer is wrong: " + fault) << std::endl;
    return fault.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << std::endl;
    return EXIT_FAILURE;
  }
}

}  // namespace example
