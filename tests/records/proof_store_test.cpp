#include "records/stores/proof_store.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "platform/files/directory.h"
#include "support/faulty_file_layer.h"
#include "support/faulty_sqlite_files.h"
#include "support/temporary_home.h"

namespace corvane::testing {
namespace {

std::string storeFile(const TemporaryHome& home) {
    return home.platform().applicationSupportDirectory() + "/Corvane/proof-readings.sqlite";
}

FileReading sampleReading(char content, bool hasBody) {
    FileReading reading{.stamp = {7, 1'700'000'000'123'456'789, 1'700'000'001'000'000'000},
                        .outcome = FileReading::Outcome::complete};
    reading.hash = platform::sha256(std::string(1, content));
    if (hasBody) reading.bodyHash = platform::sha256("body");
    reading.readAt = Date(std::chrono::seconds(1'700'000'000));
    return reading;
}

const std::string oddPath = std::string("/邮件/a\n") + '\0' + "\xff.emlx";

TEST(ProofStore, KeepsTheLastReadingOfEachFile) {
    const TemporaryHome home;
    const CorvaneAppSupport support(home.platform());
    EXPECT_TRUE(ProofStore(support).load()->isEmpty());
    EXPECT_FALSE(platform::fileExists(storeFile(home))) << "looking makes no file";
    ProofStore store(support);
    ReadingBatch batch;
    batch.copies = {{oddPath, sampleReading('a', false)}, {"/b", sampleReading('b', true)}};
    batch.archived["/root"] = {{"2020/x.eml", sampleReading('c', true)}};
    batch.archived["/other"] = {{"2020/x.eml", sampleReading('d', false)}};
    ASSERT_TRUE(store.save(batch));
    ReadingBatch later;
    later.copies = {{"/b", sampleReading('e', false)}};
    ASSERT_TRUE(ProofStore(support).save(later)) << "beside another one";
    const auto facts = ProofStore(support).load();
    ASSERT_NE(facts->copies.find(oddPath), nullptr);
    EXPECT_EQ(*facts->copies.find(oddPath), sampleReading('a', false));
    EXPECT_EQ(*facts->copies.find("/b"), sampleReading('e', false));
    EXPECT_EQ(*facts->archivedReading("/root", "2020/x.eml"), sampleReading('c', true));
    EXPECT_EQ(*facts->archivedReading("/other", "2020/x.eml"), sampleReading('d', false));
    EXPECT_EQ(facts->archivedReading("/root", "2020/y.eml"), nullptr);
    struct stat status{};
    ASSERT_EQ(::stat(storeFile(home).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST(ProofStore, OfTheVersionBeforeKeepsItsReadingsWhichNoFileThatIsThereAgreesWith) {
    const TemporaryHome home;
    const CorvaneAppSupport support(home.platform());
    ReadingBatch batch;
    batch.archived["/root"] = {{"x.eml", sampleReading('c', true)}};
    ASSERT_TRUE(ProofStore(support).save(batch));
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(storeFile(home).c_str(), &database), SQLITE_OK);
    EXPECT_EQ(
        sqlite3_exec(database,
                     "ALTER TABLE copy_reading DROP COLUMN changed; ALTER TABLE archived_reading DROP COLUMN "
                     "changed; PRAGMA user_version = 2;",
                     nullptr, nullptr, nullptr),
        SQLITE_OK);
    sqlite3_close(database);
    FileReading kept = sampleReading('c', true);
    kept.stamp.changedNanoseconds = -1;
    EXPECT_EQ(*ProofStore(support).load()->archivedReading("/root", "x.eml"), kept);
}

TEST(ProofStore, IsMadeAnewWhereItCannotBeUsed) {
    const TemporaryHome home;
    const CorvaneAppSupport support(home.platform());
    ReadingBatch batch;
    for (int number = 0; number < 400; ++number)
        batch.copies.push_back({"/" + std::to_string(number), sampleReading('a', true)});
    ASSERT_TRUE(ProofStore(support).save(batch));
    const std::string sound = readWhole(storeFile(home));
    std::string torn = sound;
    std::fill(torn.begin() + 8192, torn.begin() + 20480, '\x7f');
    std::string ofAnotherVersion = sound;
    ofAnotherVersion[63] = 9; // user_version
    std::string disordered = sound;
    disordered.replace(disordered.find("/250"), 4, "/0zz"); // what is saved as /0zz would lie beside it
    for (const std::string& content :
         {std::string("no database"), torn, sound.substr(0, 4096), ofAnotherVersion, disordered}) {
        home.write(storeFile(home), content);
        EXPECT_TRUE(ProofStore(support).load()->isEmpty());
        ReadingBatch one;
        one.copies = {{"/b", sampleReading('b', false)}};
        ProofStore store(support);
        ASSERT_TRUE(store.save(one));
        EXPECT_EQ(ProofStore(support).load()->copies.size(), 1U);
    }
    std::filesystem::remove(storeFile(home));
    std::filesystem::create_symlink(home.write("elsewhere", ""), storeFile(home));
    EXPECT_FALSE(ProofStore(support).save(batch)) << "no link is followed";
    EXPECT_EQ(readWhole(home.at("elsewhere")), "");
}

TEST(ProofStore, WhatCannotBeKeptLeavesNothingThatItContradicts) {
    struct Row {
        SqliteFault fault;
        char content; // of what is read later
        bool canBeRemoved;
        bool stays;
        std::int64_t laterByNanoseconds = 0;
    };

    for (const Row& row :
         {Row{SqliteFault::full, 'c', true, true}, Row{SqliteFault::full, 'd', true, false},
          Row{SqliteFault::error, 'd', true, false}, Row{SqliteFault::lockLost, 'd', true, false},
          Row{SqliteFault::full, 'c', false, true}, Row{SqliteFault::full, 'd', false, true},
          Row{SqliteFault::full, 'd', true, false, 1}}) {
        const TemporaryHome home;
        FaultySqliteFiles sqlite;
        FaultyFileLayer files;
        const CorvaneAppSupport support(home.platform(), files);
        ReadingBatch batch;
        batch.archived["/root"] = {{"x.eml", sampleReading('c', true)}};
        ASSERT_TRUE(ProofStore(support).save(batch));
        sqlite.failAt(1, row.fault, true);
        if (!row.canBeRemoved) {
            files.inject({.effect = Effect::failFromHere,
                          .operation = FileOperation::unlink,
                          .error = EROFS,
                          .path = "proof-readings"});
        }
        ReadingBatch later;
        later.archived["/root"] = {{"x.eml", sampleReading(row.content, true)},
                                   {"y.eml", sampleReading('e', true)}};
        later.archived["/root"].front().reading.stamp.modifiedNanoseconds += row.laterByNanoseconds;
        EXPECT_FALSE(ProofStore(support).save(later));
        EXPECT_TRUE(support.writeFailure());
        EXPECT_EQ(support.hasOutdatedReadings(), row.content == 'd' && !row.canBeRemoved);
        sqlite.heal();
        const auto facts = ProofStore(support).load();
        EXPECT_EQ(facts->archivedReading("/root", "x.eml") != nullptr, row.stays)
            << row.content << row.canBeRemoved;
        EXPECT_EQ(facts->archivedReading("/root", "y.eml"), nullptr);
    }
}

} // namespace
} // namespace corvane::testing
