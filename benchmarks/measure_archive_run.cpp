// The archive run over a folder of .emlx files: measure_archive_run make COUNT FOLDER | run FOLDER TARGET.
// Prints the seconds of the run.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <fmt/format.h>

#include "archive/run/mail_email_archiver.h"
#include "platform/files/directory.h"
#include "platform/paths.h"

namespace {

using namespace corvane;

int make(std::size_t count, const std::string& folder) {
    std::filesystem::create_directories(folder);
    for (std::size_t number = 0; number < count; ++number) {
        std::string message =
            fmt::format("Message-ID: <{0}@example.com>\r\nSubject: message {0}\r\n\r\n", number);
        message.resize(6000, 'x');
        std::ofstream(fmt::format("{}/{}.emlx", folder, number)) << message.size() << "\n"
                                                                 << message << "<plist/>";
    }
    return 0;
}

MessageList messagesOf(const std::string& folder) {
    MessageList messages;
    const auto entries = platform::listDirectory(folder, platform::HiddenEntries::skip);
    for (const auto& entry : entries.value()) {
        const std::string number(platform::withoutExtension(entry.name));
        MailMessageRecord record;
        record.id = platform::joinPath(folder, entry.name);
        record.fileURL = FileURL(record.id);
        record.subject = "message " + number;
        record.sender = "sender@example.com";
        record.messageIdentifier = number + "@example.com";
        record.accountName = "somebody@example.com";
        record.date = Date(std::chrono::seconds(1700000000));
        messages.push_back(std::move(record));
    }
    return messages;
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc == 4 ? argv[1] : "";
    if (mode == "make") return make(std::stoul(argv[2]), argv[3]);
    if (mode != "run") return 2;
    const MessageList messages = messagesOf(argv[2]);
    const auto start = std::chrono::steady_clock::now();
    const auto result = MailEmailArchiver().archive(messages, argv[3], [](const EmailArchiveProgress&) {});
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (result.archivedCount != static_cast<std::int64_t>(messages.size())) return 1;
    std::printf("%.6f\n", elapsed.count());
}
