// Opening files that others have made. Blocks; never on the main thread.
#pragma once

#include <string>

#include "platform/platform.h"

namespace corvane::platform {

enum class Opening {
    opened,
    shownInFolder, // it may be a program (files/program_file.h)
    refused,       // there is no desktop, or nothing on it takes the file
};

// Opens the file with the program that the desktop has for it; what the system might execute is only shown
// where it lies.
Opening openOrShow(const Platform& platform, const std::string& path);

} // namespace corvane::platform
