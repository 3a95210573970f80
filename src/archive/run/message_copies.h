// Reads the copies of one message out of Mail's store. A copy that isn't there is passed over; one that is
// there and can't be used is told. Blocks.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "archive/message_extraction.h"
#include "platform/files/layers/file_layer.h"
#include "platform/threads/time_limited_worker.h"
#include "records/archived/file_readings.h"
#include "records/mail_message_record.h"

namespace corvane::archive {

struct CopyProblem {
    std::string path;
    std::string reason; // for the user
};

struct MessageCopies {
    // Those that can be archived, an incomplete one too: their bytes and, at the same positions, what reading
    // them has shown. Copies with the same bytes share them.
    std::vector<MessageBytes> messages;
    std::vector<CopyReading> readings;

    std::vector<CopyReading> unreadable;
    // Files of other messages, which aren't archived with this one: with the hashes of their bodies, so that
    // what the archive has of the message isn't taken for them.
    std::vector<CopyReading> ofOthers;
    std::vector<CopyProblem> problems; // of unreadable and incomplete copies, and of files of other messages
    std::chrono::duration<double> reading{};
    std::chrono::duration<double> parsing{};
};

// In the order of the message's files. `limit` is restarted before each step.
MessageCopies readCopies(platform::FileLayer& files, platform::JobLimit& limit,
                         const MailMessageRecord& message, Date now);

// A missing file, or one that is another message's, has this reason.
inline constexpr const char* missingFileReason = "邮件文件不存在，可能已被 Mail 重新索引，请重新扫描后再试。";

} // namespace corvane::archive
