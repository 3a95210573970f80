// Whether a list of messages fits where it shall be archived. Lies with what follows from a list of mail, as
// the screens ask it of a selection before any archive is opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "records/mail_message_record.h"

namespace corvane {

// What messages of `bytes` in all need at their destination: a margin of 15 percent is added.
std::int64_t estimatedArchiveBytes(double bytes);

// The user's message when a place with so much room is too small for the messages and their margin; absent
// when it isn't, or its room isn't known.
std::optional<std::string> archiveCapacityShortfall(const MessageList& messages,
                                                    std::optional<std::int64_t> availableBytes);

} // namespace corvane
