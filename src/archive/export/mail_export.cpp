#include "archive/export/mail_export.h"

#include <cerrno>
#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include "archive/export/export_target.h"
#include "archive/export/folder_target.h"
#include "archive/export/mbox_target.h"
#include "archive/export/time_limited_target.h"
#include "archive/export/zip_target.h"
#include "archive/opening/mail_pieces.h"
#include "platform/files/directory.h"
#include "platform/files/file_look.h"
#include "platform/files/writing/leftovers.h"
#include "platform/paths.h"
#include "platform/threads/limited_answer.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/content_hash.h"
#include "records/texts/error_reasons.h"

namespace corvane {

namespace {

using archive::ExportedMail;

// Longer mail is read a second time instead of being kept in memory.
constexpr std::int64_t mostKeptBytes = 8 << 20;

std::string reasonOf(const std::exception& error) {
    const auto* const system = dynamic_cast<const std::system_error*>(&error);
    return system == nullptr ? error.what() : systemErrorReason(system->code().value());
}

// Nothing was tried.
class RefusedTarget : public ExportError {
  public:
    using ExportError::ExportError;
};

ExportError targetFailure(const std::string& path, const std::exception& error) {
    return ExportError(fmt::format("无法导出到 “{}”：{}", path, reasonOf(error)));
}

bool liesInArchive(std::string_view path) {
    for (; path.size() > 1; path = platform::parentPath(path)) {
        if (platform::fileExists(platform::joinPath(path, archiveIndexFileName))) return true;
    }
    return false;
}

std::unique_ptr<archive::ExportTarget> makeTarget(platform::FileLayer& files, ExportFormat format,
                                                  const std::string& path,
                                                  const std::function<void()>& beginStep) {
    if (liesInArchive(path)) throw RefusedTarget("不能导出到归档文件夹里，请选择别的位置。");
    if (format == ExportFormat::eml) return std::make_unique<archive::FolderTarget>(files, path);
    platform::removeUnfinishedFiles(std::string(platform::parentPath(path)));
    if (format == ExportFormat::mbox) return std::make_unique<archive::MboxTarget>(files, path);
    return std::make_unique<archive::ZipTarget>(files, path, beginStep);
}

// What a first reading of a mail has shown.
struct Content {
    std::int64_t bytes = 0;
    platform::Sha256Digest hash{};
    std::optional<std::string> kept; // absent for a long one
};

Content readContent(archive::MailPieces& pieces, const std::string& path) {
    Content content{.kept = std::string()};
    platform::Sha256 hash;
    pieces.read(path, [&](std::string_view piece) {
        content.bytes += std::ssize(piece);
        hash.update(piece);
        if (content.bytes > mostKeptBytes) content.kept.reset();
        if (content.kept) *content.kept += piece;
    });
    content.hash = hash.digest();
    return content;
}

void expectRecorded(const Content& content, const ArchivedEmailRecord& record) {
    const auto recorded = parseContentHash(record.contentHash.value_or(SharedText()));
    const bool isOther = recorded ? *recorded != content.hash : record.sizeBytes != content.bytes;
    if (isOther) throw std::runtime_error("归档文件的内容与归档时不一致");
}

bool isAway(const std::string& root, std::chrono::nanoseconds limit) {
    return platform::limitedAnswer<bool>(limit,
                                         [root](platform::JobLimit&) {
                                             using Presence = platform::FileLook::Presence;
                                             return platform::lookAtFile(root).presence == Presence::absent;
                                         })
        .value_or(false);
}

class Export {
  public:
    Export(const MailExport& system, archive::TimeLimitedTarget& target, const std::stop_token& stop)
      : limitOfLook_(system.limits.ofLook)
      , opener_(system.platform, system.limits)
      , pieces_(system.files, stop, system.limits.ofLook)
      , target_(target)
      , stop_(stop) {}

    // Returns its bytes. Throws std::exception for a failure of this mail alone, and ExportError for one of
    // all.
    std::int64_t add(const ArchivedEntry& entry) {
        const std::string path = localPathOf(entry);
        const Content content = readContent(pieces_, path);
        expectRecorded(content, entry.record);
        const ExportedMail mail{entry.record, content.bytes, content.hash};
        try {
            write(mail, content, path);
        } catch (const std::exception& error) {
            if (!target_.canDropMail() || target_.hasHung()) throw ExportError(reasonOf(error));
            target_.drop();
            throw std::runtime_error(reasonOf(error));
        }
        return content.bytes;
    }

  private:
    // A disk that isn't there brings nothing back by waiting.
    std::string localPathOf(const ArchivedEntry& entry) {
        using OpenError = ArchivedCloudFileOpener::OpenError;
        try {
            return opener_.ensureLocal(entry, stop_);
        } catch (const OpenError& error) {
            const bool mayBeAway = error.kind() == OpenError::Kind::unavailable;
            if (mayBeAway && isAway(entry.locationRootPath.str(), limitOfLook_))
                throw std::runtime_error("归档位置没有连接");
            throw;
        }
    }

    void write(const ExportedMail& mail, const Content& content, const std::string& path) {
        if (!target_.begin(mail)) return;
        if (content.kept) {
            target_.write(*content.kept);
        } else {
            platform::Sha256 hash;
            pieces_.read(path, [&](std::string_view piece) {
                hash.update(piece);
                target_.write(piece);
            });
            if (hash.digest() != content.hash) throw std::runtime_error("归档文件在导出时被改动");
        }
        target_.end();
    }

    std::chrono::nanoseconds limitOfLook_;
    ArchivedCloudFileOpener opener_;
    archive::MailPieces pieces_;
    archive::TimeLimitedTarget& target_;
    const std::stop_token& stop_;
};

ExportResult exportAll(Export& mails, const ExportSelection& selection, const ExportProgress& progress,
                       const std::stop_token& stop) {
    ExportResult result;
    const std::int64_t total = std::ssize(selection.positions);
    std::int64_t done = 0;
    for (const std::uint32_t position : selection.positions) {
        if (stop.stop_requested()) break;
        progress(done++, total);
        const ArchivedEntry& entry = (*selection.entries)[position];
        try {
            result.bytes += mails.add(entry);
            ++result.exported;
        } catch (const ExportError&) {
            if (!stop.stop_requested()) throw;
        } catch (const std::exception& error) {
            if (!stop.stop_requested()) result.failures.push_back({entry.id(), reasonOf(error)});
        }
    }
    result.wasCancelled = stop.stop_requested();
    progress(done, total);
    return result;
}

// What a stop has made needless isn't a failure.
void finish(archive::TimeLimitedTarget& target, ExportResult& result, const std::stop_token& stop) {
    try {
        if (!result.wasCancelled || target.canDropMail()) target.finish();
    } catch (const std::exception&) {
        if (!stop.stop_requested()) throw;
        result.wasCancelled = true;
    }
    if (result.wasCancelled && !target.canDropMail()) result.exported = result.bytes = 0;
}

} // namespace

ExportResult MailExport::run(const ExportSelection& selection, ExportFormat format, const std::string& path,
                             const ExportProgress& progress, const std::stop_token& stop) const {
    const auto make = [format, path](platform::FileLayer& layer, const auto& beginStep) {
        return makeTarget(layer, format, path, beginStep);
    };
    try {
        archive::TimeLimitedTarget target(files, make, stop, limits.ofLook);
        Export mails(*this, target, stop);
        ExportResult result = exportAll(mails, selection, progress, stop);
        finish(target, result, stop);
        return result;
    } catch (const RefusedTarget&) {
        throw;
    } catch (const std::exception& error) {
        throw targetFailure(path, error);
    }
}

} // namespace corvane
