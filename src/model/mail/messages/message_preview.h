// The preview text of one message file, made anew.
#pragma once

#include <string>

#include "platform/platform.h"

namespace corvane {

// Blocks for up to the mail worker's time limit. Throws std::runtime_error with the user's text when the file
// can't be read.
std::string messagePreview(const platform::Platform& platform, const std::string& path);

} // namespace corvane
