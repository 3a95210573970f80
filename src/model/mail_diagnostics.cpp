#include "model/mail_diagnostics.h"

#include <vector>

#include "mailstore/reader_logs.h"
#include "mailstore/restored_mail_diagnostics.h"
#include "model/mail_access.h"

namespace corvane {

void MailDiagnostics::write(const std::set<std::string>& accountPrefixes) {
    task_.start(TaskPriority::utility,
                [store = upkeepMailStoreOf(context_), accounts = accounts_.availableAccounts(),
                 prefixes = std::vector<std::string>(accountPrefixes.begin(), accountPrefixes.end())](
                    const TaskHandle& task) {
                    mailstore::logRestoredMailDiagnostics(store.context, store.rootPath, accounts, prefixes,
                                                          task.stopToken());
                });
}

std::string MailDiagnostics::logPath() const {
    return context_.support.filePath(mailstore::restoredMailDiagnosticLogName);
}

} // namespace corvane
