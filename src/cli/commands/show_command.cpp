#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/named_entries.h"
#include "records/formatters.h"

namespace corvane::cli {

namespace {

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

int runShow(Session& session, const std::string& entryID, bool json) {
    const ArchivedEntry entry = namedEntry(session, entryID);
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

} // namespace

void addShowCommand(CommandSet& commands) {
    auto name = std::make_shared<std::string>();
    CLI::App& show = commands.add("show", "一封已归档的邮件",
                                  {{{"show 3fa9c1", "显示 search 或 library 列出的一封邮件"},
                                    {"show --json 3fa9c1", "同样的内容，给脚本用"}}});
    addNameArgument(show, *name);
    commands.setRun(show, [name](Session& session, bool json) { return runShow(session, *name, json); });
}

} // namespace corvane::cli
