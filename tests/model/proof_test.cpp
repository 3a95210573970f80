// Proofs through the whole model, over a home with real files: what is called archived, deletable or a
// candidate after something has happened to an original or to its archived file.
#include "model/archiving/proof/proof_flow.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "archive/message_extraction.h"
#include "listing/proof/away_proofs.h"
#include "model/archiving/proof/stale_readings.h"
#include "model/corvane_view_model.h"
#include "model/model_test.h"
#include "model/published_messages.h"
#include "platform/files/directory.h"
#include "records/archive_files/archive_index_file.h"
#include "records/archived/content_hash.h"
#include "records/archived/stable_id.h"
#include "records/stores/proof_store.h"
#include "records/timestamps.h"
#include "support/faulty_file_layer.h"

namespace corvane::testing {
namespace {

class Proofs : public ModelTest {
  protected:
    Proofs() {
        start();
        model_->archiving().destinations.setTransferDestination(home_.at(root_));
        waitUntilIdle(context_->tasks);
        publish({{"a"}, {"b"}, {"c"}});
        archive();
    }

    // What a run on another machine would have left: nothing of it was read here.
    void archive() {
        EmailArchiveIndex index;
        for (const MailMessageRecord& message : *model_->mail().catalog.messages()) {
            const std::filesystem::path original(message.fileURL.path().str());
            const std::string emlx = readWhole(original.string());
            const std::string mail(*archive::messageData(emlx));
            ArchivedEmailRecord record;
            const SharedText id = stableID(message);
            record.id =
                index.records.empty() || index.records.back().id != id ? id : SharedText(id.str() + "#v2");
            record.messageIdentifier = message.messageIdentifier;
            record.subject = message.subject;
            record.sender = message.sender;
            record.date = message.date;
            record.emlRelativePath = fmt::format("2020/a/{}.eml", original.stem().string());
            record.sizeBytes = static_cast<std::int64_t>(mail.size());
            record.contentHash = contentHashText(platform::sha256(mail));
            home_.write(fmt::format("{}/{}", root_, record.emlRelativePath), mail);
            index.records.push_back(std::move(record));
        }
        home_.write(fmt::format("{}/{}", root_, archiveIndexFileName), encodeArchiveIndex(index));
        loadLibrary();
    }

    // As a new start of the program: nothing is known but what was kept.
    void start() {
        model_.reset();
        context_ = std::make_unique<ModelContext>(platform_);
        model_ = std::make_unique<CorvaneViewModel>(*context_);
        waitUntilIdle(context_->tasks);
    }

    void restart() {
        start();
        publish({{"a"}, {"b"}, {"c"}});
        loadLibrary();
    }

    // Files that are there already stay as they are.
    void publish(std::vector<MessageSketch> sketches) {
        for (auto& sketch : sketches) sketch.hasFile = !platform::fileExists(original(sketch.name));
        publishMessages(model_->mail().catalog, sampleMessages(home_, sketches));
        waitUntilIdle(context_->tasks);
    }

    void loadLibrary() {
        model_->library().loader.loadEmailArchiveIndex(home_.at(root_), true);
        waitUntilIdle(context_->tasks);
    }

    void prove() {
        loadLibrary();
        model_->archiving().proof.prove({});
        waitUntilIdle(context_->tasks);
    }

    [[nodiscard]] std::string original(const std::string& name) const {
        return home_.at("Library/Mail/V10/a/" + name + ".emlx");
    }

    [[nodiscard]] std::string archived(const std::string& name) const {
        return home_.at(fmt::format("{}/2020/a/{}.eml", root_, name));
    }

    // As an editor that keeps the size.
    static void replaceByte(const std::string& path, char byte) {
        std::string content = readWhole(path);
        content[content.find("xxxx")] = byte;
        std::ofstream(path, std::ios::binary) << content;
    }

    ProofOutcome outcomeOf(const std::string& name) {
        return model_->mail().catalog.availability().proofs->outcomeOf(original(name));
    }

    std::string candidates() {
        std::string names;
        for (const MailMessageRecord& message : *model_->archiving().candidates.archiveCandidates())
            names += message.subject.view();
        return names;
    }

