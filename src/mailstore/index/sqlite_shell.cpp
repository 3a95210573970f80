#include "mailstore/index/sqlite_shell.h"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>

#include "mailstore/index/quiet_database.h"
#include "mailstore/index/sqlite_connection.h"
#include "mailstore/reader_logs.h"
#include "platform/files/directory.h"
#include "platform/processes/child_process.h"
#include "records/logs/console_log.h"
#include "text/charset.h"
#include "text/encoding.h"
#include "text/split.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

using Kind = ShellResult::Kind;
using Clock = std::chrono::steady_clock;

constexpr std::int64_t errorTextLimit = 65'536;

// The options that the question is made of come first. "-init" keeps the user's own ~/.sqliterc, which could
// change the form of the answer, from being read.
std::vector<std::string> shellArguments(const ShellQuery& query, const std::string& databaseName) {
    std::vector<std::string> arguments = {"-readonly"};
    if (query.format == ShellQuery::Format::json) arguments.emplace_back("-json");
    arguments.insert(arguments.end(), {databaseName, query.sql, "-init", "/dev/null", "-cmd",
                                       fmt::format(".timeout {}", busyPatience.count())});
    return arguments;
}

// The exit status; nullopt when the shell still runs at the deadline or at a stop. The reader looks in steps:
// to be woken by each write of the shell, 4 KB, costs more than to read the rows.
std::optional<int> waitAndRead(platform::ChildProcess& shell, Clock::time_point deadline,
                               const std::stop_token& stop, const std::string& outputPath,
                               const OutputReader& readAhead) {
    constexpr std::chrono::milliseconds step{10};
    if (!readAhead) return shell.waitUntil(deadline, stop);
    bool hasMore = false;
    while (true) {
        const auto now = Clock::now();
        const auto status = shell.waitUntil(std::min(deadline, hasMore ? now : now + step), stop);
        if (status || stop.stop_requested() || Clock::now() >= deadline) return status;
        hasMore = readAhead(outputPath);
    }
}

// Both streams go to files: a shell that writes much to either can't block.
ShellResult superviseShell(platform::ChildProcess shell, const ShellQuery& query,
                           platform::TemporaryFile output, platform::TemporaryFile errorOutput,
                           const std::stop_token& stop, const OutputReader& readAhead) {
    const auto deadline = query.timeLimit ? Clock::now() + *query.timeLimit : Clock::time_point::max();
    const auto status = waitAndRead(shell, deadline, stop, output.path(), readAhead);
    if (!status) {
        shell.terminateAndWait();
        return {.kind = stop.stop_requested() ? Kind::stopped : Kind::timedOut, .detail = {}, .output = {}};
    }
    if (*status != 0) {
        const std::string said = platform::readFilePrefix(errorOutput.path(), errorTextLimit).value_or("");
        const std::string repaired = text::repairedUtf8(said);
        return {.kind = Kind::failed,
                .exitStatus = *status,
                .detail = std::string(text::trimWhitespaceAndNewlines(repaired)),
                .output = {}};
    }
    output.closeDescriptor();
    return {.kind = Kind::succeeded, .detail = {}, .output = std::move(output)};
}

ShellResult runShellOnce(const MailStoreContext& context, const ShellQuery& query,
                         const std::string& databaseName, const std::stop_token& stop,
                         const OutputReader& readAhead) {
    std::optional<platform::TemporaryFile> output;
    std::optional<platform::TemporaryFile> errorOutput;
    try {
        const std::string folder = context.platform.temporaryDirectory();
        output.emplace(folder, query.outputPrefix, query.outputExtension);
        errorOutput.emplace(folder, "corvane-error-", ".txt");
    } catch (const std::system_error& error) {
        return {.kind = Kind::noOutputFile, .detail = error.what(), .output = {}};
    }
    try {
        platform::ChildProcess shell({.executable = context.platform.sqliteShellPath(),
                                      .arguments = shellArguments(query, databaseName),
                                      .standardOutput = output->descriptor(),
                                      .standardError = errorOutput->descriptor(),
                                      .environment = {},
                                      .isUpkeep = context.isUpkeep});
        return superviseShell(std::move(shell), query, std::move(*output), std::move(*errorOutput), stop,
                              readAhead);
    } catch (const std::system_error& error) {
        return {.kind = Kind::launchFailed, .detail = error.what(), .output = {}};
    }
}

