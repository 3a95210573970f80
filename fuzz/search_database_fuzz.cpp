// A search database that was damaged or made by a hostile hand: nothing that is asked of it does harm,
// indexing an archive into it ends with an index that can be opened, and one that was begun anew is whole.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <fmt/format.h>

#include "archive/bodies/body_indexing.h"
#include "database_damage.h"
#include "fuzz_kit.h"
#include "platform/platform.h"
#include "records/archive_files/archive_index_file.h"
#include "records/stores/app_support.h"
#include "search/mail_search_index.h"
#include "search/search_index_files.h"

using namespace corvane;
using fuzz::require;

namespace {

constexpr int rowCount = 60;

std::vector<SearchIndexRow> someRows(int count) {
    std::vector<SearchIndexRow> rows;
    for (int number = 0; number < count; ++number)
        rows.push_back({fmt::format("mid:{}", number), fmt::format("主题 {}", number), "a@example.com", "",
                        "合同.pdf", fmt::format("body of {} 报告 {}", number, std::string(300, 'x'))});
    return rows;
}

// An archive with its index of three mails, and the support folder in which its search database lies.
class Archive {
  public:
    Archive() {
        EmailArchiveIndex index;
        for (int number = 0; number < 3; ++number) {
            ArchivedEmailRecord record;
            record.id = fmt::format("mid:{}", number);
            record.subject = "archived";
            record.emlRelativePath = fmt::format("{}.eml", number);
            fuzz::writeFile(home_.at("archive/" + record.emlRelativePath.str()), "Subject: archived\r\n\r\n");
            index.records.push_back(record);
        }
        fuzz::writeFile(home_.at("archive/archive-index.json"), encodeArchiveIndex(index));
        require(open(&MailSearchIndex::openOrReset)->bulkInsert(someRows(rowCount)) == rowCount);
        sound_ = fuzz::readWhole(path());
    }

    [[nodiscard]] const std::string& sound() const { return sound_; }

    [[nodiscard]] std::unique_ptr<MailSearchIndex>
    open(std::unique_ptr<MailSearchIndex> (*opened)(const CorvaneAppSupport&, std::string_view)) const {
        return opened(support_, root_);
    }

    void replaceDatabase(std::string_view bytes) const {
        for (const char* suffix : {"-wal", "-shm", "-journal"}) std::filesystem::remove(path() + suffix);
        fuzz::writeFile(path(), bytes);
    }

    void indexBodies() const {
        const auto texts = [](const std::vector<FileURL>& files, const std::stop_token&) {
            BodyTextByPath found;
            for (const FileURL& file : files) found.emplace(file.path(), "正文");
            return found;
        };
        BodyIndexing(support_, texts).rebuildSearchIndex(root_, false, [](auto, auto) {});
    }

  private:
    [[nodiscard]] std::string path() const { return search::databaseURL(support_, root_)->path().str(); }

    fuzz::FuzzFolder home_;
    std::string root_ = home_.at("archive");
    bool isMade_ = std::filesystem::create_directory(root_);
    std::unique_ptr<platform::Platform> platform_ = platform::makePlatform(home_.path());
    CorvaneAppSupport support_{*platform_};
    std::string sound_;
};

void useEverything(MailSearchIndex& index) {
    for (const char* query : {"body of 17", "报告", "报", "x", "合同.pdf", "none at all"})
        std::ignore = index.searchIfReadable(query);
    for (const char* id : {"mid:0", "mid:17", "none"}) {
        std::ignore = index.body(id);
        std::ignore = index.ftsRowID(id);
    }
    std::ignore = index.bodyStates();
    index.bulkInsert(someRows(3));
    index.remove("mid:1");
    std::ignore = index.indexedIDs();
}

void checkBegunAnew(const Archive& archive) {
    const auto index = archive.open(&MailSearchIndex::openReset);
    require(index && index->indexedIDs() && index->indexedIDs()->empty());
    require(index->bulkInsert(someRows(20)) == 20);
    require(index->search("body of 1").size() == 11 && index->search("报告").size() == 20);
    require(index->body("mid:7").value_or("").starts_with("body of 7") && !index->isDamaged());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Archive archive;
    archive.replaceDatabase(fuzz::damagedDatabase(archive.sound(), fuzz::textOf(data, size)));
    if (const auto index = archive.open(&MailSearchIndex::open)) useEverything(*index);
    archive.indexBodies();
    require(archive.open(&MailSearchIndex::openOrReset) != nullptr);
    checkBegunAnew(archive);
    return 0;
}
