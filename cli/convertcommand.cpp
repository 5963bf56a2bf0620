#include "cli/convertcommand.h"

#include "cli/environment.h"
#include "cli/errors.h"
#include "cli/outputfile.h"

namespace quvex::cli {

void runConvert(const std::string& inputFile, const std::string& outputFile) {
  if (!isEnvironmentName(outputFile)) {
    throw CommandError(kExitUsage, outputFile + ": the ending tells no format; use .qvm, .qvm.gz, .qvb or .qvb.gz");
  }
  OutputFile output(outputFile);
  Quvex solver;
  loadEnvironment(solver, inputFile);
  try {
    solver.saveEnvironment(output.temporaryName());
  } catch (const QVException& failure) {
    throw CommandError(kExitOutput, outputFile + ": " + failure.getExplanation());
  }
  output.commit();
}

}  // namespace quvex::cli
