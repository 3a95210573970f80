#include "model/mail/mail_diagnostics.h"

#include <utility>
#include <vector>

#include "mailstore/index/restored_mail_diagnostics.h"
#include "mailstore/reader_logs.h"
#include "model/mail/mail_access.h"

namespace corvane {

void MailDiagnostics::write(const std::set<std::string>& accountPrefixes) {
    isReporting_ = true;
    task_.start(TaskPriority::utility,
                [this, store = upkeepMailStoreOf(context_), accounts = accounts_.availableAccounts(),
                 prefixes = std::vector<std::string>(accountPrefixes.begin(), accountPrefixes.end())](
                    const TaskHandle& task) {
                    mailstore::logRestoredMailDiagnostics(store.context, store.rootPath, accounts, prefixes,
                                                          task.stopToken());
                    task.onMain([this] {
                        isReporting_ = false;
                        appendWaiting();
                    });
                });
}

void MailDiagnostics::append(std::vector<std::string> lines) {
    waiting_ = std::move(lines);
    if (!isReporting_) appendWaiting();
}

void MailDiagnostics::appendWaiting() {
    appendTask_.start(TaskPriority::utility, [lines = std::exchange(waiting_, {}),
                                              support = context_.support](const TaskHandle& task) {
        for (const std::string& line : lines) {
            if (task.isCancelled()) return;
            mailstore::restoredMailDiagnosticLog(support, line);
        }
    });
}

std::string MailDiagnostics::logPath() const {
    return context_.support.filePath(mailstore::restoredMailDiagnosticLogName);
}

} // namespace corvane
