#include "cli/command_line.h"

#include <algorithm>
#include <exception>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/command_set.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/usage/command_descriptions.h"
#include "cli/usage/completions.h"
#include "cli/usage/help_text.h"
#include "cli/usage/manual_page.h"
#include "cli/usage/usage_errors.h"
#include "records/logs/console_log.h"
#include "records/texts/error_reasons.h"

namespace corvane::cli {

namespace {

// What failed, as its thrower named it, with a reason such as a full disk in the user's language.
std::string inWordsForUsers(const std::system_error& error) {
    std::string text = error.what();
    const std::string reason = error.code().message();
    const auto& category = error.code().category();
    const bool isOfSystem = category == std::generic_category() || category == std::system_category();
    if (!isOfSystem || !text.ends_with(reason)) return text;
    return text.replace(text.size() - reason.size(), reason.size(), systemErrorReason(error.code().value()));
}

// Last first, as the parser reads them. It gives an option that ends in "=" the next argument, so an empty
// value becomes an argument of its own.
std::vector<std::string> reversedArguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    bool mayBeOption = true;
    for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
        mayBeOption = mayBeOption && argument != "--";
        const bool lacksValue =
            mayBeOption && argument.starts_with("--") && argument.find('=') == argument.size() - 1;
        arguments.emplace_back(lacksValue ? argument.substr(0, argument.size() - 1) : argument);
        if (lacksValue) arguments.emplace_back();
    }
    std::ranges::reverse(arguments);
    return arguments;
}

class CommandLine {
  public:
    CommandLine()
      : commands_(parser_) {
        parser_.formatter_fn(
            [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
        addCommands(commands_);
    }

    int run(int argc, char** argv) {
        // For the build, which installs what is printed.
        if (argc == 3 && argv[1] == std::string_view("--print")) return print(argv[2]);
        try {
            parser_.parse(reversedArguments(argc, argv));
        } catch (const CLI::CallForHelp&) {
            printRaw(parser_.help());
            return done;
        } catch (const CLI::CallForVersion& version) {
            printText(version.what());
            return done;
        } catch (const CLI::ParseError& error) {
            messageLine(usageError(error, parser_));
            return wrongUsage;
        }
        return runChosen();
    }

  private:
    int print(std::string_view what) const {
        const ProgramDescription program = describeProgram(parser_);
        const std::string text = what == "man" ? manualPage(program) : completions(program, what);
        printRaw(text);
        return text.empty() ? wrongUsage : done;
    }

    int runChosen() {
        try {
            return commands_.chosen()();
        } catch (const Interrupted& interruption) {
            messageLine(interruption.what());
            return statusOf(interruption);
        } catch (const std::system_error& error) {
            return reportFailure(inWordsForUsers(error), statusOf(error));
        } catch (const std::exception& error) {
            return reportFailure(error.what(), statusOf(error));
        }
    }

    int reportFailure(const std::string& message, ExitStatus status) const {
        std::istringstream lines(message);
        for (std::string line; std::getline(lines, line);) messageLine(line);
        if (commands_.common().json) printFailure(message);
        return status;
    }

    static void printFailure(const std::string& message) {
        JsonDocument document;
        document.object([&] { document.member("error", message); });
        try {
            document.print();
        } catch (const std::exception& error) {
            // Where that is what the command has failed by, it was told.
            if (error.what() != message) messageLine(error.what());
        }
    }

    CLI::App parser_{"把多年的邮件从 Apple Mail 归档出来", "corvane-cli"};
    CommandSet commands_;
};

} // namespace

int runCommandLine(int argc, char** argv) {
    return CommandLine().run(argc, argv);
}

} // namespace corvane::cli