std::optional<std::string> outputText(const ShellResult& result) {
    if (result.kind != Kind::succeeded) return std::nullopt;
    auto output = platform::readFile(result.output->path());
    // One damaged value costs its own bytes, not the whole answer.
    if (output && !text::isValidUtf8(*output)) output = text::repairedUtf8(*output);
    return output;
}

ShellResult runLimited(const MailStoreContext& context, const std::string& sql,
                       const std::string& databasePath, std::string_view outputPrefix,
                       const std::string& timeOutLine) {
    ShellResult result = runShell(context, {.databasePath = databasePath,
                                            .sql = sql,
                                            .outputPrefix = outputPrefix,
                                            .timeLimit = context.queryTimeLimit});
    if (result.kind == Kind::timedOut) debugLog(context.support, timeOutLine);
    return result;
}

} // namespace

ShellResult runShell(const MailStoreContext& context, const ShellQuery& query, const std::stop_token& stop,
                     const OutputReader& readAhead) {
    const QuietDatabase database(query.databasePath, context.platform.temporaryDirectory());
    ShellResult result = runShellOnce(context, query, database.name(), stop, readAhead);
    const bool hasRead = result.kind == Kind::succeeded || result.kind == Kind::failed;
    if (!hasRead || !database.wasDisturbed()) return result;
    return runShellOnce(context, query, query.databasePath, stop, readAhead);
}

std::optional<std::string> runRawQuery(const MailStoreContext& context, const std::string& sql,
                                       const std::string& databasePath) {
    const auto output = outputText(runLimited(context, sql, databasePath, "corvane-value-",
                                              "runRawQuery timed out; db=" + databasePath));
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
    const ShellResult result = runLimited(context, sql, databasePath, "corvane-lines-",
                                          "runRawMultilineQuery timed out; db=" + databasePath);
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
        outputText(runLimited(context, sql, databasePath, "corvane-intset-",
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

std::optional<std::string> runUnlimitedQuery(const MailStoreContext& context, const std::string& sql,
                                             const std::string& databasePath, const std::stop_token& stop) {
    return outputText(runShell(context, {.databasePath = databasePath, .sql = sql, .timeLimit = {}}, stop));
}

bool runJSONRows(const MailStoreContext& context, const std::string& sql, const std::string& databasePath,
                 const JsonRowVisitor& visit) {
    const ShellResult result = runShell(context, {.databasePath = databasePath,
                                                  .sql = sql,
                                                  .format = ShellQuery::Format::json,
                                                  .outputExtension = ".json",
                                                  .timeLimit = {}});
    switch (result.kind) {
    case Kind::succeeded:
        return readJsonRows(result.output->path(), visit);
    case Kind::failed:
        restoredMailDiagnosticLog(context.support, fmt::format("sqlite query failed status={} error={}",
                                                               result.exitStatus, result.detail));
        return false;
    default:
        restoredMailDiagnosticLog(context.support, "sqlite launch failed error=" + result.detail);
        return false;
    }
}

bool messageIdHeaderColumnExists(const MailStoreContext& context, const std::string& envelopeIndexPath,
                                 const std::stop_token& stop) {
    const auto output = runUnlimitedQuery(
        context,
        "SELECT COUNT(*) FROM pragma_table_info('message_global_data') WHERE name='message_id_header';",
        envelopeIndexPath, stop);
    const auto count = text::parseInteger(text::trimWhitespaceAndNewlines(output.value_or("0")));
    return count.value_or(0) > 0;
}

} // namespace corvane::mailstore
