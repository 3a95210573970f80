#include "archive/removal/archive_removal.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/archive_error.h"
#include "archive/archive_fixture.h"
#include "locations/archive_samples.h"
#include "support/faulty_file_layer.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using testing::Effect;
using testing::FaultyFileLayer;
using testing::FileOperation;
using testing::sampleIndex;
using testing::Tree;
using testing::treeOf;
using Ids = std::vector<std::string>;

class ArchiveRemovalTest : public ::testing::Test {
  protected:
    // Mail a, b and c, and whatever else the index says, beside files that are nobody's.
    void makeArchive(const std::vector<ArchivedEmailRecord>& further = {}) {
        fs::remove_all(home_.at("A"));
        EmailArchiveIndex index = sampleIndex(1, {"mid:a", "mid:b", "mid:c"});
        testing::writeArchive(home_, "A", index);
        for (const ArchivedEmailRecord& record : further) index.records.push_back(record);
        testing::writeIndex(home_, "A", index);
        home_.write("outside.eml", "outside");
        home_.write("A/2019/a/note.txt", "a note");
    }

    static ArchivedEmailRecord recordAt(const std::string& id, const std::string& path) {
        ArchivedEmailRecord record = testing::sampleRecord(id);
        record.emlRelativePath = path;
        return record;
    }

    [[nodiscard]] EmailArchiveIndex index() const {
        return readArchiveIndex(root_ + "/archive-index.json").value();
    }

    [[nodiscard]] Ids ids() const {
        Ids ids;
        for (const ArchivedEmailRecord& record : index().records) ids.push_back(record.id.str());
        return ids;
    }

    // All files but the index, and what goes by itself with the next work in the archive.
    [[nodiscard]] Tree files() const {
        Tree tree = treeOf(root_);
        std::erase_if(tree, [](const auto& file) {
            return file.first == "archive-index.json" || file.first.starts_with(".corvane-");
        });
        return tree;
    }

    ArchiveRemoval remove(const std::vector<RecordToRemove>& records,
                          platform::FileLayer& files = platform::posixFileLayer()) {
        return removeFromArchive(files, root_, records, {.triedFiles = tried_}, {});
    }

    std::optional<ArchiveRemoval> tryToRemove(const std::vector<RecordToRemove>& records,
                                              platform::FileLayer& files) {
        try {
            return remove(records, files);
        } catch (const ArchiveAccessError&) {
            return std::nullopt;
        }
    }

    const testing::TemporaryHome home_;
    const std::string root_ = home_.at("A");
    const std::shared_ptr<std::atomic<std::size_t>> tried_ = std::make_shared<std::atomic<std::size_t>>();
    const RecordToRemove a_{"mid:a", "2019/a/mid:a.eml"};
    const RecordToRemove b_{"mid:b", "2019/a/mid:b.eml"};
};

TEST_F(ArchiveRemovalTest, FileAndRecordGoAndNothingElse) {
    makeArchive({recordAt("mid:long", std::string(251, 'x') + ".eml")});
    const Date before = index().updatedAt;
    Tree expected = files();
    expected.erase("2019/a/mid:a.eml");
    expected.erase("2019/a/mid:b.eml");
    fs::remove(root_ + "/2019/a/mid:b.eml"); // gone already
    const RecordToRemove unnameable{"mid:long", std::string(251, 'x') + ".eml"};
    const ArchiveRemoval removal = remove({a_, b_, a_, unnameable, {"mid:never", "x.eml"}});
    EXPECT_EQ(removal.removed, (Ids{"mid:a", "mid:b", "mid:long", "mid:never"}));
    EXPECT_TRUE(removal.failures.empty());
    EXPECT_EQ(tried_->load(), 3U) << "one has no record, so no file";
    EXPECT_EQ(ids(), Ids{"mid:c"});
    EXPECT_EQ(files(), expected);
    EXPECT_EQ(index().createdAt, Date(std::chrono::seconds(1)));
    EXPECT_GT(index().updatedAt, before);
}

