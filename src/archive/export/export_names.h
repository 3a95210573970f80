// The names of exported mail in a folder or a ZIP: "2014/2014-03-02 subject.eml", safe on every system and
// each used once. One thread.
#pragma once

#include <string>

#include "archive/portable_names.h"
#include "records/archived/archive_records.h"

namespace corvane::archive {

class ExportNames {
  public:
    // Relative, by the year in the time zone of the process and the name that the mail has in its archive.
    // Asked again for the same record, another one.
    std::string next(const ArchivedEmailRecord& record);

  private:
    UniqueNames names_;
};

} // namespace corvane::archive
