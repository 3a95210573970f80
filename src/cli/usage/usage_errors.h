// What was wrong with the arguments, in the user's language: the parser itself speaks English.
#pragma once

#include <string>

#include <CLI/App.hpp>

namespace corvane::cli {

// One line, with the command whose help says more.
std::string usageError(const CLI::ParseError& error, const CLI::App& parser);

} // namespace corvane::cli
