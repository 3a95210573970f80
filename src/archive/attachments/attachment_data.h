// One attachment out of a message file, archived or Mail's own. Blocks, on a background thread.
#pragma once

#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/platform.h"

namespace corvane::archive {

// Which one: the file of the message, the name as its record has it, and which of those of that name.
struct AttachmentSource {
    std::string messageFile;
    std::string name;
    std::size_t occurrence = 0;
};

// The bytes, at most 200 MiB; nullopt where the mail worker answers without any. Throws WorkerError, which
// says as well that the message has no such attachment.
std::optional<std::string> attachmentData(const platform::Platform& platform, const AttachmentSource& source,
                                          const std::stop_token& stop);

} // namespace corvane::archive
