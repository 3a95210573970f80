// The command line of corvane-cli: what may be given, and which command runs.
#pragma once

namespace corvane::cli {

// Parses the arguments, runs the command and returns the exit status. Needs a QCoreApplication.
int runCommandLine(int argc, char** argv);

} // namespace corvane::cli