// Whatever an index says, only a mail of this archive goes.
TEST_F(ArchiveRemovalTest, ARecordOfSomethingElseLosesItselfAndNoFile) {
    for (const std::string path :
         {"../outside.eml", "2019/../../outside.eml", "OUTSIDE", "", ".", "2019", "2019/a",
          "archive-index.json", "2019/a/note.txt", "2019/a/link.eml", "linked/outside.eml", "near/mid:a.eml",
          "2019/side/orphan.eml", "2019/folder.eml", "2019/a/mid:a.eml/x.eml", "2019/own/2020/mid:a.eml"}) {
        SCOPED_TRACE(path);
        const std::string told = path == "OUTSIDE" ? home_.at("outside.eml") : path;
        makeArchive({recordAt("mid:odd", told)});
        fs::create_symlink(home_.at("outside.eml"), root_ + "/2019/a/link.eml");
        fs::create_directory_symlink(home_.path(), root_ + "/linked");
        fs::create_directory_symlink("2019/a", root_ + "/near");
        fs::create_directory_symlink("a", root_ + "/2019/side");
        home_.write("A/2019/a/orphan.eml", "of no record");
        fs::create_directory(root_ + "/2019/folder.eml");
        home_.write("A/2019/own/archive-index.json", "{}");
        home_.write("A/2019/own/2020/mid:a.eml", "of another archive");
        const Tree before = files();
        const ArchiveRemoval removal = remove({{"mid:odd", told}});
        EXPECT_TRUE(removal.removed.empty());
        ASSERT_EQ(removal.failures.size(), 1U);
        EXPECT_TRUE(removal.failures[0].isRecordGone);
        EXPECT_EQ(ids(), (Ids{"mid:a", "mid:b", "mid:c"}));
        EXPECT_EQ(files(), before);
        EXPECT_TRUE(fs::exists(home_.at("outside.eml")));
        EXPECT_TRUE(fs::is_symlink(root_ + "/2019/a/link.eml"));
    }
}

TEST_F(ArchiveRemovalTest, ASharedFileStaysUntilTheLastRecordGoes) {
    for (const std::string spelling :
         {"2019/a/mid:a.eml", "2019//./a/mid:a.eml", "2019/b/../a/mid:a.eml", "2019/near/mid:a.eml"}) {
        SCOPED_TRACE(spelling);
        makeArchive({recordAt("mid:other", spelling)});
        fs::create_directory_symlink("a", root_ + "/2019/near");
        EXPECT_EQ(remove({a_}).removed, Ids{"mid:a"});
        EXPECT_TRUE(files().contains("2019/a/mid:a.eml"));
        EXPECT_EQ(ids(), (Ids{"mid:b", "mid:c", "mid:other"}));
    }
    makeArchive({recordAt("mid:other", a_.emlRelativePath)});
    EXPECT_EQ(remove({a_, {"mid:other", a_.emlRelativePath}}).removed.size(), 2U);
    EXPECT_FALSE(files().contains("2019/a/mid:a.eml"));
}

TEST_F(ArchiveRemovalTest, OfARepeatedIDOnlyTheShownFileGoes) {
    makeArchive({recordAt("mid:a", "2019/a/mid:b.eml"), recordAt("mid:a", "2019/a/mid:c.eml")});
    EXPECT_EQ(remove({a_}).removed, Ids{"mid:a"});
    EXPECT_EQ(ids(), (Ids{"mid:b", "mid:c"}));
    EXPECT_EQ(files().size(), 3U); // b, c and the note
}

TEST_F(ArchiveRemovalTest, WithoutAnIndexThatCanBeReadAndWrittenNothingGoes) {
    const auto expectNothing = [&](const char* why) {
        SCOPED_TRACE(why);
        const Tree before = treeOf(root_);
        EXPECT_THROW(remove({a_}), ArchiveAccessError);
        EXPECT_EQ(treeOf(root_), before);
    };
    makeArchive();
    home_.write("A/archive-index.json", "{\"createdAt\": 1}");
    expectNothing("damaged");
    fs::remove(root_ + "/archive-index.json");
    expectNothing("absent");
    fs::create_symlink(home_.at("outside.eml"), root_ + "/archive-index.json");
    expectNothing("a link");
    makeArchive();
    for (const auto operation : {FileOperation::write, FileOperation::sync, FileOperation::read}) {
        FaultyFileLayer files;
        files.inject({.effect = Effect::failFromHere, .operation = operation, .error = ENOSPC});
        const Tree before = treeOf(root_);
        EXPECT_FALSE(tryToRemove({a_}, files));
        EXPECT_EQ(treeOf(root_), before);
    }
    fs::rename(root_, home_.at("Away"));
    EXPECT_THROW(remove({a_}), ArchiveAccessError);
    EXPECT_FALSE(fs::exists(root_));
}

