#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/commands/commands.h"
#include "cli/console/output.h"
#include "cli/console/text_table.h"
#include "cli/exit_status.h"
#include "cli/mails/entry_source.h"
#include "cli/mails/mail_texts.h"
#include "library/entry_handles.h"
#include "records/formatters.h"
#include "records/logs/console_log.h"

namespace corvane::cli {

namespace {

struct SearchOptions {
    std::string text;
    std::optional<std::int64_t> limit;
    bool withDetails = false;
};

struct FoundMail {
    ArchivedEntry entry;
    std::string shortestHandle;
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

SearchAnswer answerOf(EntrySource& source, const SearchOptions& options, bool wantsMails) {
    SearchAnswer answer{source.search(options.text), {}};
    if (!wantsMails && !options.limit) return answer;
    const auto entries = source.newest(answer.found.ids, options.limit);
    if (wantsMails) {
        for (const ArchivedEntry& entry : entries)
            answer.mails.push_back(
                {entry, source.shortestHandle(entry), snippetOf(source, entry, options.text)});
    } else {
        answer.found.ids.clear();
        for (const ArchivedEntry& entry : entries) answer.found.ids.push_back(entry.record.id.str());
        std::ranges::sort(answer.found.ids);
        const auto repeated = std::ranges::unique(answer.found.ids);
        answer.found.ids.erase(repeated.begin(), repeated.end());
    }
    return answer;
}

void printDetails(const std::vector<FoundMail>& mails) {
    JsonDocument document;
    document.array([&] {
        for (const FoundMail& mail : mails) {
            document.object([&] {
                document.member("handle", entryHandle(mail.entry.id()));
                document.member("entryID", mail.entry.id());
                if (mail.entry.record.date) document.member("date", *mail.entry.record.date);
                document.member("sender", mail.entry.record.sender);
                document.member("subject", mail.entry.record.subject);
                if (mail.snippet) document.member("snippet", *mail.snippet);
            });
        }
    });
    document.print();
}

void printTable(const std::vector<FoundMail>& mails) {
    TextTable table({TextTable::Align::left, TextTable::Align::left, TextTable::Align::left,
                     TextTable::Align::left, TextTable::Align::left});
    table.row({"编号", "日期", "发件人", "主题", "正文"});
    for (const FoundMail& mail : mails) {
        const ArchivedEmailRecord& record = mail.entry.record;
        table.row({mail.shortestHandle, record.date ? formatListDate(*record.date) : "日期未知",
                   record.sender.str(), record.subject.str(), mail.snippet.value_or("")});
    }
    table.print();
}

int runSearch(Session& session, const SearchOptions& options, bool json) {
    const bool wantsMails = options.withDetails || !json;
    const SearchAnswer answer =
        askEntries(session, [&](EntrySource& source) { return answerOf(source, options, wantsMails); });
    for (const std::string& root : answer.found.rootsNotAsked)
        messageLine(fmt::format("没能搜索这个归档，结果里没有它的邮件：{}", root));
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
    search.add_option("--limit", options->limit, "最多几封，新邮件在前")->check(notNegative());
    search.add_flag("--details", options->withDetails, "JSON 中给出编号、日期、发件人、主题和正文片段");
    commands.setRun(search,
                    [options](Session& session, bool json) { return runSearch(session, *options, json); });
}

} // namespace corvane::cli
