// The answers of the sqlite3 shell as values. Each function runs one shell: background work; any thread. An
// answer that is absent says "couldn't look", never "nothing there".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mailstore/mail_store_context.h"
#include "mailstore/sqlite/json_rows.h"
#include "mailstore/sqlite/sqlite_shell.h"
#include "platform/files/writing/temporary_file.h"

namespace corvane::mailstore {

// Quick. The first column of the first line that isn't empty, trimmed; nullopt without one, and after any
// failure.
std::optional<std::string> runRawQuery(const MailStoreContext& context, const std::string& sql,
                                       const std::string& databasePath);

// Quick. All lines, columns separated by "|"; the last one is usually empty. Nullopt after a failure; throws
// MailIndexQueryError (timedOut) at the time limit, since a slow index isn't an empty one.
std::optional<std::vector<std::string>> runRawMultilineQuery(const MailStoreContext& context,
                                                             const std::string& sql,
                                                             const std::string& databasePath);

// Quick. The integers of a one-column answer, ascending, each once; empty after a failure.
std::vector<std::int64_t> runIntSetQuery(const MailStoreContext& context, const std::string& sql,
                                         const std::string& databasePath);

// Long. The text of the answer; nullopt after a failure.
std::optional<std::string> runLongQuery(const MailStoreContext& context, const std::string& sql,
                                        const std::string& databasePath);

// Long. The file of the rows; nullopt for a failure, which is logged.
std::optional<platform::TemporaryFile> runRowsQuery(const MailStoreContext& context, const std::string& sql,
                                                    const std::string& databasePath);

// Long. Visits the rows in order; false for a failure, which is logged, and the rows visited before it are
// then void.
bool runJSONRows(const MailStoreContext& context, const std::string& sql, const std::string& databasePath,
                 const JsonRowVisitor& visit);

} // namespace corvane::mailstore
