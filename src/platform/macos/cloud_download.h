// The one question to iCloud that has no C interface. Any thread.
#pragma once

#include <string>

namespace corvane::platform::macos {

// Asks for the content of a file that the cloud holds, and returns without waiting for it. No effect for a
// file that no cloud knows.
void startCloudDownload(const std::string& path);

} // namespace corvane::platform::macos
