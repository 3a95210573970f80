#include "model/mail/mail_diagnostics.h"

#include <utility>
#include <vector>

#include "mailstore/index/restored_mail_diagnostics.h"
#include "mailstore/reader_logs.h"
#include "model/mail/store/mail_store.h"

namespace corvane {

namespace {

struct ReportJob {
    MailStore store;
    std::vector<MailAccount> accounts;
    std::vector<std::string> prefixes; // of the accounts that are reported on
};

void writeReport(const ReportJob& job, const TaskHandle& task) {
    MailStore store = job.store;
    store.context.stop = task.stopToken();
    mailstore::logRestoredMailDiagnostics(store.context, store.rootPath, job.accounts, job.prefixes);
}

struct AppendJob {
    CorvaneAppSupport support;
    std::vector<std::string> lines;
};

void appendLines(const AppendJob& job, const TaskHandle& task) {
    for (const std::string& line : job.lines) {
        if (task.isCancelled()) return;
        mailstore::restoredMailDiagnosticLog(job.support, line);
    }
}

} // namespace

void MailDiagnostics::write(const std::set<std::string>& accountPrefixes) {
    isReporting_ = true;
    task_.start(TaskPriority::utility,
                ReportJob{upkeepMailStoreOf(context_),
                          accounts_.availableAccounts(),
                          {accountPrefixes.begin(), accountPrefixes.end()}},
                &writeReport, [this] {
                    isReporting_ = false;
                    appendWaiting();
                });
}

void MailDiagnostics::append(std::vector<std::string> lines) {
    waiting_ = std::move(lines);
    if (!isReporting_) appendWaiting();
}

void MailDiagnostics::appendWaiting() {
    appendTask_.start(TaskPriority::utility, AppendJob{context_.support, std::exchange(waiting_, {})},
                      &appendLines);
}

std::string MailDiagnostics::logPath() const {
    return context_.support.filePath(mailstore::restoredMailDiagnosticLogName);
}

} // namespace corvane
