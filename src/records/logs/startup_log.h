// "archive-library-startup.log": the path from launch to the library. The file is emptied at each launch; a
// mark creates the folder, and never the file. Marks do their file work on the calling thread and are few.
#pragma once

#include <string_view>

#include "records/logs/performance_log.h"
#include "records/stores/app_support.h"

namespace corvane {

class ArchiveLibraryStartupLog {
  public:
    ArchiveLibraryStartupLog(CorvaneAppSupport support, MailPerformanceLog& performanceLog)
      : support_(std::move(support))
      , performanceLog_(performanceLog) {}

    void mark(std::string_view message) const;

    // Writes the file empty: called once, at launch.
    void reset() const;

  private:
    CorvaneAppSupport support_;
    MailPerformanceLog& performanceLog_;
};

} // namespace corvane
