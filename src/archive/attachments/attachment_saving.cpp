#include "archive/attachments/attachment_saving.h"

#include <cerrno>
#include <exception>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include "archive/portable_names.h"
#include "platform/files/directory.h"
#include "platform/files/writing/durable_file.h"
#include "platform/paths.h"
#include "records/texts/error_reasons.h"

namespace corvane {

namespace {

std::runtime_error writeFailure(const std::string& path, const std::error_code& error) {
    return std::runtime_error(fmt::format("无法写入 “{}”：{}", path, systemErrorReason(error.value())));
}

// The path of a new file in the folder.
std::string writeUnderFreeName(platform::FileLayer& files, const std::string& folder, const std::string& name,
                               const std::string& data, archive::UniqueNames& names) {
    const std::string portable = archive::portableFileName(name);
    while (true) {
        std::string path = platform::joinPath(folder, names.next(folder, portable));
        const auto error = platform::writeNewFile(files, path, data);
        if (!error) return path;
        if (error.value() != EEXIST) throw writeFailure(path, error);
    }
}

} // namespace

AttachmentSaving saveAttachments(const ArchivedAttachmentExtractor& extractor, platform::FileLayer& files,
                                 const std::vector<AttachmentRef>& attachments, const std::string& folder,
                                 const AttachmentProgress& progress, const std::stop_token& stop) {
    AttachmentSaving result;
    if (const auto error = platform::createDirectories(files, folder)) throw writeFailure(folder, error);
    archive::UniqueNames names;
    const std::int64_t total = std::ssize(attachments);
    for (std::int64_t done = 0; done < total && !stop.stop_requested(); ++done) {
        const AttachmentRef& attachment = attachments[static_cast<std::size_t>(done)];
        progress(done, total);
        try {
            const std::string data = extractor.data(attachment, stop);
            std::string path = writeUnderFreeName(files, folder, attachment.name, data, names);
            result.saved.push_back(
                {attachment.entry.id(), attachment.name, std::move(path), std::ssize(data)});
        } catch (const std::exception& error) {
            if (!stop.stop_requested())
                result.failures.push_back({attachment.entry.id(), attachment.name, error.what()});
        }
    }
    result.wasCancelled = stop.stop_requested();
    progress(total, total);
    return result;
}

SavedAttachment saveAttachment(const ArchivedAttachmentExtractor& extractor, platform::FileLayer& files,
                               const AttachmentRef& attachment, const std::string& target,
                               const std::stop_token& stop) {
    const std::string data = extractor.data(attachment, stop);
    std::string path = target;
    if (platform::isDirectory(path))
        path = platform::joinPath(path, archive::portableFileName(attachment.name));
    const auto error = platform::writeNewFile(files, path, data);
    if (error && error.value() != EEXIST) throw writeFailure(path, error);
    if (error && platform::readFile(path, std::ssize(data)) != data)
        throw std::runtime_error(fmt::format("“{}” 已存在，不会覆盖。", path));
    return {attachment.entry.id(), attachment.name, std::move(path), std::ssize(data)};
}

} // namespace corvane
