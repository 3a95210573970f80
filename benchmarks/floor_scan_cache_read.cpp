// Floor of reading a scan cache: simdjson's on-demand parser over the whole file, every field of every
// message into a plain struct of strings. Usage: floor_scan_cache_read FILE. Prints the seconds.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <simdjson.h>

namespace {

struct Message {
    std::string id, subject, sender, recipients, date, mailbox, account, accountName, fileURL, identifier,
        preview;
    std::vector<std::string> related;
    std::vector<std::string> attachmentNames;
    std::int64_t size = 0;
};

void put(std::string& target, simdjson::ondemand::value value) {
    const std::string_view text = value.get_string();
    target.assign(text);
}

void readAttachments(Message& message, simdjson::ondemand::value value) {
    for (auto attachment : value.get_array()) {
        for (auto field : attachment.get_object()) {
            if (field.key() == "fileName")
                message.attachmentNames.emplace_back(std::string_view(field.value()));
        }
    }
}

void readField(Message& message, std::string_view key, simdjson::ondemand::value value) {
    if (key == "id")
        put(message.id, value);
    else if (key == "subject")
        put(message.subject, value);
    else if (key == "sender")
        put(message.sender, value);
    else if (key == "recipients")
        put(message.recipients, value);
    else if (key == "date")
        put(message.date, value);
    else if (key == "mailbox")
        put(message.mailbox, value);
    else if (key == "accountIdentifier")
        put(message.account, value);
    else if (key == "accountName")
        put(message.accountName, value);
    else if (key == "fileURL")
        put(message.fileURL, value);
    else if (key == "messageIdentifier")
        put(message.identifier, value);
    else if (key == "preview")
        put(message.preview, value);
    else if (key == "messageSize")
        message.size = value.get_int64();
    else if (key == "attachments")
        readAttachments(message, value);
    else if (key == "relatedMessageFileURLs") {
        for (auto url : value.get_array()) message.related.emplace_back(std::string_view(url));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const auto start = std::chrono::steady_clock::now();
    const simdjson::padded_string json = simdjson::padded_string::load(argv[1]);
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document document = parser.iterate(json);
    std::vector<Message> messages;
    for (auto element : document.get_object()["messages"].get_array()) {
        Message& message = messages.emplace_back();
        for (auto field : element.get_object()) {
            const std::string_view key = field.unescaped_key();
            readField(message, key, field.value());
        }
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", elapsed.count());
    return messages.empty() ? 1 : 0;
}
