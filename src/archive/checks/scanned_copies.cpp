#include "archive/checks/scanned_copies.h"

#include <algorithm>
#include <ranges>
#include <string>
#include <utility>

#include "archive/message_identity.h"
#include "platform/files/file_look.h"

namespace corvane::archive {

namespace {

bool isAsRead(std::string_view path, const FileStamp& stamp) {
    const platform::FileLook look = platform::lookAtFile(std::string(path));
    return look.presence == platform::FileLook::Presence::there && stampOf(look) == stamp;
}

} // namespace

ScannedCopies::ScannedCopies(ScannedMail mail)
  : mail_(std::move(mail)) {
    if (!mail_.messages || !mail_.facts) return;
    const auto add = [&](const MailMessageRecord& message, const FileURL& url) {
        const FileReading* const reading = mail_.facts->copies.find(url.path());
        if (reading == nullptr || reading->outcome == FileReading::Outcome::unreadable) return;
        copies_.emplace(reading->hash, Copy{&message, url.path(), reading->stamp});
    };
    for (const MailMessageRecord& message : *mail_.messages) {
        add(message, message.fileURL);
        if (!message.relatedMessageFileURLs) continue;
        for (const FileURL& url : *message.relatedMessageFileURLs) add(message, url);
    }
}

const MailMessageRecord* ScannedCopies::messageWith(const platform::Sha256Digest& hash,
                                                    std::string_view start) const {
    const auto [first, last] = copies_.equal_range(hash);
    for (const Copy& copy : std::ranges::subrange(first, last) | std::views::values) {
        if (isAsRead(copy.path, copy.stamp) &&
            !holdsAnotherMessage(ExpectedMessage::of(*copy.message), start))
            return copy.message;
    }
    return nullptr;
}

} // namespace corvane::archive
