// Questions to a foreign database through the sqlite3 command-line shell. Each is a process and a read
// snapshot of its own, opened read-only, and leaves no file beside the database nor, at the end, in the
// temporary folder. They block the calling thread and may be called from several threads at once: background
// work only.
//
// The database may be made by somebody else. Its schema isn't trusted, so that views and triggers can't call
// what runs programs or touches files, and the shell's safe mode forbids the same once more where the shell
// has one. The statement goes over standard input: it may hold addresses, and arguments of a process can be
// read by every user of the machine.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mailstore/mail_store_context.h"
#include "platform/files/writing/temporary_file.h"

namespace corvane::mailstore {

struct ShellQuery {
    enum class Format { list, json };

    std::string databasePath;
    std::string sql;
    std::chrono::milliseconds timeLimit;
    Format format = Format::list;
    // Beginning and end of the answer's temporary file name, around a UUID.
    std::string_view outputPrefix = "corvane-rows-";
    std::string_view outputExtension = ".txt";
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
    bool hasBegunToAnswer = false;                 // at the time limit there was a part of the answer
};

// Never throws for a failure: the result says which one. A shell that runs past the time limit, or past a
// requested stop of the context, is ended. What isn't a database file fails at once, without a shell.
ShellResult runShell(const MailStoreContext& context, const ShellQuery& query);

} // namespace corvane::mailstore
