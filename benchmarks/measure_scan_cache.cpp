// The scan cache, read or written: measure_scan_cache read FILE | write FILE TARGET | make COUNT FILE. Prints
// the seconds; `make` writes a cache of made-up messages.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fmt/format.h>

#include "platform/files/writing/durable_file.h"
#include "records/json/json_writer.h"
#include "records/stores/scan_cache_file.h"

namespace {

using namespace corvane;

MailMessageRecord madeUp(std::size_t number) {
    MailMessageRecord record;
    record.id =
        fmt::format("/Users/somebody/Library/Mail/V10/6F2A9C1E-0B1D-4E57-9C0A-1D2E3F4A5B6C/INBOX.mbox/"
                    "8A1B2C3D-1111-2222-3333-444455556666/Data/{}/{}/Messages/{}.emlx",
                    number / 1000 % 10, number / 10000 % 10, number);
    record.fileURL = FileURL(record.id);
    record.subject = fmt::format("关于第 {} 号合同的补充说明与付款安排", number);
    record.sender = fmt::format("张三 <sender{}@example.com>", number % 4000);
    record.recipients = "李四 <recipient@example.com>, 王五 <other.person@example.org>";
    record.date = Date(std::chrono::seconds(1200000000 + static_cast<std::int64_t>(number) * 997));
    record.mailbox = "INBOX";
    record.accountIdentifier = "imap://6F2A9C1E-0B1D-4E57-9C0A-1D2E3F4A5B6C";
    record.accountName = "somebody@example.com";
    record.messageIdentifier =
        fmt::format("caf{:016x}.{}@mail.example.com", number * 0x9E3779B97F4A7C15ULL, number);
    record.messageSize = static_cast<std::int64_t>(number % 100000);
    record.preview = "正在加载正文预览...";
    if (number % 4 == 0) {
        record.attachments.push_back(
            {Uuid::random(), SharedText(fmt::format("附件{}.pdf", number)), "PDF 文档", 120000,
             FileURL(SharedText("/Users/somebody/Library/Mail/V10/Attachments/1/2/附件.pdf"))});
    }
    return record;
}

void write(const MailScanCache& cache, const std::string& path) {
    const ScanCacheContent content{cache.scannedAt, &cache.summary,
                                   &cache.messages, &*cache.locallyAvailableMessageIDs,
                                   nullptr,         nullptr};
    const auto produce = [&](const platform::ByteSink& sink) { encodeScanCache(content, sink); };
    if (const auto error = platform::writeFileAtomically(platform::posixFileLayer(), path, produce)) {
        std::fprintf(stderr, "%s\n", error.message().c_str());
        std::exit(1);
    }
}

int make(std::size_t count, const std::string& path) {
    MailScanCache cache;
    cache.locallyAvailableMessageIDs.emplace();
    for (std::size_t number = 0; number < count; ++number) {
        cache.messages.push_back(madeUp(number));
        cache.locallyAvailableMessageIDs->push_back(cache.messages.back().id);
    }
    write(cache, path);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "make" && argc == 4) return make(std::stoul(argv[2]), argv[3]);
    if (!(mode == "read" && argc == 3) && !(mode == "write" && argc == 4)) return 2;
    auto start = std::chrono::steady_clock::now();
    const auto cache = readScanCacheFile(argv[2]);
    if (!cache || cache->messages.empty()) return 1;
    if (mode == "write") {
        start = std::chrono::steady_clock::now();
        write(*cache, argv[3]);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", elapsed.count());
}
