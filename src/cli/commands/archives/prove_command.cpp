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
#include "cli/proving.h"
#include "listing/proof/outcome_titles.h"

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

// Interrupted, it answers with what it has kept.
int runProve(Session& session, const ProveOptions& options, bool json) {
    session.restoreLastScan();
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
    return statusOfProof(answer.unproven.empty());
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
