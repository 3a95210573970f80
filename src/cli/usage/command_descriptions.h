// What the commands say of themselves, for help, completions and the manual page. Made from the parser, so
// that none of them can differ from what is accepted.
#pragma once

#include <string>
#include <vector>

#include <CLI/App.hpp>

namespace corvane::cli {

struct OptionDescription {
    std::vector<std::string> names; // with their dashes; of an argument its one name
    std::string summary;
    std::string value;                // what stands for its value; empty for a flag
    std::vector<std::string> choices; // empty unless the value is one of these
    bool isFile = false;              // the value is a path
    bool isRequired = false;
    bool isRepeatable = false;
};

struct CommandDescription {
    std::string name;
    std::string summary;
    std::string examples; // lines
    std::vector<OptionDescription> arguments;
    std::vector<OptionDescription> options; // without those that all commands have
};

struct ProgramDescription {
    std::string name;
    std::string summary;
    std::vector<OptionDescription> commonOptions;
    std::vector<CommandDescription> commands; // in the order in which they were added
};

ProgramDescription describeProgram(const CLI::App& parser);
CommandDescription describeCommand(const CLI::App& command);
std::vector<OptionDescription> describeOptions(const CLI::App& command);

} // namespace corvane::cli
