#pragma once

namespace mox::cli {

/// The whole program: reads the command line, runs the command, and turns every failure into one
/// line on standard error. Gives the exit status: 0, 1 when the command failed, 2 when it was
/// called wrongly.
int runProgram(int argc, char const* const* argv);

}  // namespace mox::cli
