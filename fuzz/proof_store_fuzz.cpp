// The store of readings, damaged or made by a hostile hand: what it gives is nothing or readings that could
// have been written, and what is saved into it is there afterwards.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "database_damage.h"
#include "fuzz_kit.h"
#include "platform/platform.h"
#include "records/archived/proof_facts.h"
#include "records/stores/app_support.h"
#include "records/stores/proof_store.h"

using namespace corvane;
using fuzz::require;

namespace {

FileReading readingOf(unsigned number) {
    FileReading reading{
        .stamp = {number * 100, number}, .hash = {}, .readAt = Date(std::chrono::seconds(number))};
    reading.hash.fill(static_cast<std::uint8_t>(number));
    if (number % 2 == 0) reading.bodyHash = reading.hash;
    return reading;
}

ReadingBatch batchOf(unsigned count) {
    ReadingBatch batch;
    for (unsigned number = 1; number <= count; ++number) {
        batch.copies.push_back({"/mail/" + std::to_string(number) + ".emlx", readingOf(number)});
        batch.archived["/archive"].push_back({std::to_string(number) + ".eml", readingOf(number)});
    }
    return batch;
}

class Support {
  public:
    Support() {
        require(ProofStore(support_).save(batchOf(60)));
        sound_ = fuzz::readWhole(path_);
    }

    [[nodiscard]] const std::string& sound() const { return sound_; }

    [[nodiscard]] ProofStore store() const { return ProofStore(support_); }

    void replace(std::string_view bytes) const {
        for (const char* suffix : {"-wal", "-shm", "-journal"}) std::filesystem::remove(path_ + suffix);
        fuzz::writeFile(path_, bytes);
    }

  private:
    fuzz::FuzzFolder home_;
    std::unique_ptr<platform::Platform> platform_ = platform::makePlatform(home_.path());
    CorvaneAppSupport support_{*platform_};
    std::string path_ = support_.filePath("proof-readings.sqlite");
    std::string sound_;
};

void checkSaved(const ProofFacts& facts) {
    for (unsigned number = 1; number <= 3; ++number) {
        const FileReading* copy = facts.copies.find("/mail/" + std::to_string(number) + ".emlx");
        const FileReading* file = facts.archivedReading("/archive", std::to_string(number) + ".eml");
        require(copy != nullptr && *copy == readingOf(number));
        require(file != nullptr && *file == readingOf(number));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Support support;
    support.replace(fuzz::damagedDatabase(support.sound(), fuzz::textOf(data, size)));
    ProofStore store = support.store();
    require(store.load() != nullptr);
    // Damage where a reading is saved is found by the save; damage elsewhere may be found by the next look
    // alone.
    if (!store.save(batchOf(3))) return 0;
    const auto facts = support.store().load();
    if (!facts->isEmpty()) return checkSaved(*facts), 0;
    require(support.store().save(batchOf(3)));
    checkSaved(*support.store().load());
    return 0;
}
