// The library's index of generated mail, and the splitting of a body: measure_library index COUNT | threads
// COUNT | split MEGABYTES | entries COUNT (the mail alone, for its memory). They print processor seconds.
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "library/library_index.h"
#include "library/threads/thread_keys.h"
#include "library_samples.h"
#include "mime/body/body_segments.h"

namespace {

using namespace corvane;

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

LibraryIndexInput inputOf(std::size_t count) {
    LibraryIndexInput input;
    input.entries = std::make_shared<const std::vector<ArchivedEntry>>(bench::makeArchivedEntries(count));
    for (int number = 0; number < 4; ++number) {
        MailAccount account;
        account.urlPrefix = fmt::format("imap://00000000-0000-0000-0000-00000000000{}", number);
        account.emailAddress = fmt::format("account{}@example.org", number);
        for (int folder = number; folder < 12; folder += 3)
            account.folders.push_back({fmt::format("文件夹{}", folder), 0});
        input.availableAccounts.push_back(std::move(account));
    }
    return input;
}

std::size_t index(std::size_t count) {
    LibraryIndexInput input = inputOf(count);
    const double start = processorSeconds();
    const auto made = ArchiveLibraryIndex::make(std::move(input));
    std::printf("%.6f\n", processorSeconds() - start);
    return made->subjectGroups(LibraryOrder::newestFirst).groups.size();
}

std::size_t threads(std::size_t count) {
    const auto entries = bench::makeArchivedEntries(count);
    const double start = processorSeconds();
    const auto roots = threadRoots(entries);
    std::printf("%.6f\n", processorSeconds() - start);
    return roots.size();
}

std::size_t split(std::size_t megabytes) {
    const std::string_view lines =
        "志远：江湾小学二期的施工图第三版已经改好，主要调整有三处，请在周四下班前看一遍。\n"
        "1. The stairs are 1.65 m wide now, as the fire brigade has asked.\n\n"
        "Best regards, 本周内请回复\n";
    std::string text;
    while (text.size() < megabytes * 1'000'000) text += lines;
    text += "\n张三\n电话：021-5550 0142\n手机 13912345678\n\n在 2020年1月1日，李四 写道：\n> 好的\n";
    const double start = processorSeconds();
    const auto segments = mime::bodySegments(mime::splitBody(text), {.showQuoted = true});
    std::printf("%.6f\n", processorSeconds() - start);
    return segments.size();
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::string mode = argumentCount == 3 ? arguments[1] : "";
    const std::size_t count = argumentCount == 3 ? std::stoul(arguments[2]) : 0;
    if (mode == "index") return index(count) == 0;
    if (mode == "threads") return threads(count) == 0;
    if (mode == "split") return split(count) == 0;
    if (mode == "entries") return bench::makeArchivedEntries(count).empty();
    std::fputs("measure_library index | threads | entries COUNT, or split MEGABYTES\n", stderr);
    return 2;
}
