// What a user is told about opening files.
#pragma once

#include <string>
#include <string_view>

#include "archive/opening/archived_cloud_file_opener.h"
#include "platform/safe_opening.h"

namespace corvane {

// `root` is that of the archive.
std::string openErrorText(ArchivedCloudFileOpener::OpenError::Kind kind, std::string_view root);

// Empty for a file that was opened.
std::string openingNote(platform::Opening opening);

// Why an original wasn't opened in Mail; `notOpened` is when the system has nothing that opens its address.
enum class OriginalFailure { notInMail, noAnswer, notOpened };

std::string originalFailureText(OriginalFailure failure);

} // namespace corvane
