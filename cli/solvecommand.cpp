#include "cli/solvecommand.h"

#include <iostream>
#include <memory>
#include <string_view>

#include "cli/environment.h"
#include "cli/errors.h"
#include "cli/interrupt.h"
#include "cli/outputfile.h"
#include "cli/parametertable.h"
#include "cli/phaseoption.h"

namespace quvex::cli {

namespace {

/// Sends what the library prints on standard output to standard error while it lives: the former is for results alone.
class LibraryOutputToStderr {
 public:
  LibraryOutputToStderr() : former(std::cout.rdbuf(std::cerr.rdbuf())) {}
  ~LibraryOutputToStderr() { std::cout.rdbuf(former); }
  LibraryOutputToStderr(const LibraryOutputToStderr&) = delete;
  LibraryOutputToStderr& operator=(const LibraryOutputToStderr&) = delete;

 private:
  std::streambuf* former;
};

/// What the display callback needs. The library itself is silent unless "--verbose" asks for all that it has to say.
struct Display {
  Quvex& solver;
  const Interrupt& interrupt;
  bool silent;
  bool verbose;
};

[[nodiscard]] std::vector<AdvancedSetting> parseSettings(const SolveOptions& options) {
  std::vector<AdvancedSetting> settings;
  for (const std::string& text : options.settings) settings.push_back(parseSetting(text, options.allowUnknown));
  if (options.verbose) settings.push_back({"traceEnabled", 1});
  return settings;
}

[[nodiscard]] std::vector<PhaseLimits> parsePhases(const SolveOptions& options) {
  std::vector<PhaseLimits> phases;
  for (const std::string& text : options.phases) phases.push_back(parsePhase(text));
  if (!options.seconds && !options.iterations) return phases;
  if (!phases.empty()) {
    throw CommandError(kExitUsage, "--phase has limits of its own; leave out --time and --iterations");
  }
  phases.push_back({options.seconds, options.iterations, std::nullopt});
  return phases;
}

[[nodiscard]] std::unique_ptr<OutputFile> reserveOutput(const std::string& fileName) {
  if (fileName.empty()) return nullptr;
  if (fileName.ends_with(".json") || fileName.ends_with(".sol") || isEnvironmentName(fileName)) {
    return std::make_unique<OutputFile>(fileName);
  }
  throw CommandError(kExitUsage, fileName + ": the ending tells no format; use .json or .sol for a solution, .qvm, " +
                                     ".qvm.gz, .qvb or .qvb.gz for a whole environment");
}

void applyParameters(const SolveOptions& options, QVParam& param) {
  if (options.seed) param.setSeed(*options.seed);
  if (options.threads) param.setNbThreads(*options.threads);
  if (options.annealing) param.setAnnealingLevel(static_cast<int>(*options.annealing));
  if (options.every) param.setTimeBetweenDisplays(*options.every);
}

void showProgress(void* context) {
  const Display& display = *static_cast<Display*>(context);
  if (display.verbose)
    Quvex::displayProgress(&display.solver);
  else if (!display.silent)
    std::cerr << display.solver.getInfo() << std::endl;
  // A signal that came before the threads existed found nothing to stop.
  if (display.interrupt.happened()) display.solver.stop();
}

/// The objectives as the progress line has them, such as "obj = (7)".
[[nodiscard]] std::string objectivesOfProgressLine(const std::string& line) {
  const std::size_t begin = line.find("]: ") + 3;
  return line.substr(begin, line.find(", mov = ") - begin);
}

void printSummary(Quvex& solver) {
  const QVSolutionStatus status = solver.getSolution()->getStatus();
  if (status == QVSolutionStatus::Inconsistent) {
    std::cerr << "Inconsistent model.\n" << std::endl;
    return;
  }
  const QVStatistics& statistics = *solver.getStatistics();
  std::string word = statusWord(status);
  word.front() = static_cast<char>(std::toupper(word.front()));
  std::cerr << statistics.getNbIterations() << " iterations, " << statistics.getNbMoves() << " moves performed in "
            << statistics.getRunningTime() << " seconds\n"
            << word << " solution: " << objectivesOfProgressLine(solver.getInfo()) << '\n'
            << std::endl;
}

/// Solves with the library's own verbosity set aside, so that a saved environment keeps that of its file.
void search(Display& display) {
  Quvex& solver = display.solver;
  const int fileVerbosity = solver.getParam()->getVerbosity();
  solver.getParam()->setVerbosity(display.verbose ? 1 : 0);
  solver.setDisplayCallback(&showProgress, &display);
  const bool summarise = !display.silent && !display.verbose;
  if (summarise) std::cerr << '\n' << solver.toString() << std::flush;
  {
    const LibraryOutputToStderr redirected;
    solver.solve();
  }
  if (summarise) printSummary(solver);
  solver.getParam()->setVerbosity(fileVerbosity);
}

void writeToStandardOutput(const std::string& text) {
  std::cout << text << std::flush;
  if (!std::cout) throw CommandError(kExitOutput, "standard output cannot be written; use -o FILE");
}

void writeToFile(Quvex& solver, const RunRecord& record, const SolveOptions& options, OutputFile& output) {
  if (options.outputFile.ends_with(".json")) {
    output.writeAndCommit(resultAsJson(solver, record));
    return;
  }
  if (options.outputFile.ends_with(".sol")) {
    output.writeAndCommit(resultAsText(solver, record, options.shown));
    return;
  }
  try {
    solver.saveEnvironment(output.temporaryName());
  } catch (const QVException& failure) {
    throw CommandError(kExitOutput, options.outputFile + ": " + failure.getExplanation());
  }
  output.commit();
}

}  // namespace

void runSolve(const SolveOptions& options) {
  const std::vector<AdvancedSetting> settings = parseSettings(options);
  const std::vector<PhaseLimits> phases = parsePhases(options);
  const std::unique_ptr<OutputFile> output = reserveOutput(options.outputFile);
  Interrupt interrupt([&output] {
    if (output) output->discard();
  });

  Quvex solver;
  loadEnvironment(solver, options.modelFile, settings);
  applyParameters(options, *solver.getParam());
  if (!phases.empty()) replacePhases(solver, phases);

  interrupt.setSearch(&solver);
  Display display{solver, interrupt, options.quiet, options.verbose};
  search(display);

  const RunRecord record{options.modelFile, findStopReason(solver, interrupt.happened())};
  if (output) writeToFile(solver, record, options, *output);
  if (options.json)
    writeToStandardOutput(resultAsJson(solver, record));
  else if (!output)
    writeToStandardOutput(resultAsText(solver, record, options.shown));
  // The solver goes before the guard that may call it.
  interrupt.setSearch(nullptr);
}

}  // namespace quvex::cli
