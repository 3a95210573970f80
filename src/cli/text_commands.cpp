#include <algorithm>
#include <cerrno>

#include <fmt/format.h>

#include "archive/archive_naming.h"
#include "archive/bodies/archived_attachment.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/output.h"
#include "cli/progress_line.h"
#include "platform/files/directory.h"
#include "platform/files/durable_file.h"
#include "platform/paths.h"
#include "records/error_reasons.h"
#include "records/formatters.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

ArchivedEntry findEntry(Session& session, const std::string& entryID) {
    loadLibrary(session);
    for (const ArchivedEntry& entry : *session.model().library().archivedEntries()) {
        if (entry.id() == entryID) return entry;
    }
    throw CommandFailure("归档库中没有这封邮件。");
}

struct ShownTexts {
    std::string body; // empty when there is none
    std::optional<std::string> cc;
};

ShownTexts textsOf(Session& session, const ArchivedEntry& entry) {
    ShownTexts texts;
    BodyTexts& source = session.model().bodyTexts();
    source.prepareIndexedBody(entry, [&](const auto& body) { texts.body = body.value_or(""); });
    source.ccRecipients(entry, [&](const auto& cc) { texts.cc = cc; });
    session.waitUntilIdle();
    return texts;
}

void printShownReadably(const ArchivedEmailRecord& record, const ShownTexts& texts) {
    printText(fmt::format("主题：{}", record.subject));
    printText(fmt::format("发件人：{}", record.sender));
    printText(fmt::format("收件人：{}", record.recipients));
    if (texts.cc) printText(fmt::format("抄送：{}", *texts.cc));
    printText(fmt::format("日期：{}", record.date ? formatListDate(*record.date) : "日期未知"));
    for (const SharedText& name : record.attachmentNames) printText(fmt::format("附件：{}", name));
    printLines("\n" + texts.body);
}

// Nothing that is there already is written over, unless it is that very content.
void writeAttachment(const std::string& path, const std::string& data) {
    const auto error = platform::writeNewFile(platform::posixFileLayer(), path, data);
    if (!error) return;
    if (error.value() != EEXIST)
        throw CommandFailure(fmt::format("无法写入 “{}”：{}", path, systemErrorReason(error.value())));
    if (platform::readFile(path, std::ssize(data)) != data)
        throw CommandFailure(fmt::format("“{}” 已存在，不会覆盖。", path));
}

} // namespace

std::int64_t fillBodyIndex(Session& session, BodyIndexRequest request) {
    BodyTexts& texts = session.model().bodyTexts();
    ProgressLine line;
    std::int64_t indexed = 0;
    const auto shown = QObject::connect(&texts, &BodyTexts::bodyIndexProgressChanged, [&] {
        const auto& progress = texts.bodyIndexProgress();
        if (progress) line.show(progress->statusText, progress->fraction());
    });
    const auto counted =
        QObject::connect(&texts, &BodyTexts::bodyIndexFinished, [&](qint64 count) { indexed += count; });
    texts.rebuildBodyTextIndex(std::move(request));
    session.waitUntilIdle([&] { texts.cancelBodyTextIndex(); });
    QObject::disconnect(shown);
    QObject::disconnect(counted);
    return indexed;
}

int runSearch(Session& session, const std::string& text, bool json) {
    loadLibrary(session);
    std::vector<std::string> ids;
    std::vector<std::string> rootsNotAsked;
    session.model().bodyTexts().searchArchive(text, [&](const ArchiveSearchResult& found) {
        for (const SharedText& id : found.ids) ids.push_back(id.str());
        rootsNotAsked = found.unreadableRoots;
    });
    session.waitUntilIdle();
    for (const std::string& root : rootsNotAsked)
        messageLine(fmt::format("没能搜索这个归档，结果里没有它的邮件：{}", root));
    std::ranges::sort(ids);
    if (json) {
        JsonDocument document;
        document.value(ids);
        document.print();
    } else {
        for (const std::string& id : ids) printText(id);
    }
    return done;
}

int runIndex(Session& session, bool force, bool json) {
    loadLibrary(session);
    BodyIndexRequest request = session.model().bodyTexts().requestForAllLocations(force);
    request.reloadWhenDone = false;
    const std::int64_t indexed = fillBodyIndex(session, std::move(request));
    if (json) {
        JsonDocument document;
        document.object([&] { document.member("indexed", indexed); });
        document.print();
    } else {
        printText(fmt::format("已处理 {} 封邮件的正文索引", indexed));
    }
    return wasInterrupted() ? interrupted : done;
}

int runShow(Session& session, const std::string& entryID, bool json) {
    const ArchivedEntry entry = findEntry(session, entryID);
    const ShownTexts texts = textsOf(session, entry);
    if (!json) {
        printShownReadably(entry.record, texts);
        return done;
    }
    JsonDocument document;
    document.object([&] {
        document.member("record", entry.record);
        document.member("body", texts.body);
        if (texts.cc) document.member("cc", *texts.cc);
        document.member("attachments", entry.record.attachmentNames);
    });
    document.print();
    return done;
}

int runAttachment(Session& session, const AttachmentOptions& options, bool json) {
    const ArchivedEntry entry = findEntry(session, options.entryID);
    const std::string data = archivedAttachmentData(session.platform(), entry, options.name);
    std::string path = platform::standardizedPath(options.target);
    // The name is the mail's: as one component it stays in the folder.
    if (platform::isDirectory(path)) path = platform::joinPath(path, archive::safeFileName(options.name));
    writeAttachment(path, data);
    if (json) {
        JsonDocument document;
        document.object([&] {
            document.member("path", path);
            document.member("bytes", std::ssize(data));
        });
        document.print();
    } else {
        printText(fmt::format("{}（{}）", path, formatByteCount(std::ssize(data))));
    }
    return done;
}

} // namespace corvane::cli
