#include "archive/archive_verification.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/archive_root.h"
#include "archive/durable_write.h"
#include "mime/header_decoding.h"
#include "mime/message_identifiers.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/stable_id.h"
#include "records/stores/archive_index_file.h"
#include "text/case.h"
#include "text/collation.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

// As much as the decoding of a header field looks at.
constexpr std::size_t headerBytes = 65536;

EmailArchiveIndex indexOf(const std::string& root) {
    const std::string path = platform::joinPath(root, archiveIndexFileName);
    std::error_code error;
    if (!fs::exists(path, error)) {
        throw ArchiveAccessError("找不到归档索引", path, error ? error.value() : ENOENT);
    }
    auto index = readArchiveIndex(path);
    if (!index) throw ArchiveAccessError("无法使用归档索引", path, "文件无法读取，或内容已损坏");
    return std::move(*index);
}

// Whether a record's id isn't that of its own fields.
bool contradictsItself(const ArchivedEmailRecord& record) {
    return baseID(record) != stableID(record);
}

// Whether the header of the file says that it is another message. A message may lack a Message-ID that Mail
// knows it by, so its absence says nothing as long as there is a header at all.
bool holdsAnotherMessage(const ArchivedEmailRecord& record, std::string_view start) {
    if (!record.messageIdentifier || record.messageIdentifier->empty()) return false;
    const auto header = mime::decodedHeaderField("message-id", start);
    if (!header) return !start.empty() && start.find(':') == std::string_view::npos;
    return mime::normalizedMessageIdentifier(*header) != record.messageIdentifier->view();
}

// One spelling for the paths that name one file.
std::string pathKey(std::string_view relativePath) {
    return text::canonicallyComposed(fs::path(relativePath).lexically_normal().string());
}

class Verification {
  public:
    Verification(platform::FileLayer& files, std::string root)
      : files_(files)
      , root_(std::move(root)) {}

    void check(const ArchivedEmailRecord& record);
    void findUnindexed(const std::stop_token& stop);

    ArchiveVerification result;

  private:
    enum class Look { file, nothing, failed };

    Look lookFor(const std::string& relativePath);
    bool readsAsRecorded(const ArchivedEmailRecord& record, const std::string& path);
    void listFolder(const std::string& folder, std::vector<std::string>& subfolders);
    bool isIndexed(const std::string& relativePath);

    platform::FileLayer& files_;
    archive::ArchiveRoot root_;
    std::unordered_set<std::string> indexedPaths_; // keys
    std::unordered_set<std::string> duplicates_;
    std::set<std::pair<dev_t, ino_t>> indexedFiles_;
};

void Verification::check(const ArchivedEmailRecord& record) {
    ++result.checked;
    const std::string path = record.emlRelativePath.str();
    bool isNamedBefore = !indexedPaths_.insert(pathKey(path)).second;
    bool isAnother = contradictsItself(record);
    switch (lookFor(path)) {
    case Look::nothing:
        result.missing.push_back(path);
        break;
    case Look::failed:
        result.unreadable.push_back(path);
        break;
    case Look::file:
        struct stat status{};
        if (files_.stat(root_.at(path), status) == 0 &&
            !indexedFiles_.emplace(status.st_dev, status.st_ino).second) {
            isNamedBefore = true;
        }
        isAnother = !readsAsRecorded(record, path) || isAnother;
    }
    if (isNamedBefore && duplicates_.insert(path).second) result.duplicatePaths.push_back(path);
    if (isAnother) result.identityMismatch.push_back(path);
}

Verification::Look Verification::lookFor(const std::string& relativePath) {
    if (!platform::isSafeRelativePath(relativePath)) return Look::nothing;
    const std::string path = root_.at(relativePath);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::none) return Look::failed;
    if (!fs::is_regular_file(status)) return Look::nothing;
    return root_.holdsFolder(std::string(platform::parentPath(path))) ? Look::file : Look::nothing;
}

// Reads the file through; false when it holds another message.
bool Verification::readsAsRecorded(const ArchivedEmailRecord& record, const std::string& path) {
    std::string start;
    std::int64_t size = 0;
    const bool wasRead = archive::readUncached(
        files_, root_.at(path), archive::BeforeReading::nothing, [&](std::string_view piece) {
            start.append(piece.substr(0, headerBytes - std::min(headerBytes, start.size())));
            size += static_cast<std::int64_t>(piece.size());
            return true;
        });
    result.bytes += size;
    if (!wasRead) {
        result.unreadable.push_back(path);
        return true;
    }
    if (size != record.sizeBytes) result.sizeMismatch.push_back(path);
    return !holdsAnotherMessage(record, start);
}

void Verification::findUnindexed(const std::stop_token& stop) {
    std::vector<std::string> folders{""};
    while (!folders.empty() && !stop.stop_requested()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        listFolder(folder, folders);
    }
    std::ranges::sort(result.unindexed);
}

void Verification::listFolder(const std::string& folder, std::vector<std::string>& subfolders) {
    const auto entries = platform::listDirectory(root_.at(folder), platform::HiddenEntries::skip);
    if (!entries) {
        result.unreadable.push_back(folder);
        return;
    }
    for (const platform::DirectoryEntry& entry : *entries) {
        std::string path = platform::joinPath(folder, entry.name);
        std::error_code ignored;
        if (entry.kind == platform::EntryKind::directory) {
            // A link could lead out of the archive, or round in it.
            if (!fs::is_symlink(root_.at(path), ignored)) subfolders.push_back(std::move(path));
        } else if (text::asciiLowercased(platform::pathExtension(entry.name)) == "eml" && !isIndexed(path)) {
            result.unindexed.push_back(std::move(path));
        }
    }
}

bool Verification::isIndexed(const std::string& relativePath) {
    if (indexedPaths_.contains(pathKey(relativePath))) return true;
    // On a disk without case the record may spell it differently.
    struct stat status{};
    return files_.stat(root_.at(relativePath), status) == 0 &&
           indexedFiles_.contains({status.st_dev, status.st_ino});
}

} // namespace

bool ArchiveVerification::isClean() const {
    return missing.empty() && sizeMismatch.empty() && unindexed.empty() && identityMismatch.empty() &&
           duplicatePaths.empty() && unreadable.empty() && !wasCancelled;
}

ArchiveVerification verifyArchive(const std::string& root,
                                  const std::function<void(std::size_t, std::size_t)>& progress,
                                  const std::stop_token& stop, platform::FileLayer& files) {
    const EmailArchiveIndex index = indexOf(root);
    Verification verification(files, root);
    for (std::size_t position = 0; position < index.records.size() && !stop.stop_requested(); ++position) {
        verification.check(index.records[position]);
        if (progress) progress(position + 1, index.records.size());
    }
    // After a stop the records that weren't looked at would make their files unindexed ones.
    if (!stop.stop_requested()) verification.findUnindexed(stop);
    verification.result.wasCancelled = stop.stop_requested();
    return std::move(verification.result);
}

} // namespace corvane