TEST_F(ArchiveRemovalTest, WhatCannotBeRemovedStaysWithItsRecord) {
    makeArchive();
    fs::rename(root_ + "/2019/a/mid:b.eml", root_ + "/2019/a/.mid:b.eml.icloud");
    FaultyFileLayer files;
    files.inject({.operation = FileOperation::unlink, .error = EACCES, .path = "mid:a.eml"});
    const ArchiveRemoval removal =
        remove({a_, b_, {"mid:c", "2019/a/mid:c.eml"}, {"mid:c", "elsewhere.eml"}}, files);
    EXPECT_EQ(removal.removed, Ids{"mid:c"});
    ASSERT_EQ(removal.failures.size(), 2U);
    EXPECT_EQ(ids(), (Ids{"mid:a", "mid:b"}));
    EXPECT_TRUE(treeOf(root_).contains("2019/a/mid:a.eml"));
    EXPECT_EQ(remove({{"mid:a", "2019/a/mid:b.eml"}}).failures.size(), 1U) << "another mail than was seen";
}

TEST_F(ArchiveRemovalTest, WhatAnotherProgramHasChangedMeanwhileStays) {
    makeArchive();
    FaultyFileLayer files;
    bool isChanged = false;
    files.observe([&](const testing::RecordedOperation& operation) {
        if (operation.operation != FileOperation::unlink || isChanged) return;
        isChanged = true;
        EmailArchiveIndex changed = index();
        changed.records.push_back(testing::sampleRecord("mid:new"));
        testing::writeIndex(home_, "A", changed);
    });
    EXPECT_EQ(remove({a_}, files).removed, Ids{"mid:a"});
    EXPECT_TRUE(isChanged);
    EXPECT_EQ(ids(), (Ids{"mid:b", "mid:c", "mid:new"}));
}

// At any moment other mail is untouched, the index is one of the two, and no record without a file is
// anything but of what was to go; the next removal brings it to its end.
TEST_F(ArchiveRemovalTest, AnInterruptionAtAnyOperationIsHealed) {
    makeArchive();
    FaultyFileLayer counting;
    remove({a_, b_}, counting);
    const Tree expected = files();
    const std::size_t count = counting.operationCount(root_);
    for (const Effect effect : {Effect::fail, Effect::crash}) {
        for (std::size_t k = 1; k <= count; ++k) {
            SCOPED_TRACE(std::to_string(k) + (effect == Effect::crash ? " crash" : " fail"));
            makeArchive();
            FaultyFileLayer faulty;
            faulty.inject({.at = k, .effect = effect, .operation = {}, .error = EIO, .path = root_});
            const auto removal = tryToRemove({a_, b_}, faulty);
            if (effect == Effect::crash) faulty.losePower();
            const Ids left = ids();
            EXPECT_EQ(std::ranges::count(left, "mid:c"), 1);
            for (const auto& [path, content] : expected) EXPECT_EQ(files()[path], content);
            if (removal && effect == Effect::fail) {
                EXPECT_EQ(removal->removed.size() + left.size(), 3U);
            }
            const ArchiveRemoval next = remove({a_, b_});
            EXPECT_EQ(next.removed.size(), 2U);
            EXPECT_EQ(ids(), Ids{"mid:c"});
            EXPECT_EQ(next.recordedIDs, SharedTextSet{"mid:c"}) << "by which what is kept of the others goes";
            EXPECT_EQ(files(), expected);
            if (HasFailure()) return;
        }
    }
}

} // namespace
} // namespace corvane
