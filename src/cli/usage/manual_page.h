// The manual page of the program, as man(7) reads it. Made of the commands' own descriptions.
#pragma once

#include <string>

#include "cli/usage/command_descriptions.h"

namespace corvane::cli {

std::string manualPage(const ProgramDescription& program);

} // namespace corvane::cli
