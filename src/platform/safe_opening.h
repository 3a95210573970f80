// Opening files that others have made. Blocks; never on the main thread.
#pragma once

#include <string>

#include "platform/platform.h"

namespace corvane::platform {

enum class Opening {
    opened,
    shownInFolder, // no document (files/document_file.h): the system might run it
    refused,       // there is no desktop, or nothing on it takes the file
};

// Opens a document with the program that the desktop has for it; any other file is only shown where it lies.
Opening openOrShow(const Platform& platform, const std::string& path);

} // namespace corvane::platform
