#include "archive/archive_verification.h"

#include <optional>
#include <stdexcept>
#include <unordered_set>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "mailstore/header_decoding.h"
#include "mailstore/message_identifiers.h"
#include "platform/directory.h"
#include "platform/file_descriptor.h"
#include "platform/file_layer.h"
#include "platform/paths.h"
#include "records/archive_index_file.h"
#include "text/collation.h"

namespace corvane {

namespace {

constexpr std::size_t headerBytes = 65536;
constexpr std::size_t chunkBytes = std::size_t{1} << 18;

struct FileContent {
    std::int64_t bytes = 0;
    std::string start; // as much as a header is looked for in
};

// Nothing when the file isn't a regular file or can't be read to its end.
std::optional<FileContent> readThrough(const std::string& path) {
    const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat info{};
    if (!file || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    platform::posixFileLayer().bypassCache(file.get());
    FileContent content;
    std::string buffer(chunkBytes, '\0');
    while (true) {
        const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
        if (count < 0) return std::nullopt;
        if (count == 0) return content;
        content.bytes += count;
        if (content.start.size() < headerBytes) {
            const std::size_t wanted = headerBytes - content.start.size();
            content.start.append(buffer, 0, std::min(wanted, static_cast<std::size_t>(count)));
        }
    }
}

// Only what both sides say can be compared: a store may know an identifier that the file lacks, and the other
// way round. A file that has no header at all is no mail.
bool isAnotherMessage(const ArchivedEmailRecord& record, const std::string& start) {
    if (!record.messageIdentifier || record.messageIdentifier->empty() || record.sizeBytes == 0) return false;
    const auto header = mailstore::decodedHeaderField("message-id", start);
    const auto identifier = header ? mailstore::normalizedMessageIdentifier(*header) : std::nullopt;
    if (identifier) return *identifier != record.messageIdentifier->view();
    return start.find(':') == std::string::npos;
}

// The real path below the real root; nothing for a path from the index that leads out or to nothing.
std::optional<std::string> pathInside(const std::string& resolvedRoot, std::string_view relativePath) {
    if (!platform::isSafeRelativePath(relativePath)) return std::nullopt;
    const auto resolved = platform::resolvedPath(platform::joinPath(resolvedRoot, relativePath));
    if (!resolved || !resolved->starts_with(platform::joinPath(resolvedRoot, ""))) return std::nullopt;
    return resolved;
}

class Verification {
  public:
    explicit Verification(const std::string& root)
      : root_(root) {}

    ArchiveVerification run(const EmailArchiveIndex& index) {
        for (const ArchivedEmailRecord& record : index.records) check(record);
        findUnindexed("");
        return std::move(found_);
    }

  private:
    void check(const ArchivedEmailRecord& record) {
        found_.checked += 1;
        const std::string relativePath = record.emlRelativePath.str();
        if (!indexed_.insert(text::canonicallyComposed(relativePath)).second) {
            found_.duplicatePaths.push_back(relativePath);
        }
        const auto path = pathInside(root_, relativePath);
        if (!path || !platform::isRegularFile(*path)) {
            found_.missing.push_back(relativePath);
            return;
        }
        const auto content = readThrough(*path);
        if (content) found_.bytes += content->bytes;
        if (!content || content->bytes != record.sizeBytes) {
            found_.sizeMismatch.push_back(relativePath);
        } else if (isAnotherMessage(record, content->start)) {
            found_.identityMismatch.push_back(relativePath);
        }
    }

    // Hidden files are no mail: "._*" of foreign disks among them.
    void findUnindexed(const std::string& folder, int depth = 0) {
        constexpr int levels = 2; // folders of the year and of the account
        const auto entries =
            platform::listDirectory(platform::joinPath(root_, folder), platform::HiddenEntries::skip);
        if (!entries) return;
        for (const platform::DirectoryEntry& entry : *entries) {
            const std::string path = folder.empty() ? entry.name : platform::joinPath(folder, entry.name);
            if (entry.kind == platform::EntryKind::directory) {
                if (depth < levels) findUnindexed(path, depth + 1);
            } else if (platform::pathExtension(entry.name) == "eml" &&
                       !indexed_.contains(text::canonicallyComposed(path))) {
                found_.unindexed.push_back(path);
            }
        }
    }

    const std::string& root_;
    ArchiveVerification found_;
    std::unordered_set<std::string> indexed_;
};

} // namespace

ArchiveVerification verifyArchive(const std::string& root) {
    const auto resolvedRoot = platform::resolvedPath(root);
    if (!resolvedRoot) throw std::runtime_error(fmt::format("归档文件夹不存在或无法访问：{}", root));
    const auto index = readArchiveIndex(platform::joinPath(*resolvedRoot, archiveIndexFileName));
    if (!index) throw std::runtime_error(fmt::format("归档索引缺失或无法读取：{}", root));
    return Verification(*resolvedRoot).run(*index);
}

} // namespace corvane
