#include "mailstore/sqlite/shell_queries.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "mailstore/reader_logs.h"
#include "mailstore/sqlite/mail_index_query_error.h"
#include "platform/files/directory.h"
#include "records/logs/console_log.h"
#include "text/charsets/charset.h"
#include "text/charsets/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

using Kind = ShellResult::Kind;

std::optional<std::string> outputText(const ShellResult& result) {
    if (result.kind != Kind::succeeded) return std::nullopt;
    auto output = platform::readFile(result.output->path());
    // One damaged value costs its own bytes, not the whole answer.
    if (output && !text::isValidUtf8(*output)) output = text::repairedUtf8(*output);
    return output;
}

ShellResult runQuick(const MailStoreContext& context, const std::string& sql, const std::string& databasePath,
                     std::string_view outputPrefix, const std::string& timeOutLine) {
    ShellResult result = runShell(context, {.databasePath = databasePath,
                                            .sql = sql,
                                            .timeLimit = context.queryTimeLimit,
                                            .outputPrefix = outputPrefix});
    if (result.kind == Kind::timedOut) debugLog(context.support, timeOutLine);
    return result;
}

} // namespace

std::optional<std::string> runRawQuery(const MailStoreContext& context, const std::string& sql,
                                       const std::string& databasePath) {
    const auto output = outputText(
        runQuick(context, sql, databasePath, "corvane-value-", "runRawQuery timed out; db=" + databasePath));
    if (!output) return std::nullopt;
    for (const std::string_view line : text::splitText(*output, '\n')) {
        if (!line.empty())
            return std::string(text::trimWhitespaceAndNewlines(line.substr(0, line.find('|'))));
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> runRawMultilineQuery(const MailStoreContext& context,
                                                             const std::string& sql,
                                                             const std::string& databasePath) {
    const ShellResult result = runQuick(context, sql, databasePath, "corvane-lines-",
                                        "runRawMultilineQuery timed out; db=" + databasePath);
    if (result.kind == Kind::timedOut) throw MailIndexQueryError(MailIndexQueryError::Kind::timedOut);
    if (result.kind == Kind::launchFailed)
        consoleLine(fmt::format("[SQLite] 启动失败: {} | db={}", result.detail, databasePath));
    if (result.kind == Kind::failed)
        consoleLine(fmt::format("[SQLite] 查询失败 status={} db={} error={}", result.exitStatus, databasePath,
                                result.detail));
    const auto output = outputText(result);
    if (!output) return std::nullopt;
    const auto lines = text::splitText(*output, '\n');
    return std::vector<std::string>(lines.begin(), lines.end());
}

std::vector<std::int64_t> runIntSetQuery(const MailStoreContext& context, const std::string& sql,
                                         const std::string& databasePath) {
    std::vector<std::int64_t> numbers;
    const auto output =
        outputText(runQuick(context, sql, databasePath, "corvane-intset-",
                            "runIntSetQuery timed out; skipping duplicate-account detection"));
    if (!output) return numbers;
    for (const std::string_view line : text::splitText(*output, '\n')) {
        if (const auto number = text::parseInteger(text::trimWhitespaceAndNewlines(line)))
            numbers.push_back(*number);
    }
    std::ranges::sort(numbers);
    const auto repeated = std::ranges::unique(numbers);
    numbers.erase(repeated.begin(), repeated.end());
    return numbers;
}

std::optional<std::string> runLongQuery(const MailStoreContext& context, const std::string& sql,
                                        const std::string& databasePath) {
    return outputText(runShell(
        context, {.databasePath = databasePath, .sql = sql, .timeLimit = context.longQueryTimeLimit}));
}

std::optional<platform::TemporaryFile> runRowsQuery(const MailStoreContext& context, const std::string& sql,
                                                    const std::string& databasePath) {
    ShellResult result = runShell(context, {.databasePath = databasePath,
                                            .sql = sql,
                                            .timeLimit = context.longQueryTimeLimit,
                                            .format = ShellQuery::Format::json,
                                            .outputExtension = ".json"});
    switch (result.kind) {
    case Kind::succeeded:
        return std::move(result.output);
    case Kind::failed:
        restoredMailDiagnosticLog(context.support, fmt::format("sqlite query failed status={} error={}",
                                                               result.exitStatus, result.detail));
        return std::nullopt;
    case Kind::timedOut:
        restoredMailDiagnosticLog(context.support, "sqlite query timed out");
        return std::nullopt;
    case Kind::stopped:
        return std::nullopt;
    default:
        restoredMailDiagnosticLog(context.support, "sqlite launch failed error=" + result.detail);
        return std::nullopt;
    }
}

bool runJSONRows(const MailStoreContext& context, const std::string& sql, const std::string& databasePath,
                 const JsonRowVisitor& visit) {
    const auto rows = runRowsQuery(context, sql, databasePath);
    return rows && readJsonRows(rows->path(), visit);
}

} // namespace corvane::mailstore
