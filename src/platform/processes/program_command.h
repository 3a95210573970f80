// A program of the system and what it is to be started with.
#pragma once

#include <string>
#include <vector>

namespace corvane::platform {

struct ProgramCommand {
    std::string executable;             // absolute path
    std::vector<std::string> arguments; // without the program's name

    friend bool operator==(const ProgramCommand&, const ProgramCommand&) = default;
};

} // namespace corvane::platform
