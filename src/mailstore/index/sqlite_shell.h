// Questions to a database through the sqlite3 command-line shell. Each is a process and a read snapshot of
// its own, opened read-only, and leaves no file beside the database nor, at the end, in the temporary folder.
// They block the calling thread and may be called from several threads at once: background work only.
//
// `runShell` returns why a question failed, for errors that the user sees; the other functions return "no
// value" for every failure: nullopt, false or an empty list.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "mailstore/index/json_rows.h"
#include "mailstore/mail_store_context.h"
#include "platform/files/temporary_file.h"

namespace corvane::mailstore {

struct ShellQuery {
    enum class Format { list, json };

    std::string databasePath;
    std::string sql;
    Format format = Format::list;
    // Beginning and end of the answer's temporary file name, around a UUID.
    std::string_view outputPrefix = "corvane-rows-";
    std::string_view outputExtension = ".txt";
    std::optional<std::chrono::milliseconds> timeLimit; // absent for none
};

struct ShellResult {
    enum class Kind {
        succeeded,
        noOutputFile, // the temporary file couldn't be made
        launchFailed, // `detail` is the reason
        timedOut,
        stopped, // a stop was requested
        failed   // with `exitStatus`; `detail` is what the shell said, trimmed
    };

    Kind kind = Kind::succeeded;
    int exitStatus = 0;
    std::string detail;
    std::optional<platform::TemporaryFile> output; // of a success
};

// Called repeatedly while the shell runs, with the path of the file that its answer goes to, to read ahead in
// what is there already; true asks for the next call at once. What was read counts only once the whole has
// succeeded. A call with another path means that the shell was started anew, and what came before is void.
using OutputReader = std::function<bool(const std::string& path)>;

// Never throws for a failure: the result says which one. A shell that runs past the time limit, or past a
// requested stop, is ended. The reader is called on this thread.
ShellResult runShell(const MailStoreContext& context, const ShellQuery& query,
                     const std::stop_token& stop = {}, const OutputReader& readAhead = {});

// Time-limited. The first column of the first line that isn't empty, trimmed; nullopt without one.
std::optional<std::string> runRawQuery(const MailStoreContext& context, const std::string& sql,
                                       const std::string& databasePath);

// Time-limited. All lines, columns separated by "|"; the last one is usually empty.
std::optional<std::vector<std::string>> runRawMultilineQuery(const MailStoreContext& context,
                                                             const std::string& sql,
                                                             const std::string& databasePath);

// Time-limited. The integers of a one-column answer, ascending, each once; empty after a failure.
std::vector<std::int64_t> runIntSetQuery(const MailStoreContext& context, const std::string& sql,
                                         const std::string& databasePath);

// Without a time limit. The text of the answer.
std::optional<std::string> runUnlimitedQuery(const MailStoreContext& context, const std::string& sql,
                                             const std::string& databasePath,
                                             const std::stop_token& stop = {});

// Without a time limit. Visits the rows in order; false for a failure, which is logged, and the
// rows visited before it are then void.
bool runJSONRows(const MailStoreContext& context, const std::string& sql, const std::string& databasePath,
                 const JsonRowVisitor& visit);

// Without a time limit. Whether the index has the column with the Message-ID header, which some stores lack;
// false after a failure.
bool messageIdHeaderColumnExists(const MailStoreContext& context, const std::string& envelopeIndexPath,
                                 const std::stop_token& stop = {});

} // namespace corvane::mailstore
