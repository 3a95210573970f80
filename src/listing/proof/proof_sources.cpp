#include "listing/proof/proof_sources.h"

#include "platform/files/file_look.h"
#include "records/archived/stable_id.h"

namespace corvane {

bool ProofSources::isArchived(const MailMessageRecord& message) const {
    bool isKnown = false;
    records_.visit(stableID(message), [&](const ArchivedEntry&) { isKnown = true; });
    return isKnown;
}

void ProofSources::gather(const MailMessageRecord& message, ProofSubject& subject) const {
    subject.paths.clear();
    subject.copies.clear();
    subject.files.clear();
    gatherFiles(message, subject);
    if (!subject.files.empty()) gatherCopies(message, subject);
}

void ProofSources::gatherFiles(const MailMessageRecord& message, ProofSubject& subject) const {
    records_.visit(stableID(message), [&](const ArchivedEntry& entry) {
        const std::string_view root = entry.locationRootPath;
        const std::string_view path = entry.record.emlRelativePath;
        const auto look = inputs_.looks->at(root, path);
        subject.files.push_back({.entry = &entry,
                                 .place = look.place,
                                 .stamp = look.stamp,
                                 .reading = inputs_.facts->archivedReading(root, path)});
    });
}

void ProofSources::gatherCopies(const MailMessageRecord& message, ProofSubject& subject) const {
    using Presence = platform::FileLook::Presence;
    for (const FileURL& url : message.allMessageFileURLs()) subject.paths.push_back(url.path().str());
    for (const std::string& path : subject.paths) {
        const FileReading* const reading = inputs_.facts->copies.find(path);
        // Which of several it is that was never read makes no difference.
        if (reading == nullptr && inputs_.facts->copies.size() == 0) {
            subject.copies.push_back({.path = path, .stamp = unknownStamp, .reading = nullptr});
            continue;
        }
        const platform::FileLook look = platform::lookAtFile(path);
        if (look.presence == Presence::absent) continue;
        subject.copies.push_back(
            {.path = path, .stamp = stampOf(look), .reading = reading, .placeOnDisk = look.inode});
    }
}

} // namespace corvane
