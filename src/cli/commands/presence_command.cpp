#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

using Status = ArchivedOriginalPresenceStatus;

// The failure of a question after which an earlier answer stands is none of that answer.
void printJson(const OriginalPresence& presence, const std::optional<std::string>& questionFailure) {
    const std::vector<ArchivedEntry>& entries = *presence.entries;
    JsonDocument document;
    document.object([&] {
        document.member("state", rawValue(presence.state()));
        document.key("statuses");
        document.object([&] {
            for (std::size_t at = 0; at < presence.statuses.size(); ++at)
                document.member(entries[at].id(), presence.statuses[at]);
        });
        const auto& failure = presence.failureMessage ? presence.failureMessage : questionFailure;
        if (failure) document.member("failureMessage", *failure);
    });
    document.print();
}

void printReadable(const OriginalPresence& presence) {
    if (presence.failureMessage) return printText(*presence.failureMessage);
    if (presence.entries->empty()) return printText("还没有归档邮件");
    if (!presence.checkedAt) return printText("还没有与 Mail 对照过（presence --force 现在对照）");
    std::int64_t present = 0;
    std::int64_t missing = 0;
    for (const Status status : presence.statuses) {
        present += status == Status::present ? 1 : 0;
        missing += status == Status::missing ? 1 : 0;
    }
    const auto unknown = static_cast<std::int64_t>(presence.statuses.size()) - present - missing;
    printText(fmt::format("对照时间：{}", formatListDate(*presence.checkedAt)));
    printText(fmt::format("在 Mail：{} 封", present));
    printText(fmt::format("已删：{} 封", missing));
    printText(fmt::format("待确认：{} 封", unknown));
}

int runPresence(Session& session, bool force, bool json) {
    loadLibrary(session);
    PresenceFlow& flow = session.model().library().presence;
    flow.refreshArchivedOriginalPresenceIfNeeded(force);
    session.waitUntilIdle();
    if (json)
        printJson(*flow.presence(), flow.questionFailure());
    else
        printReadable(*flow.presence());
    // Of an earlier answer there are figures, which could be taken for those of now.
    if (flow.questionFailure() && flow.presence()->checkedAt)
        messageLine("Mail 没有答复，以上是上次对照的结果：" + *flow.questionFailure());
    return done;
}

} // namespace

void addPresenceCommand(CommandSet& commands) {
    auto force = std::make_shared<bool>(false);
    CLI::App& presence =
        commands.add("presence", "归档邮件的原件是否还在 Mail",
                     {{{"presence", "上次对照的结果"}, {"presence --force", "现在与 Mail 对照"}}});
    presence.add_flag("--force", *force, "与 Mail 当前的邮件重新对照");
    commands.setRun(presence,
                    [force](Session& session, bool json) { return runPresence(session, *force, json); });
}

} // namespace corvane::cli
