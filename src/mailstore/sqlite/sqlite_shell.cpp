#include "mailstore/sqlite/sqlite_shell.h"

#include <cstddef>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "mailstore/sqlite/quiet_database.h"
#include "mailstore/sqlite/sqlite_connection.h"
#include "platform/files/directory.h"
#include "platform/processes/child_process.h"
#include "platform/processes/timed_pipe.h"
#include "text/charsets/charset.h"
#include "text/mutex.h"
#include "text/trim.h"

namespace corvane::mailstore {

namespace {

using Kind = ShellResult::Kind;
using Clock = std::chrono::steady_clock;

constexpr std::int64_t errorTextLimit = 65'536;
// A view without an end must not fill the disk before its time is over, nor what reads the answer the memory.
// The rows of two million messages have half of that; lists are sums, or numbers at the most.
constexpr std::int64_t rowsLimitBytes = std::int64_t(1) << 30;
constexpr std::int64_t listLimitBytes = std::int64_t(64) << 20;
// So much of a database is mapped instead of copied page by page.
constexpr std::int64_t mappedBytes = std::int64_t(1) << 30;

// "-init" keeps the user's own ~/.sqliterc, which could change the form of the answer, from being read.
std::vector<std::string> shellArguments(const ShellQuery& query, const std::string& databaseName,
                                        bool hasSafeMode) {
    std::vector<std::string> arguments = {"-readonly"};
    if (query.format == ShellQuery::Format::json) arguments.emplace_back("-json");
    arguments.push_back(databaseName);
    if (hasSafeMode) arguments.emplace_back("-safe");
    arguments.insert(arguments.end(), {"-bail", "-mmap", std::to_string(mappedBytes), "-init", "/dev/null",
                                       "-cmd", fmt::format(".timeout {}", busyPatience.count()), "-cmd",
                                       "PRAGMA trusted_schema=OFF;"});
    return arguments;
}

// The safe mode came with version 3.37. A shell is asked once a process; one that gives no answer in time
// counts as one without, and is asked again. Throws std::system_error when it can't be started.
bool hasSafeMode(const MailStoreContext& context) {
    static text::Mutex mutex;
    static std::map<std::string, bool> known GUARDED_BY(mutex);
    const std::string path = context.platform.sqliteShellPath();
    {
        const text::MutexLock lock(mutex);
        if (const auto found = known.find(path); found != known.end()) return found->second;
    }
    platform::ChildProcess shell({.executable = path, .arguments = {"-safe", "-version"}, .environment = {}});
    const auto status = shell.waitUntil(Clock::now() + context.queryTimeLimit, context.stop);
    if (!status) return false;
    const text::MutexLock lock(mutex);
    return known[path] = *status == 0;
}

// A shell with the files of its answer: a shell that writes much to either stream can't block.
struct RunningShell {
    platform::TemporaryFile output;
    platform::TemporaryFile errorOutput;
    platform::FileDescriptor input;
    platform::ChildProcess process;
};

// Throws std::system_error when it can't be started.
RunningShell startShell(const MailStoreContext& context, const ShellQuery& query,
                        const std::string& databaseName, platform::TemporaryFile output,
                        platform::TemporaryFile errorOutput) {
    const bool isSafe = hasSafeMode(context);
    platform::Pipe input = platform::makePipe();
    platform::ChildProcess process(
        {.executable = context.platform.sqliteShellPath(),
         .arguments = shellArguments(query, databaseName, isSafe),
         .standardInput = input.readEnd.get(),
         .standardOutput = output.descriptor(),
         .standardError = errorOutput.descriptor(),
         .environment = {},
         .isUpkeep = context.isUpkeep,
         .fileSizeLimitBytes = query.format == ShellQuery::Format::json ? rowsLimitBytes : listLimitBytes});
    return {std::move(output), std::move(errorOutput), std::move(input.writeEnd), std::move(process)};
}

// The exit status; nullopt when the shell still runs at the deadline or at a stop. One that ends before it
// has read the statement tells why by its status.
std::optional<int> sendAndWait(RunningShell& shell, const std::string& sql, Clock::time_point deadline,
                               const std::stop_token& stop) {
    using platform::PipeOutcome;
    const PipeOutcome sent = platform::sendAll(shell.input.get(), sql, deadline, stop);
    shell.input.reset();
    if (sent != PipeOutcome::done && sent != PipeOutcome::ended) return std::nullopt;
    return shell.process.waitUntil(deadline, stop);
}

ShellResult resultOf(RunningShell shell, const ShellQuery& query, const std::stop_token& stop) {
    const auto status = sendAndWait(shell, query.sql, Clock::now() + query.timeLimit, stop);
    if (!status) {
        shell.process.terminateAndWait();
        return {.kind = stop.stop_requested() ? Kind::stopped : Kind::timedOut,
                .detail = {},
                .output = {},
                .hasBegunToAnswer = platform::fileSize(shell.output.path()).value_or(0) > 0};
    }
    if (*status != 0) {
        const std::string said =
            platform::readFilePrefix(shell.errorOutput.path(), errorTextLimit).value_or("");
        const std::string repaired = text::repairedUtf8(said);
        return {.kind = Kind::failed,
                .exitStatus = *status,
                .detail = std::string(text::trimWhitespaceAndNewlines(repaired)),
                .output = {}};
    }
    shell.output.closeDescriptor();
    return {.kind = Kind::succeeded, .detail = {}, .output = std::move(shell.output)};
}

ShellResult runShellOnce(const MailStoreContext& context, const ShellQuery& query,
                         const std::string& databaseName) {
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
        return resultOf(startShell(context, query, databaseName, std::move(*output), std::move(*errorOutput)),
                        query, context.stop);
    } catch (const std::system_error& error) {
        return {.kind = Kind::launchFailed, .detail = error.what(), .output = {}};
    }
}

} // namespace

ShellResult runShell(const MailStoreContext& context, const ShellQuery& query) {
    if (!consistsOfFiles(query.databasePath))
        return {.kind = Kind::failed, .exitStatus = 1, .detail = noDatabaseFile, .output = {}};
    const QuietDatabase database(query.databasePath, context.platform.temporaryDirectory());
    ShellResult result = runShellOnce(context, query, database.name());
    const bool hasRead = result.kind == Kind::succeeded || result.kind == Kind::failed;
    if (!hasRead || !database.wasDisturbed()) return result;
    return runShellOnce(context, query, query.databasePath);
}

} // namespace corvane::mailstore
