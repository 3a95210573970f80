#include "records/archive_files/archive_index_file.h"

#include <cerrno>
#include <cstddef>
#include <utility>

#include "platform/files/cloud_placeholder.h"
#include "platform/files/layers/layer_reading.h"
#include "records/archive_files/archive_index_decoder.h"
#include "records/json/record_file.h"
#include "records/json/record_forms.h"

namespace corvane {

namespace {

using State = ArchiveIndexReading::State;

ArchiveIndexReading failedLook(int error) {
    return {.state = State::couldNotLook, .index = {}, .stamp = {}, .error = error};
}

// There is no file of the index's name; one of a cloud provider may stand for it.
ArchiveIndexReading readingWithoutFile(platform::FileLayer& files, const std::string& path) {
    struct stat status{};
    if (files.stat(platform::cloudPlaceholderPath(path), status) == 0) {
        ArchiveIndexReading inCloud = failedLook(ENODATA);
        inCloud.isInCloud = true;
        return inCloud;
    }
    if (!platform::saysAbsent(errno)) return failedLook(errno);
    return {.state = State::absent, .index = {}, .stamp = {}};
}

} // namespace

ArchiveIndexStamp ArchiveIndexStamp::of(const struct stat& status) {
    return {.file = platform::FileIdentity::of(status), .stamp = stampOf(status)};
}

ArchiveIndexReading readArchiveIndexFile(platform::FileLayer& files, const std::string& path,
                                         const std::function<void()>& onProgress) {
    struct stat status{};
    const auto file = platform::openRegularFile(files, path, platform::FinalLink::refuse, status);
    if (!file) return errno == ENOENT ? readingWithoutFile(files, path) : failedLook(errno);
    if (status.st_size > largestArchiveIndexBytes) return failedLook(EFBIG);
    ArchiveIndexDecoder decoder;
    const int error =
        platform::readPieces(files, file.get(), static_cast<std::size_t>(status.st_size), [&](auto piece) {
            if (onProgress) onProgress();
            decoder.add(piece);
            return true;
        });
    if (error != 0) return failedLook(error);
    ArchiveIndexReading reading{.state = State::damaged, .index = {}, .stamp = {}};
    reading.stamp = ArchiveIndexStamp::of(status);
    if (auto index = decoder.finish()) {
        reading.state = State::usable;
        reading.index = std::move(*index);
    }
    return reading;
}

std::optional<EmailArchiveIndex> readArchiveIndex(const std::string& path) {
    return readRecordFileIfUsable<EmailArchiveIndex>(path);
}

std::optional<EmailArchiveIndex> decodeArchiveIndex(std::string_view json) {
    ArchiveIndexDecoder decoder;
    decoder.add(json);
    return decoder.finish();
}

std::string encodeArchiveIndex(const EmailArchiveIndex& index) {
    return encodePrettyJson(index);
}

} // namespace corvane
