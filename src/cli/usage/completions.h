// What shells offer while a command line is typed. Made of the commands' own descriptions.
#pragma once

#include <string>
#include <string_view>

#include "cli/usage/command_descriptions.h"

namespace corvane::cli {

// The script for "bash", "zsh" or "fish"; empty for any other shell.
std::string completions(const ProgramDescription& program, std::string_view shell);

} // namespace corvane::cli