    std::string root_ = "归档";
    std::unique_ptr<ModelContext> context_;
    std::unique_ptr<CorvaneViewModel> model_;
};

TEST_F(Proofs, WhatIsDeletableCandidateAndArchivedFollowsFromThem) {
    struct Case {
        const char* name;
        std::function<void()> change;
        ProofOutcome outcome;
        bool isCandidate = false;
    };

    prove();
    ASSERT_TRUE(model_->deletionSafety({}).isDeletable());
    const std::string whole = readWhole(original("a"));
    const std::string file = archived("a");
    const std::string content = readWhole(file);
    const std::vector<Case> cases = {
        {"an original was changed", [&] { replaceByte(original("a"), 'y'); }, ProofOutcome::differs, true},
        {"an original was cut", [&] { home_.write("Library/Mail/V10/a/a.emlx", whole.substr(0, 100)); },
         ProofOutcome::incomplete},
        {"an original was emptied", [&] { home_.write("Library/Mail/V10/a/a.emlx", ""); },
         ProofOutcome::incomplete},
        {"an original can't be cut",
         [&] { home_.write("Library/Mail/V10/a/a.emlx", std::string(200, '\0')); }, ProofOutcome::unreadable},
        {"an archived byte was changed", [&] { replaceByte(file, 'y'); }, ProofOutcome::fileMissing, true},
        {"an archived file was cut", [&] { std::filesystem::resize_file(file, 50); },
         ProofOutcome::fileMissing, true},
        {"an archived file has gone", [&] { std::filesystem::remove(file); }, ProofOutcome::fileMissing,
         true},
        {"all is back", [] {}, ProofOutcome::proven},
    };
    for (const Case& each : cases) {
        std::ofstream(original("a"), std::ios::binary) << whole;
        std::ofstream(file, std::ios::binary) << content;
        each.change();
        restart();
        EXPECT_FALSE(each.outcome != ProofOutcome::proven && outcomeOf("a") == ProofOutcome::proven)
            << each.name << ": a proof of other bytes still stands";
        prove();
        EXPECT_EQ(outcomeOf("a"), each.outcome) << each.name;
        EXPECT_EQ(candidates(), each.isCandidate ? "a" : "") << each.name;
        const DeletionSafety safety = model_->deletionSafety({});
        EXPECT_EQ(safety.archived, each.outcome == ProofOutcome::proven ? 3 : 2) << each.name;
        EXPECT_EQ(safety.proofs.proven, safety.archived) << each.name;
        EXPECT_EQ(safety.isDeletable(), each.outcome == ProofOutcome::proven) << each.name;
    }
    replaceByte(original("a"), 'y');
    prove();
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::differs) << "without a new start";
}

TEST_F(Proofs, NothingIsReadTwiceAndWhatWasReadOutlivesTheProgram) {
    prove();
    restart();
    EXPECT_EQ(model_->deletionSafety({}).proofs.proven, 3);
    replaceByte(original("b"), 'y');
    prove();
    ASSERT_TRUE(model_->archiving().proof.lastEnd());
    EXPECT_GT(model_->archiving().proof.lastEnd()->progress.bytesRead, 0);
    EXPECT_LT(model_->archiving().proof.lastEnd()->progress.bytesRead,
              4 * static_cast<std::int64_t>(readWhole(original("b")).size()))
        << "the others are known";
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::proven);
    EXPECT_EQ(outcomeOf("b"), ProofOutcome::differs);

    // As a verification by the command line beside this program.
    const auto& [root, readings] = *model_->archiving().readings.facts()->archived.begin();
    ReadingBatch found;
    found.archived[root] = {{"2020/a/a.eml", *readings.find("2020/a/a.eml")}};
    found.archived[root].front().reading.outcome = FileReading::Outcome::unreadable;
    ASSERT_TRUE(ProofStore(context_->support).save(found));
    model_->archiving().readings.load();
    waitUntilIdle(context_->tasks);
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::unreadable);
    EXPECT_EQ(outcomeOf("c"), ProofOutcome::proven);
}

