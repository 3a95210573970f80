// The help of the program and of each command, in the user's language.
#pragma once

#include <string>

#include <CLI/App.hpp>

namespace corvane::cli {

// Of the whole program where the parser given is the outermost one.
std::string helpText(const CLI::App& parser);

// An option as it is typed, such as "--year 数字".
struct OptionDescription;
std::string optionForm(const OptionDescription& option);

} // namespace corvane::cli
