// The short text of a message for lists: from the mail worker where it gives a good one, else from our own
// small walk through the message.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "records/file_url.h"
#include "worker/mail_worker_client.h"

namespace corvane::mailstore {

// Read of a message for its preview: a body behind a larger attachment has none.
inline constexpr std::int64_t previewByteLimit = 2'097'152;

// Blocks for up to the worker's time limit. Throws MessageFileError when the file can't be read; failures of
// the worker aren't told.
std::string previewText(const MailWorkerClient& worker, const FileURL& file);

// By our own walk alone, as it stands. Throws MessageFileError when the file can't be read.
std::string previewTextWithoutWorker(const FileURL& file);

// Of a message as decodeEmlx gives it: at most `previewCharacters`, or the placeholder of an empty body.
// Pure.
std::string previewText(std::string_view messageText);

} // namespace corvane::mailstore