TEST_F(Proofs, OfAPulledDiskStandAndThoseOfAFolderThatHasGoneDoNot) {
    prove();
    std::filesystem::remove_all(home_.at(root_));
    loadLibrary();
    EXPECT_EQ(candidates(), "abc");
    EXPECT_EQ(model_->deletionSafety({}).archived, 0);
    platform_.plugIn("盘");
    root_ = "Volumes/盘/归档";
    archive();
    prove();
    ASSERT_EQ(candidates(), "");
    platform_.unplug();
    std::filesystem::rename(home_.at("Volumes/盘"), home_.at("away"));
    loadLibrary();
    EXPECT_EQ(model_->deletionSafety({}).proofs.proven, 3);
    replaceByte(original("a"), 'y');
    prove();
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::differs) << "its hash is known";
    EXPECT_EQ(model_->deletionSafety({}).proofs.proven, 2);
}

TEST_F(Proofs, FallWithAChangeToTheArchiveAtTheNextLookAtIt) {
    const auto look = [&] {
        model_->lookAtArchives();
        waitUntilIdle(context_->tasks);
    };
    prove();
    look();
    ASSERT_EQ(model_->deletionSafety({}).proofs.proven, 3);
    std::filesystem::remove(archived("a"));
    replaceByte(archived("b"), 'y');
    look();
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::fileMissing);
    EXPECT_EQ(outcomeOf("b"), ProofOutcome::notLookedAt);
    EXPECT_EQ(candidates(), "a");
    std::filesystem::rename(home_.at(root_), home_.at("elsewhere"));
    look();
    EXPECT_EQ(candidates(), "abc");
    std::filesystem::rename(home_.at("elsewhere"), home_.at(root_));
    look();
    EXPECT_EQ(candidates(), "a");
    EXPECT_EQ(outcomeOf("c"), ProofOutcome::notLookedAt) << "nobody knows where it was meanwhile";
    home_.write(root_ + "/" + std::string(archiveIndexFileName), encodeArchiveIndex({}));
    look();
    EXPECT_EQ(model_->library().loader.archivedEntries()->size(), 0U) << "another program has removed them";
}

TEST_F(Proofs, OfAFileThatWasGoneWhenItsDiskWasLastThereAreTakenBack) {
    std::filesystem::remove_all(home_.at(root_));
    platform_.plugIn("盘");
    root_ = "Volumes/盘/归档";
    archive();
    prove();
    ASSERT_EQ(model_->deletionSafety({}).proofs.proven, 3);
    std::filesystem::remove(archived("a"));
    replaceByte(archived("b"), 'y');
    loadLibrary();
    platform_.unplug();
    std::filesystem::rename(home_.at("Volumes/盘"), home_.at("away"));
    const auto expectTakenBack = [&] {
        loadLibrary();
        EXPECT_EQ(outcomeOf("a"), ProofOutcome::fileMissing);
        EXPECT_EQ(outcomeOf("b"), ProofOutcome::notLookedAt);
        EXPECT_EQ(outcomeOf("c"), ProofOutcome::proven);
        EXPECT_EQ(candidates(), "a");
    };
    expectTakenBack();
    restart();
    expectTakenBack();
}

TEST_F(Proofs, ByAFileThatIsInACloudOnlyHaveTheirDay) {
    prove();
    const auto away = [&] {
        return awayProofs(*model_->mail().catalog.availability().proofs, {},
                          *model_->mail().catalog.messages(), [](const MailMessageRecord&) { return true; });
    };
    EXPECT_EQ(away().count, 0);
    std::filesystem::rename(archived("a"), home_.at(root_ + "/2020/a/.a.eml.icloud"));
    loadLibrary();
    EXPECT_EQ(outcomeOf("a"), ProofOutcome::proven);
    EXPECT_EQ(away().count, 1);
    EXPECT_EQ(away().inCloud, 1);
}

TEST_F(Proofs, OfMailWithoutAnIdNothingIsSaidOfWhatCameBehindTheArchivedOne) {
    const auto publishUnnamed = [&](const std::vector<MessageSketch>& sketches) {
        MessageList messages = sampleMessages(home_, sketches);
        for (MailMessageRecord& message : messages) {
            message.messageIdentifier.reset();
            message.subject = "a";
        }
        publishMessages(model_->mail().catalog, std::move(messages));
        waitUntilIdle(context_->tasks);
    };
    publishUnnamed({{"a"}, {"b"}});
    archive();
    prove();
    EXPECT_EQ(model_->deletionSafety({}).archived, 2);
    publishUnnamed({{"later"}});
    EXPECT_EQ(model_->deletionSafety({}).archived, 0);
    EXPECT_EQ(candidates(), "a");
}

