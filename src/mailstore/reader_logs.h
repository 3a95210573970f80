// The private logs of the store's reader, in the application support folder. Failures of a log are ignored.
// Any thread.
#pragma once

#include <string_view>

#include "records/stores/app_support.h"

namespace corvane::mailstore {

// One line with its time into "trash-plan-debug.log", and the text to the console.
void debugLog(const CorvaneAppSupport& support, std::string_view text);

// One line about the search for accounts, to the console only.
void accountsLog(std::string_view text);

inline constexpr std::string_view restoredMailDiagnosticLogName = "restore-scan-diagnostic.log";

enum class LogStart { append, reset };

// The same for the log of restored mail; `reset` empties the file first.
void restoredMailDiagnosticLog(const CorvaneAppSupport& support, std::string_view text,
                               LogStart start = LogStart::append);

} // namespace corvane::mailstore
