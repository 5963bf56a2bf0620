#include "cli/application.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>

#include "cli/checkcommand.h"
#include "cli/convertcommand.h"
#include "cli/environment.h"
#include "cli/errors.h"
#include "cli/infocommand.h"
#include "cli/nearest.h"
#include "cli/paramscommand.h"
#include "cli/solvecommand.h"

namespace quvex::cli {

namespace {

constexpr const char* kGreeting =
    R"(quvex finds good solutions of optimisation models by local search, from no problem-specific code.

  quvex solve model.qvm               search until Ctrl-C or a proven end, then print the best solution
  quvex solve model.qvm -t 10 -o best.json
                                      search for 10 seconds, write the solution to a file
  quvex check model.qvm best.json     recompute the solution from scratch
  quvex info model.qvm                what the model is made of
  quvex params                        the parameters of the search

"quvex --help" lists all commands, "quvex solve --help" all flags of a command.
)";

constexpr const char* kSolveExamples = R"(
Examples:
  quvex solve model.qvm -t 10                          ten seconds, solution on standard output
  quvex solve model.qvm -i 100000 -j 4 -s 7 --json     reproducible: same flags, same solution
  quvex solve model.qvm.gz -t 60 -o best.json          solution to a file; .qvm saves the whole environment
  quvex solve model.qvm --phase time=10,objective=0 --phase time=20
                                                       first the first objective alone, then all of them
  quvex solve model.qvm -p neighborhoodSize=4          an advanced parameter; "quvex params" lists them

Progress goes to standard error, the result to standard output. Ctrl-C ends the search and keeps its best solution.
Exit codes: 0 done, 1 internal fault, 2 wrong usage, 3 unreadable model, 4 unwritable output, 130 second Ctrl-C.)";

/// The parser with everything that it fills in.
class Application {
 public:
  Application();

  /// Runs the command that the arguments name.
  [[nodiscard]] int run(int argc, const char* const* argv);

 private:
  void addSolve();
  void addCheck();
  void addInfo();
  void addConvert();
  void addParams();
  void addVersion();
  CLI::App* addCommand(const std::string& name, const std::string& description);
  [[nodiscard]] std::string explain(const CLI::ParseError& error) const;
  [[nodiscard]] std::vector<std::string> commandNames() const;
  void refuseUnknownCommand(const std::string& word) const;

  CLI::App app{"A general local-search optimiser.", "quvex"};
  SolveOptions solveOptions;
  std::string modelFile;
  std::string otherFile;
  std::string parameterKey;
  bool kernel = false;
  int exitCode = kExitDone;
};

Application::Application() {
  app.set_version_flag("--version", QVVersion::getInfo());
  app.require_subcommand(1);
  app.footer("\"quvex COMMAND --help\" tells the flags of a command, with examples.");
  addSolve();
  addCheck();
  addInfo();
  addConvert();
  addParams();
  addVersion();
}

CLI::App* Application::addCommand(const std::string& name, const std::string& description) {
  CLI::App* command = app.add_subcommand(name, description);
  command->get_formatter()->column_width(34);
  return command;
}

void Application::addSolve() {
  CLI::App* solve = addCommand("solve", "Search for the best solution of a model");
  SolveOptions& o = solveOptions;
  // The texts tell the ranges already.
  const auto range = [](auto lowest, auto highest) { return CLI::Range(lowest, highest).description(""); };
  const auto atLeast = [&](auto lowest) { return range(lowest, std::numeric_limits<decltype(lowest)>::max()); };
  solve->add_option("MODEL", o.modelFile, "Saved environment: text or binary, plain or gzip")->required();
  solve->add_option("-t,--time", o.seconds, "Time limit in seconds; replaces the phases of the file")
      ->check(atLeast(1))
      ->type_name("SEC");
  solve->add_option("-i,--iterations", o.iterations, "Iteration limit of each thread; replaces the phases of the file")
      ->check(atLeast(std::int64_t{1}))
      ->type_name("N");
  solve->add_option("-j,--threads", o.threads, "Search threads, 1 to 1024 (default 2)")
      ->check(range(1, 1024))
      ->type_name("N");
  solve->add_option("-s,--seed", o.seed, "Start of all random draws (default 0)")->check(atLeast(0))->type_name("N");
  solve->add_option("--annealing", o.annealing, "0 descends only; higher levels, up to 9, accept more (default 1)")
      ->check(range(0, 9))
      ->type_name("LEVEL");
  solve->add_option("-p,--param", o.settings, "Advanced parameter, may be repeated; \"quvex params\" lists them")
      ->allow_extra_args(false)
      ->type_name("KEY=VALUE");
  solve->add_flag("--allow-unknown", o.allowUnknown, "Pass keys of -p that the solver does not read");
  solve->add_option("--phase", o.phases, "Limits of one phase, may be repeated; replaces the phases of the file")
      ->allow_extra_args(false)
      ->type_name("time=SEC,iterations=N,objective=I");
  solve->add_option("--every", o.every, "Seconds between two progress lines, 1 to 65535 (default 1)")
      ->check(range(1, 65535))
      ->type_name("SEC");
  solve->add_option("-o,--output", o.outputFile, ".json or .sol: the solution; .qvm[.gz], .qvb[.gz]: everything")
      ->type_name("FILE");
  solve->add_flag("--json", o.json, "Print the result as one JSON object");
  const std::map<std::string, ShownValues> shownWords = {{"all", ShownValues::All},
                                                         {"nonzero", ShownValues::Nonzero},
                                                         {"named", ShownValues::Named},
                                                         {"none", ShownValues::None}};
  solve->add_option("--values", o.shown, "Decisions in a textual result: all, nonzero, named or none (default all)")
      ->transform(CLI::Transformer(shownWords).description(""))
      ->type_name("WHICH");
  CLI::Option* quiet = solve->add_flag("-q,--quiet", o.quiet, "No progress");
  solve->add_flag("-v,--verbose", o.verbose, "More progress: the compiled graph, and a table of moves")
      ->excludes(quiet);
  solve->footer(kSolveExamples);
  solve->callback([this] { runSolve(solveOptions); });
}

