#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/mails/entry_source.h"
#include "cli/mails/mail_texts.h"
#include "cli/unreadable_archives.h"
#include "library/entry_handles.h"
#include "locations/loading/quick_library.h"
#include "records/logs/console_log.h"
#include "records/texts/formatters.h"

namespace corvane::cli {

namespace {

struct SearchOptions {
    std::string text;
    std::optional<std::int64_t> limit;
    bool withDetails = false;
};

// Slim, since there may be very many.
struct FoundMail {
    std::string entryID;
    std::string shortestHandle;
    std::optional<Date> date;
    SharedText sender;
    SharedText subject;
    std::optional<std::string> snippet;
};

struct SearchAnswer {
    EntrySource::FoundIDs found;
    std::vector<FoundMail> mails; // empty unless they are asked for
};

std::optional<std::string> snippetOf(EntrySource& source, const ArchivedEntry& entry,
                                     const std::string& query) {
    if (!showsSnippet(entry.record, query)) return std::nullopt;
    const auto body = source.body(entry);
    return body ? snippetText(*body, query) : std::nullopt;
}

FoundMail foundMail(EntrySource& source, const ArchivedEntry& entry, const std::string& query) {
    return {entry.id(),          source.shortestHandle(entry), entry.record.date,
            entry.record.sender, entry.record.subject,         snippetOf(source, entry, query)};
}

SearchAnswer answerOf(EntrySource& source, const SearchOptions& options, bool wantsMails) {
    SearchAnswer answer;
    std::vector<SharedText> ids;
    const auto add = [&](const ArchivedEntry& entry) {
        if (wantsMails)
            answer.mails.push_back(foundMail(source, entry, options.text));
        else
            ids.push_back(entry.record.id);
    };
    if (const auto newest =
            options.limit ? source.newestHolding(options.text, *options.limit) : std::nullopt) {
        for (const ArchivedEntry& entry : *newest) add(entry);
    } else {
        answer.found = source.search(options.text);
        if (!wantsMails && !options.limit) return answer;
        source.visitNewest(answer.found.ids, options.limit, add);
    }
    std::ranges::sort(ids);
    ids.erase(std::ranges::unique(ids).begin(), ids.end());
    answer.found.ids = std::move(ids);
    return answer;
}

void printDetails(const std::vector<FoundMail>& mails) {
    JsonDocument document;
    document.objects(mails, [&](const FoundMail& mail) {
        document.member("handle", entryHandle(mail.entryID));
        document.member("entryID", mail.entryID);
        if (mail.date) document.member("date", *mail.date);
        document.member("sender", mail.sender);
        document.member("subject", mail.subject);
        if (mail.snippet) document.member("snippet", *mail.snippet);
    });
    document.print();
}

void printTable(const std::vector<FoundMail>& mails) {
    TextTable table({TextTable::Align::left, TextTable::Align::left, TextTable::Align::left,
                     TextTable::Align::left, TextTable::Align::left});
    table.row({"编号", "日期", "发件人", "主题", "正文"});
    for (const FoundMail& mail : mails) {
        table.row({mail.shortestHandle, formatMailDate(mail.date), mail.sender.str(), mail.subject.str(),
                   mail.snippet.value_or("")});
    }
    table.print();
}

int runSearch(Session& session, const SearchOptions& options, bool json) {
    const bool wantsMails = options.withDetails || !json;
    const SearchAnswer answer =
        askEntries(session, [&](EntrySource& source) { return answerOf(source, options, wantsMails); });
    tellUnsearchedArchives(answer.found.rootsNotAsked, answer.found.rootsNotPrepared);
    if (!json) {
        if (answer.mails.empty())
            messageLine("没有找到。");
        else
            printTable(answer.mails);
    } else if (options.withDetails) {
        printDetails(answer.mails);
    } else {
        JsonDocument document;
        document.value(answer.found.ids);
        document.print();
    }
    return done;
}

} // namespace

void addSearchCommand(CommandSet& commands) {
    auto options = std::make_shared<SearchOptions>();
    CLI::App& search =
        commands.add("search", "在所有归档中全文搜索",
                     {{{"search 合同 --limit 20", "提到合同的邮件中最新的 20 封"},
                       {"search --json --details \"annual report\"", "找到的邮件，给脚本用"}}});
    search.add_option("text", options->text, "要找的文字")->required();
    search.add_option("--limit", options->limit, "最多几封，新邮件在前；0 是一封也不列")
        ->check(notNegative());
    search.add_flag("--details", options->withDetails, "JSON 中给出编号、日期、发件人、主题和正文片段");
    commands.setRun(search,
                    [options](Session& session, bool json) { return runSearch(session, *options, json); });
}

} // namespace corvane::cli
