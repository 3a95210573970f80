// The report on restored mail, written after each scan and on demand. Main thread; the work is upkeep in the
// background.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "model/mail/account_directory.h"
#include "model/model_context.h"
#include "model/tasks/task_slot.h"

namespace corvane {

class MailDiagnostics {
  public:
    MailDiagnostics(ModelContext& context, AccountDirectory& accounts)
      : context_(context)
      , accounts_(accounts)
      , task_(context.tasks)
      , appendTask_(context.tasks) {}

    // Writes the report anew for these accounts.
    void write(const std::set<std::string>& accountPrefixes);

    // Adds lines to the log, behind a report that is being written: its beginning empties the file.
    void append(std::vector<std::string> lines);

    [[nodiscard]] std::string logPath() const;

  private:
    ModelContext& context_;
    AccountDirectory& accounts_;
    void appendWaiting();

    TaskSlot task_;
    TaskSlot appendTask_;
    bool isReporting_ = false;
    std::vector<std::string> waiting_;
};

} // namespace corvane
