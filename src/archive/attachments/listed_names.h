// The names of a mail's attachments as its record lists them, out of the mail itself.
#pragma once

#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "text/shared_text.h"

namespace corvane::archive {

// Gives the names for the path of a message file, absent where nobody could look through it. Blocks, and may
// be called by one thread at a time.
using ListedNames =
    std::function<std::optional<std::vector<SharedText>>(const std::string& path, const std::stop_token&)>;

// By one mail worker for all mails, started for the first one and anew after one that it failed at. Of each
// at most 8 MiB are read. The platform has to outlive it.
ListedNames workerListedNames(const platform::Platform& platform);

} // namespace corvane::archive