TEST_F(Proofs, ACancelledOneKeepsWhatItHasReadAndGoesOn) {
    std::vector<MessageSketch> sketches;
    for (int number = 0; number < 700; ++number) sketches.push_back({fmt::format("m{}", number)});
    publish(sketches);
    archive();
    std::stop_source stop;
    std::atomic<int> opened = 0;
    FaultyFileLayer files;
    files.observe([&](const RecordedOperation& operation) {
        if (operation.path.ends_with(".eml") && operation.operation == FileOperation::open && ++opened == 550)
            stop.request_stop();
    });
    const MessageCatalog& catalog = model_->mail().catalog;
    const ProofEnd end = runProof({catalog.messages(),
                                   catalog.state()->availability,
                                   catalog.availability().proofs->inputs,
                                   {},
                                   CorvaneAppSupport(platform_, files)},
                                  {stop.get_token(), [](const ProofProgress&) {}});
    EXPECT_TRUE(end.wasCancelled);
    EXPECT_EQ(end.progress.total, 700);
    restart();
    publish(sketches);
    loadLibrary();
    const std::int64_t proven = model_->deletionSafety({}).proofs.proven;
    EXPECT_GE(proven, 512);
    EXPECT_LT(proven, 700);
    prove();
    EXPECT_TRUE(model_->deletionSafety({}).isDeletable());
}

TEST_F(Proofs, MailThatIsSetAsideIsNeitherCandidateNorArchivedUntilItIsTakenBack) {
    publish({{"a"}, {"b"}, {"d"}});
    prove();
    ASSERT_EQ(candidates(), "d");
    const MessageList& messages = *model_->mail().catalog.messages();
    model_->archiving().setAside.set({messages[0], messages[2]}, true);
    waitUntilIdle(context_->tasks);
    EXPECT_EQ(candidates(), "");
    EXPECT_EQ(model_->deletionSafety({}).archived, 1);
    EXPECT_EQ(model_->deletionSafety({}).setAside, 2);
    start();
    publish({{"a"}, {"b"}, {"d"}});
    loadLibrary();
    EXPECT_EQ(candidates(), "") << "also after a restart";
    model_->archiving().setAside.set(*model_->mail().catalog.messages(), false);
    waitUntilIdle(context_->tasks);
    EXPECT_EQ(candidates(), "d");
    EXPECT_EQ(model_->deletionSafety({}).archived, 2);
}

TEST_F(Proofs, ReadingsOfLongAgoAreForgottenWhereNothingNamesTheFileAnyMore) {
    const Date now = currentTimestamp();
    const auto readAt = [&](int days) {
        FileReading reading;
        reading.readAt = now - std::chrono::days(days);
        return reading;
    };
    const std::string kept = home_.write("kept.emlx", "1\na");
    ProofFacts facts;
    facts.add(
        {.copies = {{"/listed", readAt(40)}, {kept, readAt(40)}, {"/old", readAt(40)}, {"/new", readAt(1)}},
         .archived = {{"/a", {{"listed", readAt(40)}, {"old", readAt(40)}, {"new", readAt(1)}}},
                      {"/away", {{"old", readAt(40)}}}}});
    MailMessageRecord message;
    message.fileURL = FileURL("/listed");
    ArchivedEntry entry;
    entry.record.emlRelativePath = "listed";
    entry.locationRootPath = "/a";
    const ReadingOwners owners{.entries =
                                   std::make_shared<const std::vector<ArchivedEntry>>(std::vector{entry}),
                               .messages = std::make_shared<const MessageList>(MessageList{message})};
    const ReadingPaths stale = staleReadings(context_->support.files(), facts, owners, now);
    EXPECT_EQ(stale.copies, std::vector<std::string>{"/old"});
    using Paths = std::map<std::string, std::vector<std::string>>;
    EXPECT_EQ(stale.archived, (Paths{{"/a", {"old"}}})) << "nothing is known of an archive that is away";
}

} // namespace
} // namespace corvane::testing
