#include "archive/run/mail_email_archiver.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "archive/archive_error.h"
#include "archive/destination/archive_destination.h"
#include "archive/destination/index_records.h"
#include "archive/run/message_archiver.h"
#include "archive/run/message_copies.h"
#include "platform/files/directory.h"
#include "platform/stop_watch.h"
#include "platform/threads/time_limited_worker.h"
#include "records/logs/console_log.h"
#include "records/texts/progress_texts.h"
#include "records/timestamps.h"

namespace corvane {

namespace {

using archive::ArchiveDestination;
using archive::HandledMessage;
using archive::MessageArchiver;
using archive::MessageCopies;
using archive::WrittenFolder;
using platform::StopWatch;
using Seconds = StopWatch::Seconds;

constexpr auto progressInterval = std::chrono::seconds(1);
constexpr const char* unreadableReason = "无法读取邮件内容，请重新扫描后再试。";

struct RunTimes {
    Seconds loop{};
    Seconds reading{};
    Seconds parsing{};
    Seconds syncing{};
};

// What came of a message of which there was a copy.
struct Handled {
    const MailMessageRecord* message = nullptr;
    HandledMessage handled;
    bool hasFailure = false; // of one of its copies
};

// One run, from its start to its result.
class ArchiveRun {
  public:
    ArchiveRun(platform::FileLayer& files, const ArchiverOptions& options, const MessageList& messages,
               const std::string& root, const std::function<void(const EmailArchiveProgress&)>& progress,
               std::stop_token stop)
      : files_(files)
      , options_(options)
      , messages_(messages)
      , progress_(progress)
      , stop_(std::move(stop))
      , destination_(files, root, options.timeLimit, stop_) {
        result_.indexURL = FileURL(SharedText(destination_.indexPath()));
    }

    EmailArchiveRunResult run() {
        destination_.createRoot();
        destination_.lock();
        loadIndex();
        report(0, std::nullopt,
               messages_.empty() ? "没有要归档的邮件" : preparingText(std::ssize(messages_)));
        archiveMessages();
        finish();
        return std::move(result_);
    }

  private:
    void loadIndex();
    void archiveMessages();
    void finish();
    void archiveMessage(const MailMessageRecord& message);
    MessageCopies readCopies(const MailMessageRecord& message);
    void handleCopies(const MailMessageRecord& message, MessageCopies& copies);
    void handleWithoutCopies(const MailMessageRecord& message, const MessageCopies& copies);
    void handOut(MessageCopies& copies);
    void count(const std::set<WrittenFolder>& lostFolders);
    void count(HandledMessage& handled);
    void fail(const MailMessageRecord& message, const FileURL& file, std::string reason);
    void report(std::size_t completed, std::optional<std::string> subject, std::string status);
    void logTimes() const;

    [[nodiscard]] Date now() const { return options_.now ? options_.now() : currentTimestamp(); }

