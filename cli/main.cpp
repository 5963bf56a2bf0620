#include "cli/application.h"

int main(int argc, char** argv) { return quvex::cli::runProgram(argc, argv); }
