#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "archive/bodies/cc_line.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/mails/entry_source.h"
#include "cli/mails/mail_file_state.h"
#include "cli/mails/mail_texts.h"
#include "cli/named_entries.h"
#include "locations/places/place_looks.h"
#include "mime/body/body_snippets.h"
#include "records/stores/presence_cache_store.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct ShowOptions {
    std::string name;
    std::string query;
    bool allRecipients = false;
};

struct ShownMail {
    ArchivedEntry entry;
    std::string body; // empty when there is none
    std::string cc;   // empty when there is none
    // Of the original, at the last comparison with Mail.
    ArchivedOriginalPresenceStatus present = ArchivedOriginalPresenceStatus::unknown;
    MailFileState file;
};

struct FoundMail {
    ArchivedEntry entry;
    std::optional<std::string> body;
    std::string presenceSignature; // of the whole library
};

// Where no index has it, it is read out of the mail and goes into one.
std::string preparedBody(Session& session, const ArchivedEntry& entry) {
    if (!session.isLibraryLoaded()) loadLibrary(session);
    std::string body;
    session.model().library().bodyTexts.prepareIndexedBody(
        entry, [&](const auto& prepared) { body = prepared.value_or(""); });
    session.waitUntilIdle();
    return body;
}

ArchivedOriginalPresenceStatus presenceOf(Session& session, const FoundMail& mail) {
    const ArchivedOriginalPresenceCacheStore store(session.context().support);
    return store.status(mail.presenceSignature, mail.entry.id())
        .value_or(ArchivedOriginalPresenceStatus::unknown);
}

// Empty without any, and where the file isn't to be had.
std::string ccOf(Session& session, const ShownMail& mail) {
    const auto& recorded = mail.entry.record.ccRecipients;
    if (recorded && !recorded->empty()) return recorded->str();
    if (!mail.file.isAvailable) return {};
    PlaceLooks looks(session.platform(), session.context().support.files(), {});
    const auto answer = looks.ask<std::optional<std::string>>(
        mail.entry.locationRootPath.str(), [entry = mail.entry, &platform = session.platform()](PlaceLook&) {
            return ccLineOfFile(platform, entry);
        });
    return answer.value_or(std::nullopt).value_or("");
}

ShownMail mailOf(Session& session, const std::string& name) {
    FoundMail found = askEntries(session, [&](EntrySource& source) {
        const ArchivedEntry entry = namedEntry(source, name);
        return FoundMail{entry, source.body(entry), source.presenceSignature()};
    });
    ShownMail mail;
    mail.entry = found.entry;
    mail.file = fileStateOf(session, found.entry);
    if (found.body || mail.file.isAvailable)
        mail.body = found.body ? *found.body : preparedBody(session, found.entry);
    mail.present = presenceOf(session, found);
    mail.cc = ccOf(session, mail);
    return mail;
}

void printJson(const ShownMail& mail, const ShowOptions& options) {
    const ArchivedEmailRecord& record = mail.entry.record;
    JsonDocument document;
    document.object([&] {
        document.member("record", record);
        document.member("body", mail.body);
        if (!mail.cc.empty()) document.member("cc", mail.cc);
        if (const auto preview = mime::rowPreviewText(mail.body)) document.member("preview", *preview);
        const auto snippet =
            showsSnippet(record, options.query) ? snippetText(mail.body, options.query) : std::nullopt;
        if (snippet) document.member("snippet", *snippet);
        addSegments(document, openSegments(mime::splitBody(mail.body), options.allRecipients));
        document.member("attachments", record.attachmentNames);
        document.member("present", mail.present);
        document.member("gone", mail.file.isGone);
        document.member("available", mail.file.isAvailable);
    });
    document.print();
}

void printReadably(const ShownMail& mail, const ShowOptions& options) {
    const ArchivedEmailRecord& record = mail.entry.record;
    printText(fmt::format("主题：{}", record.subject.view()));
    printText(fmt::format("发件人：{}", record.sender.view()));
    printText(fmt::format("收件人：{}", record.recipients.view()));
    if (!mail.cc.empty()) printText(fmt::format("抄送：{}", mail.cc));
    printText(fmt::format("日期：{}", formatMailDate(record.date)));
    for (const SharedText& name : record.attachmentNames) printText(fmt::format("附件：{}", name.view()));
    if (mail.file.isGone) printText("注意：归档文件已经不在了");
    if (mail.body.empty())
        printLines("\n正文预览暂不可用");
    else
        printLines("\n" + textOf(openSegments(mime::splitBody(mail.body), options.allRecipients)));
}

int runShow(Session& session, const ShowOptions& options, bool json) {
    const ShownMail mail = mailOf(session, options.name);
    if (json)
        printJson(mail, options);
    else
        printReadably(mail, options);
    return done;
}

} // namespace

void addShowCommand(CommandSet& commands) {
    auto options = std::make_shared<ShowOptions>();
    CLI::App& show = commands.add("show", "一封已归档的邮件",
                                  {{{"show 3fa9c1", "显示 search 或 library 列出的一封邮件"},
                                    {"show --json --query 合同 3fa9c1", "连同提到合同的片段，给脚本用"}}});
    addNameArgument(show, options->name);
    show.add_option("--query", options->query, "要在正文中找的文字");
    show.add_flag("--all-recipients", options->allRecipients, "引用的历史邮件中列出全部收件人");
    commands.setRun(show,
                    [options](Session& session, bool json) { return runShow(session, *options, json); });
}

} // namespace corvane::cli
