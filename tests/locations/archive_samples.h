// Small archives for tests.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/paths.h"
#include "records/archive_files/archive_index_file.h"
#include "support/temporary_home.h"

namespace corvane::testing {

// "mid:" and the record's Message-ID, for a variant with its number.
inline ArchivedEmailRecord sampleRecord(const std::string& id) {
    ArchivedEmailRecord record;
    record.id = id;
    if (id.starts_with("mid:")) record.messageIdentifier = SharedText(id.substr(4, id.find("#v") - 4));
    record.subject = "主题 " + id;
    record.emlRelativePath = "2019/a/" + id + ".eml";
    record.sizeBytes = 12; // of what writeArchive() writes
    record.sourceCopyCount = 1;
    return record;
}

inline EmailArchiveIndex sampleIndex(int createdAt, const std::vector<std::string>& ids) {
    EmailArchiveIndex index{
        Date(std::chrono::seconds(createdAt)), Date(std::chrono::seconds(createdAt + 1)), {}};
    for (const std::string& id : ids) index.records.push_back(sampleRecord(id));
    return index;
}

// Writes the index into a folder below the home; the folder's path.
inline std::string writeIndex(const TemporaryHome& home, const std::string& folder,
                              const EmailArchiveIndex& index) {
    home.write(platform::joinPath(folder, archiveIndexFileName), encodeArchiveIndex(index));
    return home.at(folder);
}

// The index and all its files.
inline std::string writeArchive(const TemporaryHome& home, const std::string& folder,
                                const EmailArchiveIndex& index) {
    for (const ArchivedEmailRecord& record : index.records) {
        home.write(platform::joinPath(folder, record.emlRelativePath), "Subject: x\n\n");
    }
    return writeIndex(home, folder, index);
}

} // namespace corvane::testing
