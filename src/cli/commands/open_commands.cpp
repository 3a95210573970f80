#include <expected>
#include <memory>
#include <optional>
#include <string>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/named_entries.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct OpenOptions {
    std::string entry;
    bool isDryRun = false; // opens nothing
};

void printValue(std::string_view key, const std::string& value, bool json) {
    if (!json) return printText(value);
    JsonDocument document;
    document.object([&] { document.member(key, value); });
    document.print();
}

int runOpen(Session& session, const OpenOptions& options, bool json) {
    using Action = ArchivedMailOpening::Action;
    const ArchivedEntry entry = namedEntry(session, options.entry);
    ArchivedMailOpening opening(session.context());
    opening.openArchivedEmail(entry, options.isDryRun ? Action::bringBack : Action::open);
    session.waitUntilIdle();
    if (!opening.outcome()) throw Interrupted();
    if (!*opening.outcome()) throw CommandFailure(opening.openArchiveError());
    if (!opening.openArchiveNote().empty()) messageLine(opening.openArchiveNote());
    printValue("path", **opening.outcome(), json);
    return done;
}

int runOriginal(Session& session, const OpenOptions& options, bool json) {
    const ArchivedEntry entry = namedEntry(session, options.entry);
    ArchivedMailOpening opening(session.context());
    ArchivedMailOpening::OriginalAddress address = std::unexpected(OriginalFailure::noAnswer);
    opening.originalAddress(entry.record, [&](const auto& found) { address = found; });
    session.waitUntilIdle();
    if (!address) throw CommandFailure(originalFailureText(address.error()));
    if (!options.isDryRun && !session.platform().open(*address))
        throw CommandFailure(originalFailureText(OriginalFailure::notOpened));
    printValue("url", *address, json);
    return done;
}

} // namespace

void addOpenCommands(CommandSet& commands) {
    auto mail = std::make_shared<OpenOptions>();
    CLI::App& open = commands.add(
        "open", "打开一封已归档的邮件，需要时先从云端取回",
        {{{"open 3fa9c1", "用系统的邮件程序打开"}, {"open 3fa9c1 --dry-run", "只取回，并给出文件的路径"}}});
    addNameArgument(open, mail->entry);
    open.add_flag("--dry-run", mail->isDryRun, "只给出路径，不打开");
    commands.setRun(open, [mail](Session& session, bool json) { return runOpen(session, *mail, json); });

    CLI::App& original = commands.add(
        "original", "在 Mail 中打开一封已归档邮件的原件",
        {{{"original 3fa9c1", "在 Mail 中显示原件"}, {"original 3fa9c1 --dry-run", "只给出原件的地址"}}});
    addNameArgument(original, mail->entry);
    original.add_flag("--dry-run", mail->isDryRun, "只给出地址，不打开");
    commands.setRun(original,
                    [mail](Session& session, bool json) { return runOriginal(session, *mail, json); });
}

} // namespace corvane::cli