    platform::FileLayer& files_;
    const ArchiverOptions& options_;
    const MessageList& messages_;
    const std::function<void(const EmailArchiveProgress&)>& progress_;
    const std::stop_token stop_;
    const std::function<Date()> clock_ = [this] { return now(); };
    ArchiveDestination destination_;
    platform::TimeLimitedWorker reader_;
    EmailArchiveIndex index_; // without its records, which are in records_ until the end
    archive::IndexRecords records_;
    std::optional<MessageArchiver> archiver_;
    std::vector<Handled> handled_;
    EmailArchiveRunResult result_;
    std::int64_t copiesRead_ = 0;
    RunTimes times_;
};

void ArchiveRun::loadIndex() {
    archive::LoadedIndex loaded = destination_.loadIndex(now(), options_.bringFromCloud);
    if (loaded.damagedKeptAs) {
        result_.archiveWarnings.push_back(fmt::format(
            "归档索引已损坏，原文件保留为“{}”，本次归档重新建立了索引。以前归档的邮件文件都还在原处，"
            "但暂时不在归档库里。",
            *loaded.damagedKeptAs));
        consoleLine(fmt::format("[archive] {}", result_.archiveWarnings.back()));
    }
    index_ = std::move(loaded.index);
    records_ = archive::IndexRecords(std::exchange(index_.records, {}));
    archiver_.emplace(destination_, records_, clock_);
}

void ArchiveRun::archiveMessages() {
    const StopWatch watch;
    std::optional<std::chrono::steady_clock::time_point> lastProgress;
    for (std::size_t position = 0; position < messages_.size(); ++position) {
        if (stop_.stop_requested()) {
            result_.wasCancelled = true;
            break;
        }
        const MailMessageRecord& message = messages_[position];
        const auto moment = options_.clock();
        if (!lastProgress || moment - *lastProgress >= progressInterval) {
            report(position, message.subject.str(), fmt::format("正在归档：{}", message.subject));
            lastProgress = moment;
        }
        archiveMessage(message);
        ++result_.triedCount;
    }
    times_.loop = watch.elapsed();
}

void ArchiveRun::archiveMessage(const MailMessageRecord& message) {
    const std::size_t failuresBefore = result_.failures.size();
    const std::size_t handledBefore = handled_.size();
    try {
        MessageCopies copies = readCopies(message);
        if (copies.messages.empty()) {
            handleWithoutCopies(message, copies);
        } else {
            handleCopies(message, copies);
        }
        handOut(copies);
    } catch (const ArchiveAccessError&) {
        throw;
    } catch (const ArchiveError& error) {
        fail(message, message.fileURL, error.what());
    } catch (const std::exception& error) {
        consoleLine(fmt::format("[archive] {}: {}", message.id, error.what()));
        fail(message, message.fileURL, ArchiveError(ArchiveError::Case::writeFailed).what());
    }
    if (result_.failures.size() == failuresBefore) return;
    ++result_.failedCount;
    if (handled_.size() > handledBefore) handled_.back().hasFailure = true;
}

// In a job with the limit of a place: Mail's store may be a mounted one.
MessageCopies ArchiveRun::readCopies(const MailMessageRecord& message) {
    struct Reading {
        MailMessageRecord message;
        Date now;
        MessageCopies copies;
        std::exception_ptr failure;
    };

    const auto reading = std::make_shared<Reading>(message, now());
    const auto work = [reading, &files = files_](platform::JobLimit& limit) {
        try {
            reading->copies = archive::readCopies(files, limit, reading->message, reading->now);
        } catch (...) {
            reading->failure = std::current_exception();
        }
    };
    if (!reader_.run(options_.timeLimit, work, stop_, archive::graceAfterStop)) {
        throw ArchiveError(ArchiveError::Case::readTimedOut);
    }
    if (reading->failure) std::rethrow_exception(reading->failure);
    times_.reading += reading->copies.reading;
    times_.parsing += reading->copies.parsing;
    copiesRead_ += static_cast<std::int64_t>(reading->copies.messages.size());
    return std::move(reading->copies);
}

void ArchiveRun::handleCopies(const MailMessageRecord& message, MessageCopies& copies) {
    for (const archive::CopyProblem& problem : copies.problems) {
        fail(message, FileURL(problem.path), problem.reason);
    }
    HandledMessage handled = archiver_->archive(message, copies);
    if (handled.failure) fail(message, message.fileURL, *handled.failure);
    handled_.push_back({.message = &message, .handled = std::move(handled)});
}

void ArchiveRun::handleWithoutCopies(const MailMessageRecord& message, const MessageCopies& copies) {
    if (!copies.unreadable.empty()) {
        fail(message, message.fileURL, unreadableReason);
    } else if (!copies.ofOthers.empty()) {
        fail(message, message.fileURL, archive::missingFileReason);
    } else if (archiver_->holds(message)) {
        ++result_.skippedAlreadyArchived;
    } else {
        fail(message, message.fileURL,
             archive::isLikelyNotDownloaded(message.fileURL)
                 ? "邮件未下载到本地。请在 Mail->设置->账户，将「下载附件」改为「全部」并同步后重试。"
                 : archive::missingFileReason);
    }
}

void ArchiveRun::handOut(MessageCopies& copies) {
    std::ranges::move(copies.readings, std::back_inserter(result_.copyReadings));
    std::ranges::move(copies.unreadable, std::back_inserter(result_.copyReadings));
    std::ranges::move(copies.ofOthers, std::back_inserter(result_.copyReadings));
}

void ArchiveRun::finish() {
    const StopWatch folderWatch;
    const std::set<WrittenFolder> lostFolders = destination_.syncFolders();
    times_.syncing = folderWatch.elapsed();
    count(lostFolders);
    index_.updatedAt = now();
    index_.records = std::move(records_).release();
    destination_.saveIndex(index_, options_.markHidden);
    const StopWatch rootWatch;
    destination_.syncRoot();
    times_.syncing += rootWatch.elapsed();
    logTimes();
    report(messages_.size(), std::nullopt, "归档完成");
}

// What lies in a folder that has gone from its place isn't in the archive, and isn't recorded.
void ArchiveRun::count(const std::set<WrittenFolder>& lostFolders) {
    std::vector<std::size_t> lostRecords;
    for (Handled& each : handled_) {
        HandledMessage& handled = each.handled;
        const bool isLost = std::ranges::any_of(
            handled.folders, [&](const WrittenFolder& folder) { return lostFolders.contains(folder); });
        if (!isLost) {
            count(handled);
            continue;
        }
        if (handled.failure) continue;
        std::ranges::copy(handled.records, std::back_inserter(lostRecords));
        fail(*each.message, each.message->fileURL, ArchiveError(ArchiveError::Case::writeFailed).what());
        if (!each.hasFailure) ++result_.failedCount;
    }
    records_.remove(lostRecords);
}

void ArchiveRun::count(HandledMessage& handled) {
    result_.archivedCount += handled.written;
    result_.skippedAlreadyArchived += handled.inPlace;
    result_.archivedBytes += handled.bytes;
    std::ranges::move(handled.readings, std::back_inserter(result_.archivedReadings));
    if (handled.variantWarning) result_.variantWarnings.push_back(std::move(*handled.variantWarning));
}

void ArchiveRun::fail(const MailMessageRecord& message, const FileURL& file, std::string reason) {
    result_.failures.push_back({Uuid::random(), message.subject.str(), file, std::move(reason)});
}

void ArchiveRun::report(std::size_t completed, std::optional<std::string> subject, std::string status) {
    if (!progress_) return;
    progress_({static_cast<std::int64_t>(completed), static_cast<std::int64_t>(messages_.size()),
               std::move(subject), std::move(status)});
}

void ArchiveRun::logTimes() const {
    const MessageArchiver::Times& work = archiver_->times();
    const Seconds known = times_.reading + work.writing + work.verifying + times_.parsing + work.grouping;
    consoleLine(fmt::format(
        "[archive] 循环 {:.1f}s · 读 {:.1f}s · 写 {:.1f}s · 校验 {:.1f}s · 进度 0.0s · 解析副本 {:.1f}s · "
        "分组 {:.1f}s · 其他 {:.1f}s · 同步目录 {:.1f}s · 归档 {} 封 · 副本 {}",
        times_.loop.count(), times_.reading.count(), work.writing.count(), work.verifying.count(),
        times_.parsing.count(), work.grouping.count(), std::max(Seconds::zero(), times_.loop - known).count(),
        times_.syncing.count(), result_.archivedCount, copiesRead_));
}

} // namespace

MailEmailArchiver::MailEmailArchiver(platform::FileLayer& files, ArchiverOptions options)
  : files_(files)
  , options_(std::move(options)) {}

EmailArchiveRunResult
MailEmailArchiver::archive(const MessageList& messages, const std::string& root,
                           const std::function<void(const EmailArchiveProgress&)>& progress,
                           const std::stop_token& stop) {
    return ArchiveRun(files_, options_, messages, root, progress, stop).run();
}

bool archive::isLikelyNotDownloaded(const FileURL& url) {
    const std::string path = url.path().str();
    return path.find("/Mail/V") != std::string::npos && !platform::fileExists(path);
}

} // namespace corvane
