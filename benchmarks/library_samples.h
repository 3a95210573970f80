// Archived mail of a long life: for the measure of the library and for its floor, so that both work on the
// same.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "records/archived/archive_records.h"

namespace corvane::bench {

// Half of the mail answers other mail; subjects are Chinese and English, and every eighth record lacks its
// account.
inline ArchivedEntry makeArchivedEntry(std::mt19937& random, std::size_t number) {
    static constexpr const char* titles[] = {"关于第 {} 次会议的通知", "Re: Budget of project {}",
                                             "项目周报 第{}期", "答复：合同 {} 的补充条款",
                                             "Fwd: invoice {}"};
    ArchivedEntry entry;
    entry.locationRootPath = fmt::format("/media/disk{}/邮件归档", number % 3);
    ArchivedEmailRecord& record = entry.record;
    record.messageIdentifier = SharedText(fmt::format("{:016x}.{}@mail.example.com", random(), number));
    record.id = fmt::format("mid:{}", *record.messageIdentifier);
    const std::size_t topic = random() % 150'000;
    record.subject = topic % 3 == 0 ? fmt::format("主题 {:09} {}", topic, "合同评审")
                                    : fmt::format(fmt::runtime(titles[topic % 5]), 100'000'000 + topic);
    record.sender = fmt::format("发件人{} <sender{}@example.com>", topic % 900, topic % 900);
    record.recipients = "收件人 <me@example.org>, 同事 <colleague@example.org>";
    record.date = Date(std::chrono::seconds(1'200'000'000 + random() % 500'000'000));
    record.mailbox = fmt::format("文件夹{}", topic % 12);
    if (number % 8 != 0) record.accountName = SharedText(fmt::format("account{}@example.org", topic % 4));
    record.accountIdentifier =
        SharedText(fmt::format("imap://00000000-0000-0000-0000-00000000000{}", topic % 4));
    record.sizeBytes = 4'000 + static_cast<std::int64_t>(random() % 60'000);
    record.emlRelativePath = fmt::format("2020/account/2020-01-01 邮件 {}.eml", number);
    record.contentHash = SharedText("sha256:" + std::string(64, 'a'));
    return entry;
}

inline std::vector<ArchivedEntry> makeArchivedEntries(std::size_t count) {
    std::mt19937 random(5);
    std::vector<ArchivedEntry> entries;
    entries.reserve(count);
    for (std::size_t number = 0; number < count; ++number) {
        entries.push_back(makeArchivedEntry(random, number));
        if (number % 2 == 0) continue;
        std::vector<SharedText> references;
        for (std::size_t distance : {1U, 40U, 900U}) {
            if (number >= distance)
                references.push_back(*entries[number - distance].record.messageIdentifier);
        }
        references.emplace_back(fmt::format("absent{}@example.com", random() % 50'000));
        entries.back().record.referencedMessageIdentifiers = std::move(references);
    }
    return entries;
}

} // namespace corvane::bench
