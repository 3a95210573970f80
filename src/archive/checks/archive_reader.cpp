#include "archive/checks/archive_reader.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "archive/archive_error.h"
#include "archive/destination/durable_write.h"
#include "platform/files/cloud_content.h"
#include "platform/files/cloud_placeholder.h"
#include "platform/files/directory.h"
#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "text/case.h"
#include "text/collation.h"

namespace corvane::archive {

namespace {

namespace fs = std::filesystem;

// Headers of real mail end long before, but for those that somebody has filled with traces.
constexpr std::size_t headerBytes = std::size_t{1} << 20;

bool isMailName(std::string_view name) {
    return text::asciiLowercased(platform::pathExtension(name)) == "eml";
}

ArchiveReader::File::State lookFor(ArchiveRoot& root, const std::string& relativePath) {
    using enum ArchiveReader::File::State;
    if (!platform::isSafeRelativePath(relativePath)) return absent;
    const std::string path = root.at(relativePath);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::none) return error.value() == ENAMETOOLONG ? absent : failed;
    if (status.type() == fs::file_type::not_found && fs::exists(platform::cloudPlaceholderPath(path), error))
        return failed;
    if (!fs::is_regular_file(status)) return absent;
    return root.holdsFolder(std::string(platform::parentPath(path))) ? read : absent;
}

ArchiveReader::File readLimited(platform::FileLayer& files, platform::JobLimit& limit, ArchiveRoot& root,
                                const std::string& relativePath, std::int64_t largestBytes) {
    ArchiveReader::File file;
    file.state = lookFor(root, relativePath);
    if (file.state != ArchiveReader::File::State::read) return file;
    file.state = ArchiveReader::File::State::failed;
    const std::string path = root.at(relativePath);
    struct stat status{};
    if (files.stat(path, status) == 0) {
        file.stamp = stampOf(status);
        file.identity = {status.st_dev, status.st_ino};
        if (platform::isOnlyInCloud(status)) return file;
    }
    if (file.stamp.sizeBytes > largestBytes) {
        file.state = ArchiveReader::File::State::tooLarge;
        return file;
    }
    platform::Sha256 hash;
    const auto onPiece = [&](std::string_view piece) {
        limit.restart();
        file.start.append(piece.substr(0, headerBytes - std::min(headerBytes, file.start.size())));
        file.bytesRead += static_cast<std::int64_t>(piece.size());
        hash.update(piece);
        return true;
    };
    if (readUncached(files, path, BeforeReading::nothing, onPiece, &file.stamp))
        file.state = ArchiveReader::File::State::read;
    file.hash = hash.digest();
    return file;
}

} // namespace

// One folder.
struct ArchiveReader::Listing {
    bool wasListed = false;
    std::vector<std::string> folders;
    std::vector<std::string> mails;
    std::vector<std::string> inCloud;

    void add(const ArchiveRoot& root, const std::string& folder, const platform::DirectoryEntry& entry) {
        if (const auto name = platform::nameBehindPlaceholder(entry.name)) {
            if (isMailName(*name)) inCloud.push_back(platform::joinPath(folder, *name));
            return;
        }
        if (entry.name.starts_with('.')) return;
        std::string path = platform::joinPath(folder, entry.name);
        std::error_code ignored;
        if (entry.kind == platform::EntryKind::directory) {
            // A link could lead out of the archive, or round in it.
            if (!fs::is_symlink(root.at(path), ignored)) folders.push_back(std::move(path));
        } else if (isMailName(entry.name)) {
            mails.push_back(std::move(path));
        }
    }
};

ArchiveReader::ArchiveReader(platform::FileLayer& files, std::string root, Limits limits)
  : files_(files)
  , root_(std::make_shared<ArchiveRoot>(root))
  , path_(std::move(root))
  , limits_(std::move(limits)) {}

