#include <csignal>

#include <QCoreApplication>

#include "cli/command_line.h"
#include "cli/session.h"

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    // A reader that goes away shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    corvane::cli::catchInterrupts();
    return corvane::cli::runCommandLine(argc, argv);
}
