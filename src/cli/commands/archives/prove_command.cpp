#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "cli/away_days.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/known_accounts.h"
#include "cli/proving.h"
#include "listing/proof/outcome_titles.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct ProveOptions {
    std::vector<std::string> accounts;
    std::vector<std::int64_t> years;
};

// A message that isn't proven.
struct Unproven {
    const MailMessageRecord* message = nullptr;
    ProofOutcome outcome = ProofOutcome::notLookedAt;
    std::string path; // empty where there is no cause to name
};

struct ProofAnswer {
    std::array<std::int64_t, proofOutcomeCount> counts{};
    std::vector<Unproven> unproven;

    [[nodiscard]] std::int64_t count(ProofOutcome outcome) const {
        return counts.at(static_cast<std::size_t>(outcome));
    }
};

constexpr std::array shownOrder = {ProofOutcome::proven,     ProofOutcome::differs,
                                   ProofOutcome::unreadable, ProofOutcome::fileMissing,
                                   ProofOutcome::incomplete, ProofOutcome::notLookedAt};

ProofAnswer answerOf(const MessageCatalog& catalog, const ProofScope& scope) {
    const AvailabilityResult& known = *catalog.state()->availability;
    ProofAnswer answer;
    for (const MailMessageRecord& message : *catalog.messages()) {
        const bool isLookedAt = known.recordedMessageIDs->contains(message.id) &&
                                known.locallyAvailableIDs->contains(message.id) &&
                                scope.holds(message, *known.yearByID);
        if (!isLookedAt) continue;
        const ProofOutcome outcome = known.proofs->outcomeOf(message.id);
        ++answer.counts.at(static_cast<std::size_t>(outcome));
        if (outcome == ProofOutcome::proven) continue;
        const ProofVerdict* const against = known.proofs->verdictAgainst(message.id);
        answer.unproven.push_back({&message, outcome, against == nullptr ? std::string() : against->path});
    }
    return answer;
}

void printJson(const ProofAnswer& answer, const AwayProofs& away) {
    JsonDocument document;
    document.object([&] {
        for (const ProofOutcome outcome : shownOrder)
            document.member(proofOutcomeName(outcome), answer.count(outcome));
        document.key("messages");
        document.array([&] {
            for (const Unproven& each : answer.unproven) {
                document.object([&] {
                    document.member("id", each.message->id);
                    document.member("outcome", proofOutcomeName(each.outcome));
                    if (!each.path.empty()) document.member("path", each.path);
                });
            }
        });
        writeAwayProofs(document, away);
    });
    document.print();
}

void printReadable(const ProofAnswer& answer, const AwayProofs& away) {
    for (const ProofOutcome outcome : shownOrder) {
        const std::int64_t count = answer.count(outcome);
        if (count > 0 || outcome == ProofOutcome::proven)
            printText(fmt::format("{}：{} 封", proofOutcomeTitle(outcome), count));
    }
    printAwayProofs(away);
    if (answer.unproven.empty()) return;
    TextTable table({TextTable::Align::left, TextTable::Align::left, TextTable::Align::left});
    table.row({"情况", "主题", "文件"});
    for (const Unproven& each : answer.unproven)
        table.row({std::string(proofOutcomeTitle(each.outcome)), each.message->subject.str(), each.path});
    table.print();
}

// Why a proof had nothing to look at.
struct NothingToProve {
    std::string reason;     // for the user
    bool isTrouble = false; // something is missing that was there once, or nobody could look
};

NothingToProve nothingToProve(CorvaneViewModel& model) {
    const MessageCatalog& catalog = model.mail().catalog;
    if (catalog.messages()->empty())
        return {"没有可以核对的邮件：还没有扫描过 Mail，或者上次的扫描结果没能保存（corvane-cli refresh "
                "重新扫描）。",
                true};
    if (model.library().loader.archivedEntries()->empty()) {
        const bool isKnown = !model.library().loader.archiveLocations().empty();
        return {isKnown ? "没有可以核对的邮件：归档里没有读到任何记录。"
                        : "没有可以核对的邮件：没有已知的归档（还没有归档过，或归档已移出列表）。",
                isKnown};
    }
    const AvailabilityResult& known = *catalog.state()->availability;
    if (!known.recordedMessageIDs->empty() && known.locallyAvailableIDs->empty())
        return {"没有可以核对的邮件：在本机看不到任何邮件文件，它们已不在，或所在的文件夹无法读取。", true};
    return {"没有可以核对的邮件：上次扫描到的邮件里，没有一封在这个范围内并且已归档。", false};
}

// Interrupted, it answers with what it has kept.
int runProve(Session& session, const ProveOptions& options, bool json) {
    session.restoreLastScan(Session::Restored::withoutCounts);
    requireAccounts(session, options.accounts, json);
    const ProofScope scope{{options.accounts.begin(), options.accounts.end()},
                           {options.years.begin(), options.years.end()}};
    proveToEnd(session, scope);
    const ProofAnswer answer = answerOf(session.model().mail().catalog, scope);
    const AwayProofs away = awayProofsOf(session, [&](const MailMessageRecord& message) {
        return scope.holds(message, *session.model().mail().catalog.messageYearByID());
    });
    if (json)
        printJson(answer, away);
    else
        printReadable(answer, away);
    const bool hasLooked = std::ranges::any_of(answer.counts, [](std::int64_t count) { return count > 0; });
    const bool isAnyUnreadable = !session.model().library().loader.unreadableRoots().empty();
    const NothingToProve nothing = hasLooked ? NothingToProve() : nothingToProve(session.model());
    if (!hasLooked && !isAnyUnreadable && !wasInterrupted()) messageLine(nothing.reason);
    return statusOfProof(answer.unproven.empty() && !nothing.isTrouble && !isAnyUnreadable);
}

} // namespace

void addProveCommand(CommandSet& commands) {
    auto options = std::make_shared<ProveOptions>();
    CLI::App& prove = commands.add(
        "prove", "逐字节核对已归档邮件的原件与归档副本",
        {{{"prove", "核对所有还没有核对过的邮件"}, {"prove --year 2014", "只核对 2014 年的邮件"}}});
    prove.add_option("--account", options->accounts, "账户前缀")->allow_extra_args(false);
    prove.add_option("--year", options->years, "年份")->allow_extra_args(false);
    commands.setRun(prove,
                    [options](Session& session, bool json) { return runProve(session, *options, json); });
}

} // namespace corvane::cli