void Application::addCheck() {
  CLI::App* check = addCommand("check", "Recompute a solution from scratch; exit code 10 if it is violated");
  check->add_option("MODEL", modelFile, "Saved environment")->required();
  check->add_option("SOLUTION", otherFile, "JSON as \"solve\" writes it, or a saved environment")->required();
  check->footer("\nExample:\n  quvex solve model.qvm -t 10 -o best.json && quvex check model.qvm best.json");
  check->callback([this] { exitCode = runCheck(modelFile, otherFile) ? kExitDone : kExitViolated; });
}

void Application::addInfo() {
  CLI::App* info = addCommand("info", "Describe a model");
  info->add_option("MODEL", modelFile, "Saved environment")->required();
  info->add_flag("--kernel", kernel, "Add the figures of the compiled graph");
  info->footer("\nExample:\n  quvex info model.qvm.gz --kernel");
  info->callback([this] { runInfo(modelFile, kernel); });
}

void Application::addConvert() {
  CLI::App* convert = addCommand("convert", "Write a saved environment in another format, by the file's ending");
  convert->add_option("IN", modelFile, "Saved environment")->required();
  convert->add_option("OUT", otherFile, ".qvm, .qvm.gz, .qvb or .qvb.gz")->required();
  convert->footer("\nExample:\n  quvex convert model.qvm model.qvb.gz");
  convert->callback([this] { runConvert(modelFile, otherFile); });
}

void Application::addParams() {
  CLI::App* params = addCommand("params", "List the parameters: default, range, meaning");
  params->add_option("NAME", parameterKey, "Only this parameter");
  params->callback([this] { runParams(parameterKey); });
}

void Application::addVersion() {
  addCommand("version", "Print the version")->callback([] { std::cout << QVVersion::getInfo(); });
}

std::vector<std::string> Application::commandNames() const {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

void Application::refuseUnknownCommand(const std::string& word) const {
  const std::vector<std::string> names = commandNames();
  if (word.starts_with('-') || std::find(names.begin(), names.end(), word) != names.end()) return;
  if (isEnvironmentName(word) || std::filesystem::exists(word)) {
    throw CommandError(kExitUsage, "\"" + word + "\" is a file; did you mean \"quvex solve " + word + "\"?");
  }
  const std::string hint = didYouMean(word, names);
  throw CommandError(kExitUsage,
                     "unknown command \"" + word + "\"" + (hint.empty() ? "; \"quvex --help\" lists all" : hint));
}

/// The parser's own sentence; for an unknown flag, with the nearest one of the command.
std::string Application::explain(const CLI::ParseError& error) const {
  const auto chosen = app.get_subcommands();
  const std::string help = chosen.empty() ? "quvex --help" : "quvex " + chosen.front()->get_name() + " --help";
  std::string sentence = error.what();
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr && !chosen.empty()) {
    std::vector<std::string> flags;
    for (const CLI::Option* option : chosen.front()->get_options()) {
      for (const std::string& name : option->get_lnames()) flags.push_back("--" + name);
    }
    const std::string unknown = sentence.substr(sentence.rfind(' ') + 1);
    sentence = "unknown argument \"" + unknown + "\"";
    const std::string hint = didYouMean(unknown, flags);
    if (!hint.empty()) return sentence + hint;
  }
  return sentence + "; \"" + help + "\" tells what is allowed";
}

int Application::run(int argc, const char* const* argv) {
  if (argc < 2) {
    std::cout << kGreeting;
    return kExitDone;
  }
  refuseUnknownCommand(argv[1]);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {
    return app.exit(request);  // help or version
  } catch (const CLI::ParseError& error) {
    throw CommandError(kExitUsage, explain(error));
  }
  return exitCode;
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  try {
    Application application;
    return application.run(argc, argv);
  } catch (const CommandError& error) {
    std::cerr << "quvex: " << error.what() << std::endl;
    return error.exitCode();
  } catch (const QVException& failure) {
    std::cerr << "quvex: " << failure.getMessage() << "\n  raised at " << failure.getFileName() << ":"
              << failure.getLineNumber() << "; please report it together with the model" << std::endl;
  } catch (const std::bad_alloc&) {
    std::cerr << "quvex: out of memory; the model needs a larger machine" << std::endl;
  } catch (const std::exception& failure) {
    std::cerr << "quvex: " << failure.what() << "; please report it together with the model" << std::endl;
  }
  return kExitInternal;
}

}  // namespace quvex::cli
