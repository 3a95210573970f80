#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/ranges.h>

#include "cli/away_days.h"
#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/exit_status.h"
#include "cli/overview_loading.h"
#include "library/overview/smart_mailbox_guide.h"
#include "listing/account_titles.h"
#include "records/timestamps.h"

namespace corvane::cli {

namespace {

struct GuideOptions {
    std::string account; // its key
    std::vector<std::int64_t> years;
};

// The smart mailboxes of the years that may be cleaned: one for each run of adjoining years, so that none
// gathers mail of a year in between.
struct Guide {
    SmartMailboxGuideTarget whole;
    std::vector<SmartMailboxGuideTarget> mailboxes;
    std::vector<LeftOutYear> leftOut;
    AwayProofs away; // of the mail that is to be deleted
};

Guide guideOf(const ArchivedOverview& overview, const GuideOptions& options) {
    const std::size_t place = overviewGroup(overview, options.account);
    const ArchivedOverviewGroup& group = (*overview.groups)[place];
    const ArchivedOverviewStats::Group& stats = overview.stats.groups[place];
    const auto isAsked = [&](std::int64_t year) {
        return options.years.empty() || std::ranges::find(options.years, year) != options.years.end();
    };
    std::vector<std::int64_t> years = overviewCleanableYears(group, stats);
    std::erase_if(years, [&](std::int64_t year) { return !isAsked(year); });
    std::vector<LeftOutYear> leftOut = leftOutYears(group, stats);
    std::erase_if(leftOut, [&](const LeftOutYear& each) { return !isAsked(each.year); });
    return {{group.title, years}, smartMailboxGuideTargets(stats.mailNames, years), std::move(leftOut), {}};
}

// Whether the guide is about the message, by the list's account and year.
bool isInGuide(const MailMessageRecord& message, const ArchivedOverview& overview,
               const GuideOptions& options, const std::vector<std::int64_t>& years) {
    const ArchivedOverviewGroup& group = (*overview.groups)[overviewGroup(overview, options.account)];
    return message.date && group.mailAccounts.contains(accountFilterKey(message)) &&
           std::ranges::find(years, localYear(*message.date)) != years.end();
}

// A line for each of the mailboxes.
template <class TextOf>
std::string lines(const Guide& guide, const TextOf& textOf) {
    if (guide.mailboxes.empty()) return textOf(guide.whole);
    std::vector<std::string> texts;
    for (const SmartMailboxGuideTarget& mailbox : guide.mailboxes) texts.push_back(textOf(mailbox));
    return fmt::format("{}", fmt::join(texts, "\n"));
}

void writeLeftOut(JsonDocument& document, const std::vector<LeftOutYear>& years) {
    document.key("leftOut");
    document.array([&] {
        for (const LeftOutYear& each : years) {
            document.object([&] {
                document.member("year", each.year);
                document.member("reason", each.reason);
            });
        }
    });
}

// Only where Mail shows an account by another name than its label.
void writeAccountNames(JsonDocument& document, const Guide& guide) {
    std::vector<MailName> names;
    for (const SmartMailboxGuideTarget& mailbox : guide.mailboxes) {
        const MailName name{.label = mailbox.accountName, .inMail = mailbox.nameInMail};
        if (!name.inMail.empty() && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    if (names.empty()) return;
    document.key("accountsInMail");
    document.array([&] {
        for (const MailName& name : names) {
            document.object([&] {
                document.member("account", name.label);
                document.member("shownAs", name.inMail);
            });
        }
    });
}

void printJson(const Guide& guide) {
    JsonDocument document;
    document.object([&] {
        document.member("accountName", guide.whole.accountName);
        document.member("years", guide.whole.years);
        document.member("suggestedName", lines(guide, &suggestedName));
        document.member("conditionText", lines(guide, &conditionText));
        writeAccountNames(document, guide);
        if (!guide.leftOut.empty()) writeLeftOut(document, guide.leftOut);
        writeAwayProofs(document, guide.away);
    });
    document.print();
}

void printSteps(const SmartMailboxGuideTarget& mailbox) {
    printText("");
    int number = 0;
    for (const SmartMailboxGuideStep& step : smartMailboxGuideSteps(mailbox)) {
        printText(fmt::format("{}. {}", ++number, step.title.empty() ? step.lines.front() : step.title));
        if (step.title.empty()) continue;
        for (const std::string& line : step.lines) printText("   " + line);
    }
}

void printLeftOut(const std::vector<LeftOutYear>& years) {
    for (const LeftOutYear& each : years)
        printText(fmt::format("{} 年没有列入：{}。", each.year, each.reason));
}

void printReadable(const Guide& guide) {
    if (guide.mailboxes.empty()) {
        printText(fmt::format("“{}” 还没有可以清理的年份。", guide.whole.accountName));
        return printLeftOut(guide.leftOut);
    }
    printText(smartMailboxGuideTitle);
    printText(smartMailboxGuideLead);
    printText(smartMailboxGuidePromise);
    for (const SmartMailboxGuideTarget& mailbox : guide.mailboxes) printSteps(mailbox);
    printText("");
    printText(smartMailboxGuideClosing);
    printAwayProofs(guide.away);
    printLeftOut(guide.leftOut);
}

int runGuide(Session& session, const GuideOptions& options, bool json) {
    const SharedOverview overview = loadOverview(session, OriginalsCheck::known);
    Guide guide = guideOf(*overview, options);
    guide.away = awayProofsOf(session, [&](const MailMessageRecord& message) {
        return isInGuide(message, *overview, options, guide.whole.years);
    });
    json ? printJson(guide) : printReadable(guide);
    return statusOfAnswer();
}

} // namespace

void addGuideCommand(CommandSet& commands) {
    auto options = std::make_shared<GuideOptions>();
    CLI::App& guide = commands.add("guide", "在 Apple Mail 里批量删除已备份邮件的步骤",
                                   {{{"guide me@example.com", "一个账户所有可以清理的年份"},
                                     {"guide me@example.com --year 2014 --year 2015", "只看两年"}}});
    guide.add_option("account", options->account, "账户，overview 给出的名称或 key")
        ->required()
        ->type_name("KEY");
    guide.add_option("--year", options->years, "限定年份")->allow_extra_args(false)->type_name("YEAR");
    commands.setRun(guide,
                    [options](Session& session, bool json) { return runGuide(session, *options, json); });
}

} // namespace corvane::cli
