#include "archive/export/export_names.h"

#include "archive/archive_naming.h"
#include "platform/paths.h"
#include "text/case.h"

namespace corvane::archive {

std::string ExportNames::next(const ArchivedEmailRecord& record) {
    const std::string year = yearFolder(record.date);
    std::string name = portableFileName(platform::lastPathComponent(record.emlRelativePath.str()));
    // The index may say anything.
    if (text::asciiLowercased(platform::pathExtension(name)) != "eml") name = portableFileName(name + ".eml");
    return platform::joinPath(year, names_.next(year, name));
}

} // namespace corvane::archive
