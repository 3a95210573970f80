// Reading and writing of the small cache files that hold one record each.
#pragma once

#include <optional>
#include <string>
#include <system_error>

#include "platform/files/directory.h"
#include "records/json/json_reader.h"
#include "records/json/json_writer.h"

namespace corvane {

// Absent when the file doesn't exist. Throws std::system_error when it can't be read, JsonError when it
// doesn't decode.
template <class Record>
std::optional<Record> readRecordFile(const std::string& path) {
    if (!platform::fileExists(path)) return std::nullopt;
    std::string reason;
    const auto content = platform::readFile(path, INT64_MAX, &reason);
    if (!content) throw std::system_error(std::make_error_code(std::errc::io_error), reason);
    return JsonReader().read<Record>(*content);
}

// The same with every failure taken as a missing file.
template <class Record>
std::optional<Record> readRecordFileIfUsable(const std::string& path) {
    try {
        return readRecordFile<Record>(path);
    } catch (const JsonError&) {
        return std::nullopt;
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

} // namespace corvane
