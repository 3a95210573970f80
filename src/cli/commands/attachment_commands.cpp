#include <algorithm>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/progress_line.h"
#include "cli/exit_status.h"
#include "cli/named_entries.h"
#include "platform/paths.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct AttachmentOptions {
    std::string entry;
    std::string name;
    std::string target; // a new file, or a folder
};

struct AttachmentsOptions {
    std::vector<std::string> entries;
    std::string folder;
};

// With the names that there are, for who has mistaken one.
std::string failureText(const std::string& failure, const std::vector<SharedText>& names,
                        std::string_view asked) {
    const bool isAmongThem = std::ranges::find(names, asked, &SharedText::view) != names.end();
    if (names.empty() || isAmongThem) return failure;
    return fmt::format("{}。这封邮件的附件是：{}", failure, fmt::join(names, "、"));
}

int runAttachment(Session& session, const AttachmentOptions& options, bool json) {
    AttachmentRef attachment{namedEntry(session, options.entry), options.name};
    const auto names = attachment.entry.record.attachmentNames;
    std::optional<std::expected<SavedAttachment, std::string>> outcome;
    AttachmentFlow flow(session.context());
    flow.saveAttachment(std::move(attachment), platform::standardizedPath(options.target),
                        [&](const auto& saved) { outcome = saved; });
    session.waitUntilIdle();
    if (!outcome) throw Interrupted();
    if (!*outcome) throw CommandFailure(failureText(outcome->error(), names, options.name));
    const SavedAttachment& saved = **outcome;
    if (!json) {
        printText(fmt::format("{}（{}）", saved.path, formatByteCount(saved.bytes)));
        return done;
    }
    JsonDocument document;
    document.object([&] {
        document.member("path", saved.path);
        document.member("bytes", saved.bytes);
    });
    document.print();
    return done;
}

AttachmentSaving saveAll(Session& session, std::vector<AttachmentRef> attachments,
                         const std::string& folder) {
    AttachmentFlow flow(session.context());
    ProgressLine line;
    const auto shown = QObject::connect(&flow, &AttachmentFlow::savingChanged, [&] {
        const auto& progress = flow.savingProgress();
        if (!progress || progress->total == 0) return;
        line.show(fmt::format("正在取出附件 {}/{}", progress->done, progress->total),
                  static_cast<double>(progress->done) / static_cast<double>(progress->total));
    });
    flow.saveAttachments(std::move(attachments), folder);
    session.waitUntilIdle([&] { flow.cancelSaving(); });
    QObject::disconnect(shown);
    if (!flow.savingOutcome()) throw Interrupted();
    if (!*flow.savingOutcome()) throw CommandFailure(flow.savingOutcome()->error());
    return **flow.savingOutcome();
}

void printSaving(const AttachmentSaving& saving) {
    JsonDocument document;
    document.object([&] {
        document.objects("saved", saving.saved, [&](const SavedAttachment& saved) {
            document.member("entryID", saved.entryID);
            document.member("name", saved.name);
            document.member("path", saved.path);
            document.member("bytes", saved.bytes);
        });
        document.objects("failures", saving.failures, [&](const AttachmentFailure& failure) {
            document.member("entryID", failure.entryID);
            document.member("name", failure.name);
            document.member("reason", failure.reason);
        });
    });
    document.print();
}

void printSavingReadably(const AttachmentSaving& saving) {
    for (const SavedAttachment& saved : saving.saved)
        printText(fmt::format("{}（{}）", saved.path, formatByteCount(saved.bytes)));
    for (const AttachmentFailure& failure : saving.failures)
        messageLine(fmt::format("没有取出 {}：{}", failure.name, failure.reason));
    if (saving.saved.empty() && saving.failures.empty()) printText("这些邮件没有附件。");
}

int runAttachments(Session& session, const AttachmentsOptions& options, bool json) {
    std::vector<AttachmentRef> attachments;
    for (const ArchivedEntry& entry : namedEntries(session, options.entries)) {
        for (AttachmentRef& attachment : displayableAttachments(entry))
            attachments.push_back(std::move(attachment));
    }
    const AttachmentSaving saving =
        saveAll(session, std::move(attachments), platform::standardizedPath(options.folder));
    if (json)
        printSaving(saving);
    else
        printSavingReadably(saving);
    return statusOf(saving);
}

} // namespace

void addAttachmentCommands(CommandSet& commands) {
    auto one = std::make_shared<AttachmentOptions>();
    CLI::App& attachment = commands.add("attachment", "取出一个附件",
                                        {{{"attachment 3fa9c1 合同.pdf --to ~/桌面", "存到一个文件夹"},
                                          {"attachment 3fa9c1 合同.pdf --to 新名字.pdf", "存为一个新文件"}}});
    addNameArgument(attachment, one->entry);
    attachment.add_option("name", one->name, "附件的名称")->required();
    attachment.add_option("--to", one->target, "新文件，或已有的文件夹")->required()->type_name("FILE");
    commands.setRun(attachment,
                    [one](Session& session, bool json) { return runAttachment(session, *one, json); });

    auto all = std::make_shared<AttachmentsOptions>();
    CLI::App& attachments =
        commands.add("attachments", "取出一些邮件的全部附件",
                     {{{"attachments 3fa9c1 --to ~/桌面/附件", "一封邮件的附件存到一个文件夹"},
                       {"attachments 3fa9c1 81d0e2 --to 附件", "两封邮件的附件，重名的加上编号"}}});
    addNamesArgument(attachments, all->entries);
    attachments.add_option("--to", all->folder, "文件夹，没有时会建立")->required()->type_name("DIR");
    commands.setRun(attachments,
                    [all](Session& session, bool json) { return runAttachments(session, *all, json); });
}

} // namespace corvane::cli