template <class Answer>
Answer ArchiveReader::limited(std::function<Answer(platform::FileLayer&, platform::JobLimit&)> job) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    const bool hasEnded = worker_.run(
        limits_.ofStep,
        [answer, &files = files_, job = std::move(job)](platform::JobLimit& limit) {
            platform::AbandonableFileLayer layer(files, limit);
            try {
                *answer = job(layer, limit);
            } catch (const std::exception&) { // no memory, or no hash function
                answer->reset();
            }
        },
        limits_.stop);
    if (hasEnded && *answer) return std::move(**answer);
    if (limits_.stop.stop_requested()) throw ReadingStopped();
    throw ArchiveAccessError("无法读取归档文件夹", path_, hasEnded ? ENOMEM : ETIMEDOUT);
}

EmailArchiveIndex ArchiveReader::readIndex() {
    Index found = readIndexIfThere();
    if (found.index) return std::move(*found.index);
    const std::string path = platform::joinPath(path_, archiveIndexFileName);
    if (!found.isDamaged) throw ArchiveAccessError("找不到归档索引", path, ENOENT);
    throw ArchiveAccessError("无法使用归档索引", path, "文件无法读取，或内容已损坏");
}

ArchiveReader::Index ArchiveReader::readIndexIfThere() {
    const std::string path = platform::joinPath(path_, archiveIndexFileName);
    auto reading =
        limited<ArchiveIndexReading>([path](platform::FileLayer& files, platform::JobLimit& limit) {
            return readArchiveIndexFile(files, path, [&limit] { limit.restart(); });
        });
    using State = ArchiveIndexReading::State;
    if (reading.state == State::usable) return {std::move(reading.index), false};
    if (reading.isInCloud) throw ArchiveAccessError(indexNotRead, path, "文件只在云端，尚未下载到本机");
    if (reading.state == State::couldNotLook) {
        throw ArchiveAccessError(indexNotRead, path, reading.error);
    }
    return {std::nullopt, reading.state == State::damaged};
}

ArchiveReader::File ArchiveReader::readFile(const std::string& relativePath, std::int64_t largestBytes) {
    return limited<File>(
        [root = root_, relativePath, largestBytes](platform::FileLayer& files, platform::JobLimit& limit) {
            return readLimited(files, limit, *root, relativePath, largestBytes);
        });
}

bool ArchiveReader::isSurelyAbsent(const std::string& relativePath) {
    return limited<bool>([root = root_, relativePath](platform::FileLayer&, platform::JobLimit&) {
        return lookFor(*root, relativePath) == File::State::absent;
    });
}

ArchiveReader::Mails ArchiveReader::listMails(const std::function<bool(const std::string&)>& wanted) {
    Mails mails;
    std::vector<std::string> folders{""};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        Listing found =
            limited<Listing>([root = root_, folder](platform::FileLayer&, platform::JobLimit& limit) {
                Listing listing;
                const auto entries =
                    platform::listDirectory(root->at(folder), platform::HiddenEntries::include);
                listing.wasListed = entries.has_value();
                for (const auto& entry : entries.value_or(std::vector<platform::DirectoryEntry>())) {
                    limit.restart();
                    listing.add(*root, folder, entry);
                }
                return listing;
            });
        if (!found.wasListed) mails.unreadable.push_back(folder);
        if (wanted) std::erase_if(found.folders, [&](const std::string& path) { return !wanted(path); });
        std::ranges::move(found.folders, std::back_inserter(folders));
        std::ranges::move(found.mails, std::back_inserter(mails.paths));
        std::ranges::move(found.inCloud, std::back_inserter(mails.inCloud));
    }
    std::ranges::sort(mails.paths);
    std::ranges::sort(mails.inCloud);
    return mails;
}

std::optional<std::pair<dev_t, ino_t>> ArchiveReader::identityOf(const std::string& relativePath) {
    using Identity = std::optional<std::pair<dev_t, ino_t>>;
    return limited<Identity>(
        [root = root_, relativePath](platform::FileLayer& files, platform::JobLimit&) -> Identity {
            struct stat status{};
            if (files.stat(root->at(relativePath), status) != 0) return std::nullopt;
            return std::pair{status.st_dev, status.st_ino};
        });
}

std::string pathKey(std::string_view relativePath) {
    return text::canonicallyComposed(fs::path(relativePath).lexically_normal().string());
}

} // namespace corvane::archive
