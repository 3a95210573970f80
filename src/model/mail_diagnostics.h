// The report on restored mail, written after each scan and on demand. Main thread; the work is upkeep in the
// background.
#pragma once

#include <set>
#include <string>

#include "model/account_directory.h"
#include "model/model_context.h"
#include "model/task_runner.h"

namespace corvane {

class MailDiagnostics {
  public:
    MailDiagnostics(ModelContext& context, AccountDirectory& accounts)
      : context_(context)
      , accounts_(accounts)
      , task_(context.tasks) {}

    // Writes the report anew for these accounts.
    void write(const std::set<std::string>& accountPrefixes);

    [[nodiscard]] std::string logPath() const;

  private:
    ModelContext& context_;
    AccountDirectory& accounts_;
    TaskSlot task_;
};

} // namespace corvane
