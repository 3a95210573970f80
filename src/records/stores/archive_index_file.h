// The form of "archive-index.json", the list of what one archive folder holds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "records/archive_records.h"

namespace corvane {

inline constexpr std::string_view archiveIndexFileName = "archive-index.json";

// Absent when the file is missing, can't be read or doesn't decode. The content is from outside: ids and
// paths in it are untrusted.
std::optional<EmailArchiveIndex> readArchiveIndex(const std::string& path);

std::optional<EmailArchiveIndex> decodeArchiveIndex(std::string_view json);

// Indented, keys sorted, slashes as they are.
std::string encodeArchiveIndex(const EmailArchiveIndex& index);

} // namespace corvane
