#include "archive/run/message_copies.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "archive/largest_mail.h"
#include "archive/message_identity.h"
#include "platform/files/layers/layer_reading.h"
#include "platform/stop_watch.h"
#include "records/texts/error_reasons.h"

namespace corvane::archive {

namespace {

using Outcome = FileReading::Outcome;
using platform::StopWatch;

// One .emlx file as it was read.
struct StoredFile {
    std::string content;
    FileStamp stamp = unknownStamp; // as long as nobody could look
    int error = 0;
};

StoredFile readStored(platform::FileLayer& files, platform::JobLimit& limit, const std::string& path) {
    StoredFile stored;
    struct stat status{};
    const auto file = platform::openRegularFile(files, path, platform::FinalLink::follow, status);
    if (!file) {
        stored.error = errno;
        if (files.stat(path, status) == 0) stored.stamp = stampOf(status);
        return stored;
    }
    stored.stamp = stampOf(status);
    const auto onPiece = [&](std::string_view piece) {
        limit.restart();
        stored.content += piece;
        return static_cast<std::int64_t>(stored.content.size()) <= largestMailBytes;
    };
    stored.error =
        status.st_size > largestMailBytes
            ? EFBIG
            : platform::readPieces(files, file.get(), static_cast<std::size_t>(status.st_size), onPiece);
    return stored;
}

class CopyReader {
  public:
    CopyReader(platform::FileLayer& files, platform::JobLimit& limit, const MailMessageRecord& message,
               Date now)
      : files_(files)
      , limit_(limit)
      , message_(message)
      , now_(now) {}

    MessageCopies read() {
        for (const FileURL& url : message_.allMessageFileURLs()) readCopy(url.path().str());
        return std::move(result_);
    }

  private:
    void readCopy(std::string path);
    void add(CopyReading copy, MessageBytes message);
    void addUnreadable(std::string path, const FileStamp& stamp, Outcome outcome, std::string_view reason);

    platform::FileLayer& files_;
    platform::JobLimit& limit_;
    const MailMessageRecord& message_;
    Date now_;
    MessageCopies result_;
};

void CopyReader::readCopy(std::string path) {
    limit_.restart();
    const StopWatch readWatch;
    StoredFile stored = readStored(files_, limit_, path);
    result_.reading += readWatch.elapsed();
    if (platform::saysAbsent(stored.error)) return;
    if (stored.error != 0) {
        addUnreadable(std::move(path), stored.stamp, Outcome::unreadable, systemErrorReason(stored.error));
        return;
    }
    const StopWatch parseWatch;
    const bool isEmpty = stored.content.empty();
    if (auto message = MessageBytes::fromEmlx(std::move(stored.content))) {
        add({.path = std::move(path), .reading = {.stamp = stored.stamp, .readAt = now_}},
            std::move(*message));
    } else {
        addUnreadable(std::move(path), stored.stamp, isEmpty ? Outcome::incomplete : Outcome::unreadable,
                      isEmpty ? "文件是空的" : "不是有效的 .emlx 文件");
    }
    result_.parsing += parseWatch.elapsed();
}

void CopyReader::add(CopyReading copy, MessageBytes message) {
    if (holdsAnotherMessage(ExpectedMessage::of(message_), message.bytes)) {
        result_.problems.push_back({copy.path, missingFileReason});
        copy.reading.hash = platform::sha256(message.bytes);
        copy.reading.bodyHash = platform::sha256(message.body());
        result_.ofOthers.push_back(std::move(copy));
        return;
    }
    if (!isWholeMessage(*message.file, message.bytes)) {
        copy.reading.outcome = Outcome::incomplete;
        result_.problems.push_back(
            {copy.path, "邮件文件不完整，已按现有内容归档。请在 Mail 中重新下载这封邮件。"});
    }
    copy.reading.hash = platform::sha256(message.bytes);
    const auto equal = std::ranges::find_if(
        result_.messages, [&](const MessageBytes& earlier) { return earlier.bytes == message.bytes; });
    result_.messages.push_back(equal == result_.messages.end() ? std::move(message) : *equal);
    result_.readings.push_back(std::move(copy));
}

void CopyReader::addUnreadable(std::string path, const FileStamp& stamp, Outcome outcome,
                               std::string_view reason) {
    result_.problems.push_back(
        {path, fmt::format("邮件的一个副本无法读取（{}），没有归档这个副本，其余副本照常归档。", reason)});
    result_.unreadable.push_back(
        {.path = std::move(path), .reading = {.stamp = stamp, .outcome = outcome, .readAt = now_}});
}

} // namespace

MessageCopies readCopies(platform::FileLayer& files, platform::JobLimit& limit,
                         const MailMessageRecord& message, Date now) {
    return CopyReader(files, limit, message, now).read();
}

} // namespace corvane::archive
