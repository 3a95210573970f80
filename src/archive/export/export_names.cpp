#include "archive/export/export_names.h"

#include "platform/paths.h"
#include "records/timestamps.h"
#include "text/case.h"

namespace corvane::archive {

std::string ExportNames::next(const ArchivedEmailRecord& record) {
    const std::string year = record.date ? std::to_string(localYear(*record.date)) : "未知年份";
    std::string name = portableFileName(platform::lastPathComponent(record.emlRelativePath.str()));
    // The index may say anything.
    if (text::asciiLowercased(platform::pathExtension(name)) != "eml") name = portableFileName(name + ".eml");
    return platform::joinPath(year, names_.next(year, name));
}

} // namespace corvane::archive
