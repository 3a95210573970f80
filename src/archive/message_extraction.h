// Cutting the message out of a stored file, and telling whether the copies of one message have the same body.
// Pure functions over bytes; the results are views into them.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/file_url.h"

namespace corvane::archive {

// The message bytes of a whole .emlx file: a line with their count in decimal, the message, a property list.
// A file shorter than its count gives what is there; a file without such a line, or with a negative count,
// nothing.
std::optional<std::string_view> messageData(std::string_view emlx);

// Where the body begins: behind the first CR LF CR LF or LF LF; the size when there is neither.
std::size_t bodyStartIndex(std::string_view message);

// One stored copy of a message. The file's bytes are shared, so that a job that outlives its caller may keep
// them.
struct StoredCopy {
    FileURL url;
    std::shared_ptr<const std::string> file;
    std::string_view data; // into `file`
};

// Copies with bodies of one length and the same first 8192 bytes are one group. Groups stand in the order of
// their first copies, copies in theirs.
std::vector<std::vector<StoredCopy>> groupByBody(std::vector<StoredCopy> copies);

} // namespace corvane::archive
