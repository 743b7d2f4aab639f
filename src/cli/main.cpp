#include "cli/program.h"

int main(int argc, char** argv) {
  return mox::cli::runProgram(argc, argv);
}
