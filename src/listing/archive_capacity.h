// Whether a list of messages fits where it shall be archived. Lies with what follows from a list of mail, as
// the screens ask it of a selection before any archive is opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/platform.h"
#include "records/mail_message_record.h"

namespace corvane {

// What messages of `bytes` in all need at their destination: a margin of 15 percent is added.
std::int64_t estimatedArchiveBytes(double bytes);

// The user's message when the place at `path` is too small for the messages and their margin; absent when it
// isn't, or can't be told. Asks the disk, which may sleep: not for the main thread.
std::optional<std::string> archiveCapacityShortfall(const MessageList& messages, const std::string& path,
                                                    const platform::Platform& platform);

} // namespace corvane
