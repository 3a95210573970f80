// The short text of a message for lists, from the mail worker where it returns a good one.
#pragma once

#include <string>

#include "records/file_url.h"
#include "worker/mail_worker_client.h"

namespace corvane::mailstore {

// The worker's text unless it looks corrupt, else that of our own walk through the message. Blocks for up to
// the worker's time limit. Throws mime::MessageFileError when the file can't be read; a failure of the worker
// leads to our own walk.
std::string previewText(const MailWorkerClient& worker, const FileURL& file);

} // namespace corvane::mailstore
